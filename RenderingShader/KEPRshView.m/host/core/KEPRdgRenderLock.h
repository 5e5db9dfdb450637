// The rendering lock: held around every parameter write (and by readers on a render thread) so
// that a renderer never reads a half-written value. Scoped and re-entrant on one thread.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <mutex>

class KEPRdgRenderLock {
 public:
  KEPRdgRenderLock() { Mutex().lock(); }
  ~KEPRdgRenderLock() { Mutex().unlock(); }
  KEPRdgRenderLock(const KEPRdgRenderLock&) = delete;
  KEPRdgRenderLock& operator=(const KEPRdgRenderLock&) = delete;

  /// The process-wide mutex, for a render thread that locks it itself.
  static std::recursive_mutex& Mutex();
};

#pragma GCC visibility pop
