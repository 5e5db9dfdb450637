#include "RshviewRequestChecks.h"

#include <algorithm>
#include <initializer_list>
#include <utility>
#include <vector>

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

namespace {
/// Reads the keys of a body that names an editor: `restricted` (a boolean), `editor` and the
/// text keys of `texts`; each key of `required` must be there. False with `error` set.
bool ReadEditorBody(const nlohmann::json& body,
                    const std::vector<std::pair<std::string, std::string*>>& texts,
                    std::initializer_list<const char*> required, std::string& editor,
                    bool& restricted, std::string& error) {
  std::string keys = "editor, restricted";
  for (const auto& [key, target] : texts) keys += ", " + key;
  for (const auto& [key, value] : body.items()) {
    if (key == "restricted") {
      if (!value.is_boolean()) {
        error = "'restricted' must be true or false";
        return false;
      }
      restricted = value.get<bool>();
      continue;
    }
    std::string* target = key == "editor" ? &editor : nullptr;
    for (const auto& [name, text] : texts)
      if (key == name) target = text;
    if (!target) {
      error = "unknown key '" + key + "' (keys: ";
      error.append(keys).append(")");
      return false;
    }
    if (!value.is_string()) {
      error = "'" + key + "' must be a string, not " + std::string(value.type_name());
      return false;
    }
    *target = value.get<std::string>();
  }
  for (const char* key : required)
    if (!body.contains(key)) {
      error = "missing key '" + std::string(key) + "'";
      return false;
    }
  if (!RshviewEditorKindValid(editor)) {
    error = "'editor' must be immersive or classic, not '" + editor + "'";
    return false;
  }
  if (restricted && editor == "classic") {
    error = "'restricted' applies to the immersive editor only";
    return false;
  }
  return true;
}
}  // namespace

bool RshviewReadEditorEvent(const nlohmann::json& body, RshviewEditorEvent& event,
                            std::string& error) {
  return ReadEditorBody(body,
                        {{"action", &event.action},
                         {"path", &event.path},
                         {"argument", &event.argument},
                         {"view", &event.view}},
                        {"action", "path"}, event.editor, event.restricted, error);
}

bool RshviewReadParameterReset(const nlohmann::json& body, RshviewParameterReset& reset,
                               std::string& error) {
  if (!ReadEditorBody(
          body, {{"path", &reset.path}, {"parameter", &reset.parameter}, {"view", &reset.view}}, {},
          reset.editor, reset.restricted, error))
    return false;
  // One of the two names the parameter: the label's path (resolved by the editor) or its name.
  const bool byPath = body.contains("path"), byName = body.contains("parameter");
  if (byPath == byName) {
    error = byPath ? "give 'path' (the label's widget path) or 'parameter', not both"
                   : "missing key 'path' (a label's widget path) or 'parameter'";
    return false;
  }
  if (byPath && reset.path.empty()) {
    error = "'path' must name a label, not be empty";
    return false;
  }
  return true;
}
