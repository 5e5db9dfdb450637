// The host's side of the recorder: starting and stopping capture and replay.
#pragma once

#include <map>
#include <string>

#include "KEPRecord.h"

class KEPHostRecorder {
 public:
  /// The record file of the current mode; empty when off.
  static const std::string& GetRecordPath();
  /// Starts capturing into `path`: the file is written at once (empty) and again after every
  /// level asked for. E_FAIL (traced) when it cannot be written; the recorder is then off.
  static HRESULT StartCapture(const std::string& path);
  /// Starts replaying `path`. E_FAIL (traced, naming the file and line) when it cannot be read
  /// or is malformed; the recorder is then off.
  static HRESULT StartReplay(const std::string& path);
  /// Stops capturing or replaying and forgets the levels; the environment is not read again.
  static void Stop();
  /// Levels captured or loaded for replay so far.
  static std::map<KEPString, int> RecordedLevels();
};
