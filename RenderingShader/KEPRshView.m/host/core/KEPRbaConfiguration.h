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
  /// Integer form: the whole text must be one decimal integer (blanks around it allowed) that
  /// fits 32 bits; anything else is E_FAIL with `out` untouched.
  static HRESULT GetHierarchicalValue(const KEPString& id, const KEPString& key, int& out);
};

#pragma GCC visibility pop
