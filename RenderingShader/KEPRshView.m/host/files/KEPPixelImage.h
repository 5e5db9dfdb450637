// Pixel images read from PNG files: 8-bit RGBA pixels, rows from the top.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <cstdint>
#include <vector>

#include "KEPBaseUnknown.h"
#include "KEPString.h"

/// Pixel formats of KEPPixelImage::Create.
inline constexpr int KEPPixelFormat_RGBA = 1;  ///< 4 bytes a pixel: red, green, blue, alpha
inline constexpr int KEPPixelFormat_RGB = 2;   ///< 3 bytes a pixel: red, green, blue (opaque)

/// Read-only state value given to KEPTexturePixelImage::GetImage.
inline constexpr int KEPReadOnlyState = 1;

class KEPPixelImage : public KEPBaseUnknown {
  KEP_DECLARE_CLASS
 public:
  /// Reads a PNG file; a new image with one reference for the caller, or null when the file is
  /// missing or not a readable PNG.
  static KEPPixelImage* Load(const KEPUnicodeString& path);

  /// A new image of `width` × `height` pixels (rows from the top) copied from `pixels` in
  /// `format` (KEPPixelFormat_...), with one reference for the caller; null when the size is not
  /// positive, the format unknown or `pixels` null. The image keeps its own copy, so the buffer
  /// stays the caller's whatever `deallocationMode` says (kept for the caller:
  /// GetDeallocationMode).
  static KEPPixelImage* Create(int width, int height, int format, const std::uint8_t* pixels,
                               int deallocationMode);

  int GetWidth() const { return width_; }
  int GetHeight() const { return height_; }
  /// width × height × 4 bytes, red, green, blue, alpha.
  const std::vector<std::uint8_t>& GetPixels() const { return pixels_; }
  int GetDeallocationMode() const { return deallocationMode_; }
  /// The size of one pixel where the image is drawn, in the drawing's units (1.0 by default).
  void SetPixelWidth(float width) { pixelWidth_ = width; }
  void SetPixelHeight(float height) { pixelHeight_ = height; }
  float GetPixelWidth() const { return pixelWidth_; }
  float GetPixelHeight() const { return pixelHeight_; }

 protected:
  KEPPixelImage() = default;
  /// Decodes `path` into this image; false (image left empty) on any failure.
  bool Read(const KEPUnicodeString& path);

 private:
  int width_ = 0;
  int height_ = 0;
  int deallocationMode_ = 0;
  float pixelWidth_ = 1.0f;
  float pixelHeight_ = 1.0f;
  std::vector<std::uint8_t> pixels_;
};

/// An image used as a texture. Images are shared: asking twice for the same path gives the same
/// image while the first is cached (the host flushes the cache on a reset).
class KEPTexturePixelImage : public KEPPixelImage {
  KEP_DECLARE_CLASS
 public:
  /// The image of the PNG file `path` with one reference for the caller, or null when the file
  /// is missing or unreadable (a failure is not remembered: the next call tries again).
  /// `readOnlyState` is KEPReadOnlyState for images the caller will not modify.
  static KEPTexturePixelImage* GetImage(const KEPUnicodeString& path, int readOnlyState);

  const KEPUnicodeString& GetPath() const { return path_; }
  int GetReadOnlyState() const { return readOnlyState_; }

 private:
  KEPTexturePixelImage() = default;
  KEPUnicodeString path_;
  int readOnlyState_ = 0;
};

#pragma GCC visibility pop
