#include "RshviewHttpServer.h"

#include <httplib.h>

#include <cerrno>
#include <cstring>
#include <regex>

#include "RshviewRequestChecks.h"

namespace {
using Json = nlohmann::ordered_json;

/// What went wrong with a request that httplib answers by itself, by status.
const char* ErrorDetail(int status) {
  switch (status) {
    case 400:
      return "the request could not be read: its start line, headers or chunked body are "
             "malformed, or it ended before its Content-Length";
    case 413:
      return "the body is larger than 65536 bytes (64 KiB)";
    case 414:
      return "the request line is too long";
    default:
      return nullptr;
  }
}

/// The phrase of an error status that httplib answers by itself (a body too large, a request it
/// cannot read).
const char* ErrorPhrase(int status) {
  switch (status) {
    case 400:
      return "bad request";
    case 404:
      return "not found";
    case 405:
      return "method not allowed";
    case 413:
      return "body too large";
    case 414:
      return "URI too long";
    default:
      return "internal error";
  }
}

bool IsWrite(const std::string& method) {
  return method == "POST" || method == "PUT";
}

std::string Joined(const std::vector<std::string>& items) {
  std::string text;
  for (const std::string& item : items) text += (text.empty() ? "" : ", ") + item;
  return text;
}
}  // namespace

RshviewHttpServer::RshviewHttpServer(RshviewServeSession& session, RshviewUiQueue& queue,
                                     RshviewEventStream& events, const RshviewStaticFiles& statics,
                                     RshviewServerOptions options)
    : session_(session),
      queue_(queue),
      events_(events),
      statics_(statics),
      options_(std::move(options)) {}

RshviewHttpServer::~RshviewHttpServer() {
  Stop();
}

