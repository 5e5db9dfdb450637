#include "RshviewEventStream.h"

#include "RshviewReply.h"

void RshviewEventStream::Publish(const std::string& event, const nlohmann::ordered_json& data) {
  std::string text = "event: " + event + "\ndata: " + RshviewJsonText(data) + "\n\n";
  {
    const std::lock_guard lock(mutex_);
    events_.push_back(std::move(text));
    if (events_.size() > kKept) events_.pop_front();
    ++next_;
  }
  published_.notify_all();
}

bool RshviewEventStream::Subscribe(std::uint64_t& cursor) {
  const std::lock_guard lock(mutex_);
  if (closed_ || subscribers_ >= kMaxSubscribers) return false;
  ++subscribers_;
  cursor = next_;
  return true;
}

void RshviewEventStream::Unsubscribe() {
  const std::lock_guard lock(mutex_);
  --subscribers_;
}

bool RshviewEventStream::Next(std::uint64_t& cursor, std::string& text,
                              std::chrono::milliseconds wait) {
  std::unique_lock lock(mutex_);
  published_.wait_for(lock, wait, [&] { return closed_ || next_ > cursor; });
  if (closed_) return false;
  text.clear();
  if (next_ == cursor) {
    text = ": heartbeat\n\n";
    return true;
  }
  // A reader that fell more than kKept events behind gets the newest ones.
  const std::uint64_t first = next_ - events_.size();
  for (std::uint64_t sequence = std::max(cursor, first); sequence < next_; ++sequence)
    text += events_[static_cast<std::size_t>(sequence - first)];
  cursor = next_;
  return true;
}

void RshviewEventStream::Close() {
  {
    const std::lock_guard lock(mutex_);
    closed_ = true;
  }
  published_.notify_all();
}
