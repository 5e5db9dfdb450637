// Runs rshview in-process with string streams, as a user's shell would see it.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "RshviewCommand.h"

struct Outcome {
  int code;
  std::string out;
  std::string err;
};

inline Outcome Rshview(std::vector<std::string> args) {
  std::ostringstream out, err;
  const int code = RshviewMain(args, out, err);
  return {code, out.str(), err.str()};
}
