#include "RshviewUiQueue.h"

RshviewUiQueue::Outcome RshviewUiQueue::Call(std::function<void()> task,
                                             std::chrono::milliseconds timeout) {
  auto entry = std::make_shared<Task>();
  entry->run = std::move(task);
  std::unique_lock lock(mutex_);
  if (closed_) return Outcome::Closed;
  tasks_.push_back(entry);
  queued_.notify_one();
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (entry->state != State::Done) {
    if (entry->state == State::Dropped) return Outcome::Closed;
    if (entry->state == State::Queued &&
        finished_.wait_until(lock, deadline) == std::cv_status::timeout &&
        entry->state == State::Queued) {
      entry->state = State::Dropped;  // the UI thread skips it
      return Outcome::TimedOut;
    }
    if (entry->state == State::Running) finished_.wait(lock);
  }
  return Outcome::Done;
}

void RshviewUiQueue::RunPending(std::chrono::milliseconds wait) {
  std::unique_lock lock(mutex_);
  if (tasks_.empty()) queued_.wait_for(lock, wait);
  while (!tasks_.empty()) {
    const std::shared_ptr<Task> task = tasks_.front();
    tasks_.pop_front();
    if (task->state != State::Queued) continue;
    task->state = State::Running;
    lock.unlock();
    try {
      task->run();
    } catch (...) {
      // The caller's closure reports its own failures; one that escapes must not leave the
      // caller waiting for a task that never finishes.
    }
    lock.lock();
    task->state = State::Done;
    finished_.notify_all();
  }
}

void RshviewUiQueue::Close() {
  const std::lock_guard lock(mutex_);
  closed_ = true;
  for (const auto& task : tasks_)
    if (task->state == State::Queued) task->state = State::Dropped;
  tasks_.clear();
  finished_.notify_all();
}
