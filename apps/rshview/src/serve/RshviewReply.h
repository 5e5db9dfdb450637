// One answer of the HTTP API: status, body and content type, made on whichever thread computed it
// and sent by the HTTP layer.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

/// The type of the JSON answers. cpp-httplib compresses an answer whose type is exactly
/// "application/json" (or a text type) when the client accepts it, with brotli at its slowest
/// quality: seconds for a large editor's tree, and nothing gained over loopback. With its
/// charset the type is one the library leaves as it is.
inline constexpr const char* kRshviewJsonType = "application/json; charset=utf-8";

struct RshviewReply {
  int status = 200;
  std::string body;
  std::string contentType = kRshviewJsonType;

  /// A JSON answer.
  static RshviewReply Json(const nlohmann::ordered_json& json, int status = 200);
  /// An error answer: {"error": error, "detail": detail}.
  static RshviewReply Error(int status, const std::string& error,
                            const nlohmann::ordered_json& detail);
};

/// JSON text on one line; invalid UTF-8 in texts is replaced rather than refused.
std::string RshviewJsonText(const nlohmann::ordered_json& json);
