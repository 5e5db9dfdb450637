// The host's side of the configuration store: filling it (the loaders) and looking into it
// (tools). Modules only read it, through KEPRbaConfiguration.
#pragma once

#include <vector>

#include "KEPRbaConfiguration.h"

class KEPHostConfiguration {
 public:
  static void SetValue(const KEPString& id, const KEPString& key, const KEPString& value);
  static void SetParent(const KEPString& id, const KEPString& parentId);
  static bool HasConfiguration(const KEPString& id);
  static std::vector<KEPString> ConfigurationIds();
  /// The parent of configuration `id`; empty when it has none or is not in the store.
  static KEPString Parent(const KEPString& id);
  /// Keys of configuration `id` itself (not its parents), in file order.
  static std::vector<KEPString> Keys(const KEPString& id);
  /// Removes every configuration.
  static void Clear();
};
