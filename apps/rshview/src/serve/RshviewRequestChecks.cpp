#include "RshviewRequestChecks.h"

#include <algorithm>

namespace {
std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) {
    return static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  });
  return text;
}
}  // namespace

std::vector<std::string> RshviewOwnAddresses(const std::string& bindHost, int port) {
  const std::string suffix = ":" + std::to_string(port);
  std::vector<std::string> own{"127.0.0.1" + suffix, "localhost" + suffix, "[::1]" + suffix};
  if (!bindHost.empty()) {
    const bool ipv6 = bindHost.find(':') != std::string::npos && bindHost.front() != '[';
    own.push_back((ipv6 ? "[" + bindHost + "]" : bindHost) + suffix);
  }
  for (std::string& address : own) address = Lower(address);
  return own;
}

bool RshviewHostAllowed(const std::string& host, const std::vector<std::string>& own) {
  return std::find(own.begin(), own.end(), Lower(host)) != own.end();
}

bool RshviewOriginAllowed(const std::string& origin, const std::vector<std::string>& own) {
  const std::string scheme = "http://";
  const std::string lower = Lower(origin);
  return lower.starts_with(scheme) && RshviewHostAllowed(lower.substr(scheme.size()), own);
}

bool RshviewClientIdValid(const std::string& id) {
  if (id.empty() || id.size() > 64) return false;
  return std::all_of(id.begin(), id.end(), [](unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_' || c == '.';
  });
}

bool RshviewParseBody(const std::string& body, bool emptyIsObject, nlohmann::json& json,
                      std::string& error, bool& malformed) {
  malformed = false;
  if (body.empty() && emptyIsObject) {
    json = nlohmann::json::object();
    return true;
  }
  try {
    json = nlohmann::json::parse(body);
  } catch (const nlohmann::json::parse_error& e) {
    // "[json.exception.parse_error.101] parse error at line 1, column 9: ..." without the code.
    std::string message = e.what();
    const std::size_t at = message.find(" at line ");
    if (at != std::string::npos) message = message.substr(at + 4);
    error = message;
    malformed = true;
    return false;
  }
  if (!json.is_object()) {
    error = "the body must be a JSON object, not " + std::string(json.type_name());
    return false;
  }
  return true;
}

bool RshviewEditorKindValid(const std::string& kind) {
  return kind == "immersive" || kind == "classic";
}

bool RshviewReadEditorEvent(const nlohmann::json& body, RshviewEditorEvent& event,
                            std::string& error) {
  static const char* const kKeys = "editor, restricted, action, path, argument";
  for (const auto& [key, value] : body.items()) {
    if (key == "restricted") {
      if (!value.is_boolean()) {
        error = "'restricted' must be true or false";
        return false;
      }
      event.restricted = value.get<bool>();
      continue;
    }
    std::string* target = key == "editor"     ? &event.editor
                          : key == "action"   ? &event.action
                          : key == "path"     ? &event.path
                          : key == "argument" ? &event.argument
                                              : nullptr;
    if (!target) {
      error = "unknown key '" + key + "' (keys: " + kKeys + ")";
      return false;
    }
    if (!value.is_string()) {
      error = "'" + key + "' must be a string, not " + std::string(value.type_name());
      return false;
    }
    *target = value.get<std::string>();
  }
  for (const char* required : {"action", "path"})
    if (!body.contains(required)) {
      error = "missing key '" + std::string(required) + "'";
      return false;
    }
  if (!RshviewEditorKindValid(event.editor)) {
    error = "'editor' must be immersive or classic, not '" + event.editor + "'";
    return false;
  }
  if (event.restricted && event.editor == "classic") {
    error = "'restricted' applies to the immersive editor only";
    return false;
  }
  return true;
}
