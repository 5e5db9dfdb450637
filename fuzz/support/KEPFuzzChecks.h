// What every fuzz target checks of a load result: each error names one of the files the load read
// and, when it has a line, a line of that file ("FILE:LINE: ..."); in a file whose keys are
// written as they are named (a configuration file), the line holds the error's key.
#pragma once

#include <string>
#include <vector>

#include "KEPLoadResult.h"

struct KEPFuzzReadFile {
  std::string path;
  std::string text;
  bool keysAsWritten = false;
};

/// Aborts with the faulty error when one breaks the rule above.
void KEPFuzzCheckErrors(const KEPLoadResult& result, const std::vector<KEPFuzzReadFile>& files);
