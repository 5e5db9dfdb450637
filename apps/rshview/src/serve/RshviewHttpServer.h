// The HTTP side of `rshview serve`: the routes of docs/api.md on cpp-httplib's threads. Requests
// pass RshviewRequestChecks, then those that touch the host are handed to the UI thread through
// RshviewUiQueue; static files and the event stream are answered on the HTTP threads.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "RshviewEventStream.h"
#include "RshviewReply.h"
#include "RshviewServeSession.h"
#include "RshviewStaticFiles.h"
#include "RshviewUiQueue.h"

namespace httplib {
class Server;
struct Request;
struct Response;
}  // namespace httplib

struct RshviewServerOptions {
  std::string host = "127.0.0.1";              ///< the address to listen on
  int port = 8642;                             ///< 0: any free port
  std::chrono::milliseconds uiTimeout{10000};  ///< then a request answers 503 busy
  std::chrono::milliseconds heartbeat{15000};  ///< between comments on an idle event stream
};

class RshviewHttpServer {
 public:
  /// The largest request body.
  static constexpr std::size_t kMaxBody = std::size_t{64} * 1024;
  /// How much of a body over kMaxBody is read and dropped before the connection is closed.
  static constexpr std::size_t kMaxDrained = std::size_t{1024} * 1024;
  /// The threads answering requests; event streams take at most half of them.
  static constexpr int kWorkers = 2 * RshviewEventStream::kMaxSubscribers;

  RshviewHttpServer(RshviewServeSession& session, RshviewUiQueue& queue, RshviewEventStream& events,
                    const RshviewStaticFiles& statics, RshviewServerOptions options);
  ~RshviewHttpServer();
  RshviewHttpServer(const RshviewHttpServer&) = delete;
  RshviewHttpServer& operator=(const RshviewHttpServer&) = delete;

  /// Binds the address and starts answering on a thread of its own; false with `error` set.
  bool Start(std::string& error);
  /// The port bound (after Start).
  int Port() const { return port_; }
  /// Stops answering and waits for every HTTP thread. Close the event stream and the UI queue
  /// first, so that no handler is left waiting on them.
  void Stop();

 private:
  /// Answers `request`, whose body (read already) is `body`.
  void Handle(const httplib::Request& request, httplib::Response& response,
              const std::string& body);
  RshviewReply Route(const httplib::Request& request, httplib::Response& response,
                     const std::string& body);
  RshviewReply Api(const httplib::Request& request, httplib::Response& response,
                   const std::string& bodyText, const std::string& client);
  /// Runs `work` on the UI thread; 503 busy when it does not get there in time.
  template <class Work>
  RshviewReply OnUi(Work work);
  void Events(httplib::Response& response);

  RshviewServeSession& session_;
  RshviewUiQueue& queue_;
  RshviewEventStream& events_;
  const RshviewStaticFiles& statics_;
  RshviewServerOptions options_;
  std::unique_ptr<httplib::Server> server_;
  std::thread thread_;
  int port_ = 0;
  std::vector<std::string> own_;  ///< this server's addresses, for Host and Origin
};
