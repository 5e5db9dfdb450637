#include "KEPRdgRenderLock.h"

std::recursive_mutex& KEPRdgRenderLock::Mutex() {
  static std::recursive_mutex mutex;
  return mutex;
}
