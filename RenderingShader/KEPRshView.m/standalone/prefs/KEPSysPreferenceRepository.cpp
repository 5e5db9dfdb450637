// The preference file is JSON:
//
//   { "repositories": { "<repository>": { "<key>": "text" | [short, ...], ... }, ... } }
//
// A file that does not parse, or whose top level has another shape, is renamed to "<file>.bad"
// (or "<file>.bad.1", ... when that exists, so the user's data is never silently lost) and the
// store starts empty; a single value of the wrong type is dropped with a warning naming its
// repository and key.
#include "KEPSysPreferenceRepository.h"
#include "KEPFileServices.h"
#include "KEPHostPreferences.h"

#include "KEPHostContext.h"

#include <utf8.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "KEPAtomicFile.h"
#include "KEPTrace.h"

namespace {
const KEPTrace& Trace() {
  static const KEPTrace trace("KEPSysPreferenceRepository");
  return trace;
}

std::string Env(const char* name) {
  KEPString value;
  return SUCCEEDED(KEPGetEnv(name, value)) ? value : std::string();
}

/// One-based line of byte offset `offset` in `text`.
int LineOf(const std::string& text, std::size_t offset) {
  offset = std::min(offset, text.size());
  return 1 + static_cast<int>(std::count(text.begin(),
                                         text.begin() + static_cast<std::ptrdiff_t>(offset), '\n'));
}

bool IsUtf8(const std::string& text) {
  return utf8::find_invalid(text.begin(), text.end()) == text.end();
}

/// `text` for a trace: bytes that are not UTF-8 replaced by U+FFFD.
std::string Printable(const std::string& text) {
  std::string out;
  utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(out));
  return out;
}

/// A JSON value as a preference value; false when it is neither a text nor a list of shorts.
bool ToValue(const nlohmann::json& json, KEPSysPreferenceRepository::Value& value) {
  if (json.is_string()) {
    value = json.get<std::string>();
    return true;
  }
  if (!json.is_array()) return false;
  std::vector<short> shorts;
  for (const auto& item : json) {
    if (!item.is_number_integer()) return false;
    const auto n = item.get<long long>();
    if (n < std::numeric_limits<short>::min() || n > std::numeric_limits<short>::max())
      return false;
    shorts.push_back(static_cast<short>(n));
  }
  value = std::move(shorts);
  return true;
}
}  // namespace

struct KEPPreferenceStore {
  bool loaded = false;
  std::string path;
  std::map<KEPString, std::unique_ptr<KEPSysPreferenceRepository>> repositories;
  std::set<KEPString> unavailable;

  static KEPPreferenceStore& Get() { return KEPHostContext::State<KEPPreferenceStore>(); }

  KEPSysPreferenceRepository& Repository(const KEPString& name) {
    auto& slot = repositories[name];
    if (!slot) slot.reset(new KEPSysPreferenceRepository(name));
    return *slot;
  }

  void SetAside(int line, const std::string& reason) {
    // A file set aside before is never replaced: "<file>.bad", else "<file>.bad.1", ...
    std::string bad = path + ".bad";
    std::error_code ec;
    for (int n = 1; std::filesystem::exists(bad, ec) && n <= 1000; ++n)
      bad = path + ".bad." + std::to_string(n);
    std::filesystem::rename(path, bad, ec);
    if (ec)
      Trace().Warning("%s:%d: malformed preference file (%s); it could not be set aside: %s",
                      path.c_str(), line, reason.c_str(), ec.message().c_str());
    else
      Trace().Warning("%s:%d: malformed preference file (%s); set aside as %s", path.c_str(), line,
                      reason.c_str(), bad.c_str());
  }

  void Load() {
    if (loaded) return;
    loaded = true;
    path = KEPHostPreferences::FilePath();
    if (path.empty()) {
      Trace().Warning("No configuration directory (HOME is not set); preferences are not kept");
      return;
    }
    std::error_code ec;
    if (!std::filesystem::exists(path, ec)) return;
    std::ifstream in(path, std::ios::binary);
    if (!in) {
      Trace().Warning("%s: cannot read the preference file", path.c_str());
      return;
    }
    std::ostringstream buffer;
    buffer << in.rdbuf();
    const std::string text = buffer.str();
    in.close();

    nlohmann::json json;
    try {
      json = nlohmann::json::parse(text);
    } catch (const nlohmann::json::parse_error& e) {
      SetAside(LineOf(text, e.byte > 0 ? e.byte - 1 : 0), "not valid JSON");
      return;
    }
    if (!json.is_object() || !json.contains("repositories") || !json["repositories"].is_object()) {
      SetAside(1, "no \"repositories\" object");
      return;
    }
    for (const auto& [name, entries] : json["repositories"].items()) {
      if (!entries.is_object()) {
        SetAside(1, "repository \"" + name + "\" is not an object");
        repositories.clear();
        return;
      }
      KEPSysPreferenceRepository& repository = Repository(name);
      for (const auto& [key, item] : entries.items()) {
        KEPSysPreferenceRepository::Value value;
        if (!ToValue(item, value)) {
          Trace().Warning(
              "%s: repository \"%s\", key \"%s\": not a text or a list of shorts; "
              "dropped",
              path.c_str(), name.c_str(), key.c_str());
          continue;
        }
        repository.values_[key] = value;
        repository.committed_[key] = std::move(value);
      }
    }
  }

