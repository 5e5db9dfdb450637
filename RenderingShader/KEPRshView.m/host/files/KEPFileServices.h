// Environment and file services of the host: environment values, files found along a search
// path, and file access tests.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPString.h"
#include "KEPTypes.h"

/// Value of environment variable `name`: S_OK and `value`, or E_FAIL (value untouched) when the
/// variable is not set.
HRESULT KEPGetEnv(const char* name, KEPString& value);

/// Finds `relative` under the directories of `searchPathValue`, which are separated by ";" and
/// tried in order (empty segments are skipped). Directory and relative path are joined with
/// "/". S_OK and the first existing path in `found`, else E_FAIL (found untouched).
HRESULT KEPFindPath(const char* relative, const char* searchPathValue, KEPString& found);

/// Like access(): 0 when `path` can be accessed in `mode` (0 = exists, 2 = write, 4 = read),
/// else -1.
int KEPFileAccess(const char* path, int mode);

/// Separator of the search-path values ("KEPStartupPath").
inline constexpr char KEPSearchPathSeparator = ';';
/// Separator of directories in a path on this platform.
inline constexpr char KEPPathSeparator = '/';

#pragma GCC visibility pop
