#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <string>

#include "KEPString.h"
#include "KEPTypes.h"

class KEPIPLMDmtDocument;
class KEPPixelImage;

/// Services on image documents and image paths.
class KEPRbaImageServices {
 public:
  /// The image file path of a texture document; E_FAIL (path untouched) for a null document or
  /// one without a path.
  static HRESULT GetProjectionPath(KEPIPLMDmtDocument* document, KEPUnicodeString& path);

  /// Splits `path` at the last "." of its last component. `base` keeps the directory (everything
  /// before that dot), `extension` is the text after it without the dot, so that base + "." +
  /// extension gives the path back. A last component without a dot gives base = path and an
  /// empty extension. Both separators "/" and "\" end a component.
  static void SplitPath(const KEPUnicodeString& path, KEPUnicodeString& base,
                        KEPUnicodeString& extension);
  /// Writes `image` as an 8-bit RGBA PNG file at `path`, atomically: the file holds its old
  /// content or the whole new one. E_INVALIDARG for a null or empty image, E_FAIL when the
  /// file cannot be written; `error` then says why, starting with the path.
  static HRESULT WritePNG(const KEPPixelImage* image, const KEPUnicodeString& path,
                          std::string& error);
};

#pragma GCC visibility pop
