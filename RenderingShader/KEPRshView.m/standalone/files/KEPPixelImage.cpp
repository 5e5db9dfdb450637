#include "KEPPixelImage.h"
#include "KEPHostImages.h"

#include "KEPHostContext.h"

#include <png.h>

#include <cstdio>
#include <map>
#include <memory>

#include "KEP_var.h"

KEP_IMPLEMENT_CLASS(KEPPixelImage, KEPBaseUnknown, "System")
KEP_IMPLEMENT_CLASS(KEPTexturePixelImage, KEPPixelImage, "System")

KEPPixelImage* KEPPixelImage::Load(const KEPUnicodeString& path) {
  auto* image = new KEPPixelImage();
  if (image->Read(path)) return image;
  image->Release();
  return nullptr;
}

KEPPixelImage* KEPPixelImage::Create(int width, int height, int format, const std::uint8_t* pixels,
                                     int deallocationMode) {
  if (width <= 0 || height <= 0 || !pixels) return nullptr;
  if (format != KEPPixelFormat_RGBA && format != KEPPixelFormat_RGB) return nullptr;
  const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  auto* image = new KEPPixelImage();
  image->width_ = width;
  image->height_ = height;
  image->deallocationMode_ = deallocationMode;
  if (format == KEPPixelFormat_RGBA) {
    image->pixels_.assign(pixels, pixels + count * 4);
  } else {
    image->pixels_.resize(count * 4);
    for (std::size_t i = 0; i < count; ++i) {
      image->pixels_[i * 4] = pixels[i * 3];
      image->pixels_[i * 4 + 1] = pixels[i * 3 + 1];
      image->pixels_[i * 4 + 2] = pixels[i * 3 + 2];
      image->pixels_[i * 4 + 3] = 255;
    }
  }
  return image;
}

bool KEPPixelImage::Read(const KEPUnicodeString& path) {
  const std::string file = path.ToUTF8();
  if (file.empty()) return false;
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  // The simplified reader reports every error through png.message and never longjmps to us.
  if (!png_image_begin_read_from_file(&png, file.c_str())) return false;
  png.format = PNG_FORMAT_RGBA;
  if (png.width == 0 || png.height == 0 || png.width > 16384 || png.height > 16384) {
    png_image_free(&png);
    return false;
  }
  std::vector<std::uint8_t> pixels(PNG_IMAGE_SIZE(png));
  if (!png_image_finish_read(&png, nullptr, pixels.data(), 0, nullptr)) {
    png_image_free(&png);
    return false;
  }
  width_ = static_cast<int>(png.width);
  height_ = static_cast<int>(png.height);
  pixels_ = std::move(pixels);
  return true;
}

namespace {
struct TextureImages {
  std::map<std::u16string, KEP_var<KEPTexturePixelImage>, std::less<>> byPath;
};

std::map<std::u16string, KEP_var<KEPTexturePixelImage>, std::less<>>& TextureCache() {
  return KEPHostContext::State<TextureImages>().byPath;
}
}  // namespace

KEPTexturePixelImage* KEPTexturePixelImage::GetImage(const KEPUnicodeString& path,
                                                     int readOnlyState) {
  auto& cache = TextureCache();
  auto it = cache.find(path.Str());
  if (it != cache.end()) {
    KEPTexturePixelImage* image = it->second.Get();
    image->AddRef();
    return image;
  }
  auto* image = new KEPTexturePixelImage();
  if (!image->Read(path)) {
    image->Release();
    return nullptr;
  }
  image->path_ = path;
  image->readOnlyState_ = readOnlyState;
  cache.emplace(path.Str(), KEP_var<KEPTexturePixelImage>(image));
  return image;
}

void KEPHostImages::FlushCache() {
  TextureCache().clear();
}
