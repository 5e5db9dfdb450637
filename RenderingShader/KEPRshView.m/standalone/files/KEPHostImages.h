// The host's side of the texture image cache.
#pragma once

#include "KEPPixelImage.h"

class KEPHostImages {
 public:
  /// Forgets every cached image (images still referenced elsewhere stay alive).
  static void FlushCache();
};
