// KEPRshTextureDocumentCache: the image path and the image of one texture document, as last
// found for a parameter position.
//
// Finding them means a projection-path query and an image look-up by path, both of which build
// strings, and the viewer asks on every frame. A document never changes, and the entry holds a
// reference on the one it describes, so a document at the same address is the same document: a
// parameter given another image misses and is looked up again. A failed image load is not kept
// (the next question tries again), as the image cache of the host does not keep one either.
#pragma once

#include "KEPIPLMDmtDocument.h"
#include "KEPPixelImage.h"
#include "KEPString.h"
#include "KEP_var.h"

class KEPRshTextureDocumentCache {
 public:
  /// The projection path of `document`, the value of the parameter at `position`; null when the
  /// host gives it none. The pointer is valid until the next call.
  const KEPUnicodeString* Path(int position, KEPIPLMDmtDocument* document);
  /// The image of `document` (at `position`) with a reference for the caller; null when it has
  /// no path or its image cannot be loaded.
  KEPTexturePixelImage* Image(int position, KEPIPLMDmtDocument* document);
  /// Forgets the entry and lets its document and image go.
  void Forget();

 private:
  int position_ = 0;
  KEP_var<KEPIPLMDmtDocument> document_;
  bool hasPath_ = false;
  KEPUnicodeString path_;
  KEP_var<KEPTexturePixelImage> image_;
};
