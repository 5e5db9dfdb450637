#include "KEPRshTextureDocumentCache.h"

#include "KEPRbaImageServices.h"

const KEPUnicodeString* KEPRshTextureDocumentCache::Path(int position,
                                                         KEPIPLMDmtDocument* document) {
  if (position != position_ || document != document_.Get()) {
    Forget();
    position_ = position;
    document_ = KEP_var<KEPIPLMDmtDocument>(document);
    hasPath_ = document && SUCCEEDED(KEPRbaImageServices::GetProjectionPath(document, path_));
  }
  return hasPath_ ? &path_ : nullptr;
}

KEPTexturePixelImage* KEPRshTextureDocumentCache::Image(int position,
                                                        KEPIPLMDmtDocument* document) {
  const KEPUnicodeString* path = Path(position, document);
  if (!path) return nullptr;
  if (!image_)
    image_ = KEP_var<KEPTexturePixelImage>::Adopt(
        KEPTexturePixelImage::GetImage(*path, KEPReadOnlyState));
  if (!image_) return nullptr;
  image_->AddRef();
  return image_.Get();
}

void KEPRshTextureDocumentCache::Forget() {
  position_ = 0;
  document_ = KEP_var<KEPIPLMDmtDocument>();
  hasPath_ = false;
  path_ = KEPUnicodeString();
  image_ = KEP_var<KEPTexturePixelImage>();
}
