// The tasks that the HTTP threads hand to the one user-interface thread that owns the host.
//
// A handler posts a closure and waits for it to run, up to a time-out. A closure that has not
// started when the time-out passes is dropped (it never runs), so the handler can answer "busy";
// one that has started is waited for to the end, so a closure may refer to the handler's locals.
// Closing the queue (when the server stops) drops every waiting closure and refuses new ones.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

class RshviewUiQueue {
 public:
  enum class Outcome { Done, TimedOut, Closed };

  /// Any thread but the UI thread: runs `task` on the UI thread and waits for it.
  Outcome Call(std::function<void()> task, std::chrono::milliseconds timeout);
  /// The UI thread: runs every queued task; when none is queued, waits up to `wait` for one.
  void RunPending(std::chrono::milliseconds wait);
  /// Drops the queued tasks and refuses later ones (their callers get Closed).
  void Close();

 private:
  enum class State { Queued, Running, Done, Dropped };
  struct Task {
    std::function<void()> run;
    State state = State::Queued;
  };
  std::mutex mutex_;
  std::condition_variable queued_;    ///< wakes the UI thread
  std::condition_variable finished_;  ///< wakes the callers
  std::deque<std::shared_ptr<Task>> tasks_;
  bool closed_ = false;
};
