#include "KEPRbaImageServices.h"

#include <png.h>

#include <vector>

#include "KEPAtomicFile.h"
#include "KEPIPLMDmtDocument.h"
#include "KEPPixelImage.h"

HRESULT KEPRbaImageServices::GetProjectionPath(KEPIPLMDmtDocument* document,
                                               KEPUnicodeString& path) {
  if (!document) return E_FAIL;
  KEPUnicodeString found;
  if (FAILED(document->GetImagePath(found)) || found.IsEmpty()) return E_FAIL;
  path = std::move(found);
  return S_OK;
}

void KEPRbaImageServices::SplitPath(const KEPUnicodeString& path, KEPUnicodeString& base,
                                    KEPUnicodeString& extension) {
  const std::u16string& text = path.Str();
  const std::size_t slash = text.find_last_of(u"/\\");
  const std::size_t nameStart = slash == std::u16string::npos ? 0 : slash + 1;
  const std::size_t dot = text.find_last_of(u'.');
  if (dot == std::u16string::npos || dot < nameStart) {
    base = path;
    extension = KEPUnicodeString();
    return;
  }
  base = KEPUnicodeString(text.substr(0, dot));
  extension = KEPUnicodeString(text.substr(dot + 1));
}

HRESULT KEPRbaImageServices::WritePNG(const KEPPixelImage* image, const KEPUnicodeString& path,
                                      std::string& error) {
  const std::string file = path.ToUTF8();
  if (!image || image->GetWidth() <= 0 || image->GetHeight() <= 0) {
    error = file + ": no image to write";
    return E_INVALIDARG;
  }
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  png.width = static_cast<png_uint_32>(image->GetWidth());
  png.height = static_cast<png_uint_32>(image->GetHeight());
  png.format = PNG_FORMAT_RGBA;
  // The simplified writer reports errors through png.message and never longjmps to us; the
  // first call sizes the encoded file, the second fills it.
  png_alloc_size_t size = 0;
  const std::uint8_t* pixels = image->GetPixels().data();
  if (!png_image_write_to_memory(&png, nullptr, &size, 0, pixels, 0, nullptr)) {
    error = file + ": cannot encode the image (" + png.message + ")";
    png_image_free(&png);
    return E_FAIL;
  }
  std::vector<char> encoded(size);
  if (!png_image_write_to_memory(&png, encoded.data(), &size, 0, pixels, 0, nullptr)) {
    error = file + ": cannot encode the image (" + png.message + ")";
    png_image_free(&png);
    return E_FAIL;
  }
  png_image_free(&png);
  if (!KEPWriteFileAtomically(file, std::string_view(encoded.data(), size), error)) return E_FAIL;
  return S_OK;
}
