#include "KEPRecord.h"
#include "KEPFileServices.h"
#include "KEPHostRecorder.h"

#include "KEPHostContext.h"

#include <utf8.h>
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

#include "KEPAtomicFile.h"
#include "KEPTrace.h"

namespace {
const KEPTrace& Trace() {
  static const KEPTrace trace("KEPRecord");
  return trace;
}

struct Recorder {
  bool initialised = false;
  KEPRecordMode mode = KEPRecordMode::Off;
  std::string path;
  std::map<KEPString, int> levels;
};

Recorder& TheRecorder() {
  return KEPHostContext::State<Recorder>();
}

/// `name` as the record keeps it: the file is UTF-8 JSON, so bytes that are not UTF-8 are
/// replaced by U+FFFD, the same way when capturing and when replaying, so that a replay finds
/// every level its capture recorded.
std::string RecordKey(const KEPString& name) {
  if (utf8::find_invalid(name.begin(), name.end()) == name.end()) return name;
  std::string key;
  utf8::replace_invalid(name.begin(), name.end(), std::back_inserter(key));
  return key;
}

/// Writes `levels` to the record file; false (traced) when it cannot be written.
bool WriteRecord(const std::string& path, const std::map<KEPString, int>& levels) {
  std::string error;
  try {
    nlohmann::json root;
    root["softwareLevels"] = nlohmann::json::object();
    for (const auto& [name, level] : levels) root["softwareLevels"][name] = level;
    if (KEPWriteFileAtomically(path, root.dump(2) + "\n", error)) return true;
  } catch (const std::exception& e) {  // a dump that failed, or no memory: nothing was written
    error = path + ": " + e.what();
  }
  Trace().Error(__FILE__, __LINE__, "Cannot write the record: %s", error.c_str());
  return false;
}

/// Reads the levels of a record file; false (traced) when it cannot be read or is malformed.
bool ReadRecord(const std::string& path, std::map<KEPString, int>& levels) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    Trace().Error(__FILE__, __LINE__, "%s: cannot read the record file", path.c_str());
    return false;
  }
  std::ostringstream buffer;
  buffer << in.rdbuf();
  const std::string text = buffer.str();
  nlohmann::json json;
  try {
    json = nlohmann::json::parse(text);
  } catch (const nlohmann::json::parse_error& e) {
    const std::size_t end = std::min<std::size_t>(e.byte > 0 ? e.byte - 1 : 0, text.size());
    const int line = 1 + static_cast<int>(std::count(
                             text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end), '\n'));
    Trace().Error(__FILE__, __LINE__, "%s:%d: malformed record file: not valid JSON", path.c_str(),
                  line);
    return false;
  }
  if (!json.is_object() || !json.contains("softwareLevels") ||
      !json["softwareLevels"].is_object()) {
    Trace().Error(__FILE__, __LINE__, "%s:1: malformed record file: no \"softwareLevels\" object",
                  path.c_str());
    return false;
  }
  for (const auto& [name, level] : json["softwareLevels"].items()) {
    if (!level.is_number_integer() || level.get<long long>() < std::numeric_limits<int>::min() ||
        level.get<long long>() > std::numeric_limits<int>::max()) {
      Trace().Error(__FILE__, __LINE__, "%s: malformed record file: level \"%s\" is not an integer",
                    path.c_str(), name.c_str());
      return false;
    }
    levels[name] = level.get<int>();
  }
  return true;
}

/// Starts the mode the environment asks for, once per process.
void Initialise() {
  Recorder& recorder = TheRecorder();
  if (recorder.initialised) return;
  recorder.initialised = true;
  KEPString modeValue, pathValue;
  if (FAILED(KEPGetEnv("KEPRSH_RECORD_MODE", modeValue)) || modeValue.empty()) return;
  const char* mode = modeValue.c_str();
  const bool hasPath = SUCCEEDED(KEPGetEnv("KEPRSH_RECORD", pathValue)) && !pathValue.empty();
  const char* path = pathValue.c_str();
  if (!hasPath) {
    Trace().Warning("KEPRSH_RECORD_MODE is \"%s\" but KEPRSH_RECORD names no file; not recording",
                    mode);
    return;
  }
  const std::string which = KEPToLower(mode);
  if (which == "capture")
    KEPHostRecorder::StartCapture(path);
  else if (which == "replay")
    KEPHostRecorder::StartReplay(path);
  else
    Trace().Warning("KEPRSH_RECORD_MODE \"%s\" is neither capture nor replay; not recording", mode);
}
}  // namespace

int KEPRecord::GetBuiltInLevel(const KEPString& name) {
  // Every setting the module asks for ("LayoutParameterSortingLevel",
  // "KEPRmaUIParameterConfiguration", "RNDRSHColorParameterColorPicker") is at level 1 in this
  // host, as is any other setting.
  (void)name;
  return 1;
}

int KEPRecord::GetSoftwareLevel(const KEPString& name) {
  Initialise();
  Recorder& recorder = TheRecorder();
  switch (recorder.mode) {
    case KEPRecordMode::Off:
      return GetBuiltInLevel(name);
    case KEPRecordMode::Capture: {
      const int level = GetBuiltInLevel(name);
      const std::string key = RecordKey(name);
      const auto it = recorder.levels.find(key);
      if (it != recorder.levels.end() && it->second == level) return level;
      // Kept only once the file holds it: the levels in memory are always those of the file,
      // and a level that could not be written is tried again when it is next asked for.
      std::map<KEPString, int> levels = recorder.levels;
      levels[key] = level;
      if (WriteRecord(recorder.path, levels)) recorder.levels.swap(levels);
      return level;
    }
    case KEPRecordMode::Replay: {
      const auto it = recorder.levels.find(RecordKey(name));
      return it == recorder.levels.end() ? 0 : it->second;
    }
  }
  return GetBuiltInLevel(name);
}

KEPRecordMode KEPRecord::GetMode() {
  Initialise();
  return TheRecorder().mode;
}

const std::string& KEPHostRecorder::GetRecordPath() {
  Initialise();
  return TheRecorder().path;
}

HRESULT KEPHostRecorder::StartCapture(const std::string& path) {
  Stop();
  Recorder& recorder = TheRecorder();
  recorder.path = path;
  if (path.empty() || !WriteRecord(path, recorder.levels)) {
    recorder.path.clear();
    return E_FAIL;
  }
  recorder.mode = KEPRecordMode::Capture;
  Trace().Info("Capturing software levels into %s", path.c_str());
  return S_OK;
}

HRESULT KEPHostRecorder::StartReplay(const std::string& path) {
  Stop();
  std::map<KEPString, int> levels;
  if (path.empty() || !ReadRecord(path, levels)) return E_FAIL;
  Recorder& recorder = TheRecorder();
  recorder.mode = KEPRecordMode::Replay;
  recorder.path = path;
  recorder.levels = std::move(levels);
  Trace().Info("Replaying software levels from %s", path.c_str());
  return S_OK;
}

void KEPHostRecorder::Stop() {
  Recorder& recorder = TheRecorder();
  recorder.initialised = true;
  recorder.mode = KEPRecordMode::Off;
  recorder.path.clear();
  recorder.levels.clear();
}

std::map<KEPString, int> KEPHostRecorder::RecordedLevels() {
  Initialise();
  return TheRecorder().levels;
}
