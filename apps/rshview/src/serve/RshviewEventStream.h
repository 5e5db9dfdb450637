// The server-sent events of `rshview serve`: every client of GET /api/events reads the same
// sequence of events, from the moment it subscribed. Thread-safe: the UI thread publishes, each
// stream's HTTP thread reads.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>

class RshviewEventStream {
 public:
  /// At most this many clients read at once.
  static constexpr int kMaxSubscribers = 16;
  /// The newest events kept for clients that have not read them yet.
  static constexpr std::size_t kKept = 4096;

  /// Adds `event` with `data` (one JSON line) for every subscriber.
  void Publish(const std::string& event, const nlohmann::ordered_json& data);
  /// Registers a reader; false when kMaxSubscribers read already or the stream is closed.
  /// `cursor` is set so that the reader gets the events published from now on.
  bool Subscribe(std::uint64_t& cursor);
  void Unsubscribe();
  /// Waits up to `wait` for events after `cursor` and sets `text` to them, in the wire format
  /// ("event: NAME\ndata: JSON\n\n" each), or to a heartbeat comment when none came. False once
  /// the stream is closed.
  bool Next(std::uint64_t& cursor, std::string& text, std::chrono::milliseconds wait);
  /// Ends every reader's stream (the server stops).
  void Close();

 private:
  std::mutex mutex_;
  std::condition_variable published_;
  std::deque<std::string> events_;  ///< the wire texts of the newest events
  std::uint64_t next_ = 0;          ///< the sequence number of the next event
  int subscribers_ = 0;
  bool closed_ = false;
};