  /// The file's text with every repository's committed state, except that `changed` has
  /// `values` instead. Every text is valid UTF-8 (the setters refuse others), so what a load
  /// reads back is exactly what was serialised; a strict dump makes sure of it.
  std::string Serialise(const KEPSysPreferenceRepository& changed,
                        const KEPSysPreferenceRepository::Values& values) const {
    nlohmann::json all = nlohmann::json::object();
    for (const auto& [name, repository] : repositories) {
      const auto& committed = repository.get() == &changed ? values : repository->committed_;
      if (committed.empty()) continue;
      nlohmann::json entries = nlohmann::json::object();
      for (const auto& [key, value] : committed) {
        if (const auto* text = std::get_if<KEPString>(&value))
          entries[key] = *text;
        else
          entries[key] = std::get<std::vector<short>>(value);
      }
      all[name] = std::move(entries);
    }
    nlohmann::json root;
    root["repositories"] = std::move(all);
    return root.dump(2) + "\n";
  }
};

KEPSysPreferenceRepository* KEPSysPreferenceRepository::GetRepository(const KEPString& name) {
  KEPPreferenceStore& store = KEPPreferenceStore::Get();
  if (name.empty() || store.unavailable.count(name)) return nullptr;
  if (!IsUtf8(name)) {
    Trace().Error(__FILE__, __LINE__, "Repository \"%s\": the name is not valid UTF-8",
                  Printable(name).c_str());
    return nullptr;
  }
  store.Load();
  return &store.Repository(name);
}

HRESULT KEPSysPreferenceRepository::GetValue(const KEPString& key, KEPString& value) const {
  const auto it = values_.find(key);
  if (it == values_.end()) return E_FAIL;
  const auto* text = std::get_if<KEPString>(&it->second);
  if (!text) return E_FAIL;
  value = *text;
  return S_OK;
}

HRESULT KEPSysPreferenceRepository::SetValue(const KEPString& key, const KEPString& value) {
  if (key.empty() || !Storable(key, &value)) return E_INVALIDARG;
  values_[key] = value;
  return S_OK;
}

int KEPSysPreferenceRepository::ReadSetting(const KEPString& key, short* values,
                                            int capacity) const {
  if (!values || capacity < 1) return 0;
  const auto it = values_.find(key);
  if (it == values_.end()) return 0;
  const auto* shorts = std::get_if<std::vector<short>>(&it->second);
  if (!shorts) return 0;
  const int count = std::min(capacity, static_cast<int>(shorts->size()));
  std::copy_n(shorts->begin(), count, values);
  return count;
}

int KEPSysPreferenceRepository::WriteSetting(const KEPString& key, const short* values, int count) {
  if (key.empty() || !values || count < 1 || !Storable(key, nullptr)) return 0;
  values_[key] = std::vector<short>(values, values + count);
  return count;
}

bool KEPSysPreferenceRepository::HasKey(const KEPString& key) const {
  return values_.count(key) != 0;
}

HRESULT KEPSysPreferenceRepository::RemoveKey(const KEPString& key) {
  return values_.erase(key) ? S_OK : E_FAIL;
}

std::vector<KEPString> KEPSysPreferenceRepository::Keys() const {
  std::vector<KEPString> keys;
  for (const auto& entry : values_) keys.push_back(entry.first);
  return keys;
}

bool KEPSysPreferenceRepository::HasUncommittedChanges() const {
  return values_ != committed_;
}

bool KEPSysPreferenceRepository::Storable(const KEPString& key, const KEPString* text) const {
  // The file is UTF-8 JSON: a text that is not UTF-8 could only be written altered, and a load
  // would then read back something else than what this repository holds.
  const bool keyOk = IsUtf8(key);
  if (keyOk && (!text || IsUtf8(*text))) return true;
  Trace().Error(__FILE__, __LINE__,
                "Repository \"%s\", key \"%s\": the %s is not valid UTF-8; not stored",
                name_.c_str(), Printable(key).c_str(), keyOk ? "value" : "key");
  return false;
}

HRESULT KEPSysPreferenceRepository::Commit() {
  KEPPreferenceStore& store = KEPPreferenceStore::Get();
  if (store.path.empty()) {
    Trace().Error(__FILE__, __LINE__, "Cannot commit \"%s\": no preference file", name_.c_str());
    return E_FAIL;
  }
  // The committed state changes only once the file holds it: after a failure this repository
  // still has its uncommitted changes, and the file and every repository's committed state
  // agree.
  std::string error;
  bool written = false;
  try {
    Values next = values_;
    const std::string text = store.Serialise(*this, next);
    std::error_code ec;
    const std::filesystem::path parent = std::filesystem::path(store.path).parent_path();
    if (!parent.empty()) std::filesystem::create_directories(parent, ec);
    if (ec)
      error = store.path + ": cannot create its directory: " + ec.message();
    else
      written = KEPWriteFileAtomically(store.path, text, error);
    if (written) committed_.swap(next);
  } catch (const std::exception& e) {  // a dump that failed, or no memory: nothing was written
    error = store.path + ": " + e.what();
  }
  if (written) return S_OK;
  Trace().Error(__FILE__, __LINE__, "Cannot commit \"%s\": %s", name_.c_str(), error.c_str());
  return E_FAIL;
}

std::string KEPHostPreferences::FilePath() {
  if (std::string path = Env("KEPRSH_PREFERENCES"); !path.empty()) return path;
  std::string base = Env("XDG_CONFIG_HOME");
  if (base.empty()) {
    const std::string home = Env("HOME");
    if (home.empty()) return {};
    base = home + "/.config";
  }
  return base + "/rshview/preferences.json";
}

void KEPHostPreferences::Unload() {
  KEPPreferenceStore& store = KEPPreferenceStore::Get();
  store.repositories.clear();
  store.path.clear();
  store.loaded = false;
}

void KEPHostPreferences::SetUnavailableForTest(const KEPString& name, bool unavailable) {
  KEPPreferenceStore& store = KEPPreferenceStore::Get();
  if (unavailable)
    store.unavailable.insert(name);
  else
    store.unavailable.erase(name);
}