bool RshviewHttpServer::Start(std::string& error) {
  server_ = std::make_unique<httplib::Server>();
  // Each open event stream holds a thread; at most half of them, so that requests are answered
  // however many tabs are open.
  server_->new_task_queue = [] { return new httplib::ThreadPool(kWorkers); };
  server_->set_payload_max_length(kMaxBody);
  // An idle keep-alive connection holds a thread too, and Stop() waits for it: a browser opens
  // one with every page, so it is closed after a second. A client that stops sending or reading
  // in the middle of a request gives up its thread after a few seconds.
  server_->set_keep_alive_timeout(1);
  server_->set_read_timeout(5, 0);
  server_->set_write_timeout(5, 0);
  server_->set_tcp_nodelay(true);  // small answers go out at once
  const auto handler = [this](const httplib::Request& request, httplib::Response& response) {
    Handle(request, response, request.body);
  };
  // A request that may carry a body reads it here, not in the library: the library reads a POST
  // without Content-Length until the client closes the connection (a request without
  // Content-Length or Transfer-Encoding has no body), and it does not limit a chunked body.
  const auto reading = [this](const httplib::Request& request, httplib::Response& response,
                              const httplib::ContentReader& reader) {
    std::string body;
    bool tooLarge = false;
    std::size_t dropped = 0;
    if (request.has_header("Content-Length") || request.has_header("Transfer-Encoding")) {
      const bool read = reader([&](const char* data, std::size_t length) {
        // Past the limit the rest is read and dropped, so that the connection stays usable, up to
        // a bound: a body sent without end (chunked, so the library does not limit it) would hold
        // this thread, and Stop() with it. Then the reading stops and the connection is closed.
        tooLarge = tooLarge || body.size() + length > kMaxBody;
        if (!tooLarge) {
          body.append(data, length);
          return true;
        }
        dropped += body.size() + length;
        body.clear();
        return dropped <= kMaxDrained;
      });
      if (!read || tooLarge) {
        const int status = tooLarge || response.status == 413 ? 413 : 400;
        const RshviewReply reply =
            RshviewReply::Error(status, ErrorPhrase(status), ErrorDetail(status));
        response.status = reply.status;
        response.set_content(reply.body, reply.contentType);
        if (!read) response.set_header("Connection", "close");
        return;
      }
    }
    Handle(request, response, body);
  };
  server_->Get(".*", handler);
  server_->Options(".*", handler);
  server_->Post(".*", httplib::Server::HandlerWithContentReader(reading));
  server_->Put(".*", httplib::Server::HandlerWithContentReader(reading));
  server_->Patch(".*", httplib::Server::HandlerWithContentReader(reading));
  server_->Delete(".*", httplib::Server::HandlerWithContentReader(reading));
  server_->set_error_handler(httplib::Server::HandlerWithResponse(
      [](const httplib::Request&, httplib::Response& response) {
        if (!response.body.empty()) return httplib::Server::HandlerResponse::Unhandled;
        const char* detail = ErrorDetail(response.status);
        const RshviewReply reply = RshviewReply::Error(
            response.status, ErrorPhrase(response.status), detail ? Json(detail) : Json(nullptr));
        response.set_content(reply.body, reply.contentType);
        return httplib::Server::HandlerResponse::Handled;
      }));
  server_->set_exception_handler(
      [](const httplib::Request&, httplib::Response& response, const std::exception_ptr& failure) {
        std::string detail = "unknown failure";
        try {
          if (failure) std::rethrow_exception(failure);
        } catch (const std::exception& e) {
          detail = e.what();
        } catch (...) {
        }
        const RshviewReply reply = RshviewReply::Error(500, "internal error", detail);
        response.status = reply.status;
        response.set_content(reply.body, reply.contentType);
      });

  errno = 0;
  if (options_.port == 0) {
    port_ = server_->bind_to_any_port(options_.host);
  } else {
    port_ = server_->bind_to_port(options_.host, options_.port) ? options_.port : -1;
  }
  if (port_ <= 0) {
    error = "cannot listen on " + options_.host + ":" + std::to_string(options_.port) +
            (errno ? std::string(": ") + std::strerror(errno) : std::string());
    server_.reset();
    return false;
  }
  own_ = RshviewOwnAddresses(options_.host, port_);
  thread_ = std::thread([this] { server_->listen_after_bind(); });
  // Stop() only ends a server that runs: wait until it does.
  for (int i = 0; i < 5000 && !server_->is_running(); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  return true;
}

void RshviewHttpServer::Stop() {
  if (server_) server_->stop();
  if (thread_.joinable()) thread_.join();
  server_.reset();
}

template <class Work>
RshviewReply RshviewHttpServer::OnUi(Work work) {
  RshviewReply reply;
  const RshviewUiQueue::Outcome outcome = queue_.Call(
      [&] {
        try {
          reply = work();
        } catch (const std::exception& e) {
          reply = RshviewReply::Error(500, "internal error", e.what());
        }
      },
      options_.uiTimeout);
  if (outcome == RshviewUiQueue::Outcome::TimedOut)
    return RshviewReply::Error(
        503, "busy",
        "the editors did not answer within " + std::to_string(options_.uiTimeout.count()) + " ms");
  if (outcome == RshviewUiQueue::Outcome::Closed)
    return RshviewReply::Error(503, "busy", "the server is stopping");
  return reply;
}

void RshviewHttpServer::Handle(const httplib::Request& request, httplib::Response& response,
                               const std::string& body) {
  RshviewReply reply = Route(request, response, body);
  if (reply.status == 0) return;  // the event stream set the response up itself
  response.status = reply.status;
  // As set_content does, but the body (megabytes for a large editor) is moved, not copied.
  response.body = std::move(reply.body);
  response.headers.erase("Content-Type");
  response.set_header("Content-Type", reply.contentType);
  response.set_header("Cache-Control", "no-store");
  response.set_header("X-Content-Type-Options", "nosniff");
}

RshviewReply RshviewHttpServer::Route(const httplib::Request& request, httplib::Response& response,
                                      const std::string& body) {
  const std::string host = request.get_header_value("Host");
  if (!RshviewHostAllowed(host, own_))
    return RshviewReply::Error(
        421, "wrong host",
        "Host '" + host + "' is not this server's address (" + Joined(own_) + ")");
  const std::string& path = request.path;
  if (path == "/api" || path.starts_with("/api/")) {
    std::string client;
    if (request.has_header("X-Rshview-Client")) {
      client = request.get_header_value("X-Rshview-Client");
      if (!RshviewClientIdValid(client))
        return RshviewReply::Error(400, "bad request",
                                   "X-Rshview-Client must be 1 to 64 letters, digits, '-', '_' "
                                   "or '.'");
    }
    return Api(request, response, body, client);
  }
  if (request.method != "GET" && request.method != "HEAD") {
    response.set_header("Allow", "GET");
    return RshviewReply::Error(405, "method not allowed", request.method + " " + path);
  }
  return statics_.Get(path);
}

RshviewReply RshviewHttpServer::Api(const httplib::Request& request, httplib::Response& response,
                                    const std::string& bodyText, const std::string& client) {
  static const std::regex kNodeRoute(
      "/api/nodes/([^/]+)/(editor|events|reset|material|texture|"
      "preview\\.png)");
  const std::string& path = request.path;
  std::string node, what;
  std::vector<std::string> allowed;
  std::smatch match;
  if (path == "/api/document" || path == "/api/events") {
    allowed = {"GET"};
  } else if (path == "/api/units") {
    allowed = {"GET", "PUT"};
  } else if (path == "/api/save") {
    allowed = {"POST"};
  } else if (std::regex_match(path, match, kNodeRoute)) {
    node = match[1];
    what = match[2];
    allowed = {what == "events" || what == "reset" ? "POST" : "GET"};
  } else {
    return RshviewReply::Error(404, "not found", "no route " + path + " (see docs/api.md)");
  }
  const std::string method = request.method == "HEAD" ? "GET" : request.method;
  if (std::find(allowed.begin(), allowed.end(), method) == allowed.end()) {
    response.set_header("Allow", Joined(allowed));
    return RshviewReply::Error(405, "method not allowed",
                               request.method + " " + path + " (allowed: " + Joined(allowed) + ")");
  }

  nlohmann::json body = nlohmann::json::object();
  if (IsWrite(method)) {
    if (request.has_header("Origin") &&
        !RshviewOriginAllowed(request.get_header_value("Origin"), own_))
      return RshviewReply::Error(
          403, "forbidden origin",
          "Origin '" + request.get_header_value("Origin") + "' is not this server");
    const std::string type = request.get_header_value("Content-Type");
    const std::string media = type.substr(0, type.find(';'));
    if (media != "application/json")
      return RshviewReply::Error(415, "unsupported media type",
                                 "Content-Type must be application/json, not '" + type + "'");
    std::string error;
    bool malformed = false;
    if (!RshviewParseBody(bodyText, path == "/api/save", body, error, malformed))
      return RshviewReply::Error(400, malformed ? "malformed JSON" : "bad request", error);
  }

  if (path == "/api/document") return OnUi([&] { return session_.Document(); });
  if (path == "/api/events") {
    Events(response);
    return RshviewReply{0, {}, {}};
  }
  if (path == "/api/units") {
    if (method == "GET") return OnUi([&] { return session_.Units(); });
    return OnUi([&] { return session_.SetUnits(body, client); });
  }
  if (path == "/api/save") {
    if (!body.empty())
      return RshviewReply::Error(400, "bad request",
                                 "unknown key '" + body.begin().key() + "' (the body is {})");
    return OnUi([&] { return session_.Save(client); });
  }
  if (what == "editor") {
    const std::string kind =
        request.has_param("editor") ? request.get_param_value("editor") : "immersive";
    const std::string restricted = request.get_param_value("restricted");
    const std::string compact = request.get_param_value("compact");
    if (!RshviewEditorKindValid(kind))
      return RshviewReply::Error(400, "bad request",
                                 "editor must be immersive or classic, not '" + kind + "'");
    if (!restricted.empty() && restricted != "0" && restricted != "1")
      return RshviewReply::Error(400, "bad request",
                                 "restricted must be 0 or 1, not '" + restricted + "'");
    if (restricted == "1" && kind == "classic")
      return RshviewReply::Error(400, "bad request",
                                 "restricted applies to the immersive editor only");
    if (!compact.empty() && compact != "0" && compact != "1")
      return RshviewReply::Error(400, "bad request",
                                 "compact must be 0 or 1, not '" + compact + "'");
    return OnUi(
        [&] { return session_.Editor(node, kind, restricted == "1", client, compact == "1"); });
  }
  if (what == "events") {
    RshviewEditorEvent event;
    std::string error;
    if (!RshviewReadEditorEvent(body, event, error))
      return RshviewReply::Error(400, "bad request", error);
    return OnUi([&] { return session_.Event(node, event, client); });
  }
  if (what == "reset") {
    RshviewParameterReset reset;
    std::string error;
    if (!RshviewReadParameterReset(body, reset, error))
      return RshviewReply::Error(400, "bad request", error);
    return OnUi([&] { return session_.Reset(node, reset, client); });
  }
  if (what == "material") return OnUi([&] { return session_.Material(node); });
  if (what == "texture") return OnUi([&] { return session_.Texture(node); });
  // preview.png
  int size = 256;
  if (request.has_param("size")) {
    const std::string text = request.get_param_value("size");
    std::size_t used = 0;
    try {
      size = std::stoi(text, &used);
    } catch (const std::exception&) {
      used = 0;
    }
    if (used == 0 || used != text.size() || size < 1 || size > 1024)
      return RshviewReply::Error(400, "bad request",
                                 "size must be a whole number from 1 to 1024, not '" + text + "'");
  }
  return OnUi([&] { return session_.Preview(node, size); });
}

void RshviewHttpServer::Events(httplib::Response& response) {
  struct Reader {
    std::uint64_t cursor = 0;
    bool greeted = false;
  };
  auto reader = std::make_shared<Reader>();
  if (!events_.Subscribe(reader->cursor)) {
    const RshviewReply reply = RshviewReply::Error(
        503, "busy",
        "too many event streams are open (at most " +
            std::to_string(RshviewEventStream::kMaxSubscribers) +
            ", so that other requests are still answered): close a tab of this server");
    response.status = reply.status;
    response.set_content(reply.body, reply.contentType);
    return;
  }
  response.set_header("Cache-Control", "no-store");
  response.set_chunked_content_provider(
      "text/event-stream",
      [this, reader](std::size_t, httplib::DataSink& sink) {
        std::string text;
        if (!reader->greeted) {
          reader->greeted = true;
          text = "event: hello\ndata: " +
                 RshviewJsonText(
                     Json{{"revision", session_.Revision()}, {"instance", session_.Instance()}}) +
                 "\n\n";
        } else if (!events_.Next(reader->cursor, text, options_.heartbeat)) {
          sink.done();  // the server stops
          return true;
        }
        return sink.write(text.data(), text.size());
      },
      [this](bool) { events_.Unsubscribe(); });
}
