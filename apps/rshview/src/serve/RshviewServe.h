// `rshview serve`: the editors of a document in a browser, over HTTP on this machine.
#pragma once

#include <atomic>
#include <functional>
#include <string>

#include "RshviewCommand.h"

/// `rshview serve`.
int RunServeCommand(RshviewContext& context);
extern const char* const kRshviewServeHelp;

/// Lets a program that runs `rshview serve` in-process (the tests) learn the port and stop the
/// server, as Ctrl-C does.
struct RshviewServeControl {
  std::atomic<bool> stop{false};
  /// Called on the server's UI thread once it answers, with the port it listens on.
  std::function<void(int port)> ready;
  /// The UI thread's time-out for a request (then 503 busy), in milliseconds.
  int uiTimeoutMs = 10000;
};

/// The control the next `rshview serve` runs under (null: signals only). Not owned.
void RshviewSetServeControl(RshviewServeControl* control);

/// The file `rshview serve` edits when no --doc is given: $RSHVIEW_DATA/showroom.rshdoc.json,
/// else $XDG_DATA_HOME/rshview/..., else ~/.local/share/rshview/...; empty when none of those
/// variables is set.
std::string RshviewWorkingCopyPath();
