// The configuration store: text values by (configuration identifier, key), with a parent
// configuration to fall back on.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <string>
#include <vector>

#include "KEPString.h"
#include "KEPTypes.h"

class KEPRbaConfiguration {
 public:
  /// Value of `key` in configuration `id` or, when missing there, in its parents.
  /// Returns E_FAIL and leaves `out` untouched when the key is missing.
  static HRESULT GetHierarchicalValue(const KEPString& id, const KEPString& key, KEPString& out);
  static HRESULT GetHierarchicalValue(const KEPString& id, const KEPString& key,
                                      KEPUnicodeString& out);
  /// Integer form: the text read as the C library's sscanf reads "%d" (leading blanks and a sign
  /// allowed, the text after the number ignored: "7abc" is 7). E_FAIL, with `out` untouched, when
  /// the key is missing or its text does not begin with a number.
  static HRESULT GetHierarchicalValue(const KEPString& id, const KEPString& key, int& out);
  /// Names of the keys beginning with `prefix` that GetHierarchicalValue finds for configuration
  /// `id`: those of `id` and of its parents, each name once, in ascending byte order. Lets a
  /// reader visit the keys of a family ("x.Enum0", "x.Enum7", ...) without asking for every
  /// name that might exist. E_FAIL, with `keys` untouched, when `id` is no configuration.
  static HRESULT GetHierarchicalKeys(const KEPString& id, const KEPString& prefix,
                                     std::vector<KEPString>& keys);
};

#pragma GCC visibility pop
