#include "KEPFileServices.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>
#include <utility>

#include "KEPHostContext.h"

HRESULT KEPGetEnv(const char* name, KEPString& value) {
  if (!name) return E_FAIL;
  if (auto set = KEPHostEnvironmentOverride(name)) {
    value = std::move(*set);
    return S_OK;
  }
  const char* found = std::getenv(name);
  if (!found) return E_FAIL;
  value = found;
  return S_OK;
}

HRESULT KEPFindPath(const char* relative, const char* searchPathValue, KEPString& found) {
  if (!relative || !*relative || !searchPathValue) return E_FAIL;
  std::string_view rest(searchPathValue);
  while (true) {
    const std::size_t end = rest.find(KEPSearchPathSeparator);
    const std::string_view directory = rest.substr(0, end);
    if (!directory.empty()) {
      std::string candidate(directory);
      if (candidate.back() != KEPPathSeparator) candidate += KEPPathSeparator;
      candidate += relative;
      if (KEPFileAccess(candidate.c_str(), 0) == 0) {
        found = std::move(candidate);
        return S_OK;
      }
    }
    if (end == std::string_view::npos) break;
    rest.remove_prefix(end + 1);
  }
  return E_FAIL;
}

int KEPFileAccess(const char* path, int mode) {
  if (!path || !*path) return -1;
  int how = F_OK;
  if (mode & 2) how |= W_OK;
  if (mode & 4) how |= R_OK;
  return ::access(path, how) == 0 ? 0 : -1;
}
