#include "KEPExtensionRegistry.h"

#include <map>
#include <utility>

namespace {
using Key = std::pair<std::string, std::string>;
std::map<Key, KEPExtensionEntry, std::less<>>& Entries() {
  static std::map<Key, KEPExtensionEntry, std::less<>> entries;
  return entries;
}
}  // namespace

void KEPExtensionRegistry::Register(const KEPExtensionEntry& entry) {
  Entries()[{entry.lateType, entry.interfaceName}] = entry;
}

const KEPExtensionEntry* KEPExtensionRegistry::Find(std::string_view lateType,
                                                    std::string_view interfaceName) {
  auto& entries = Entries();
  auto it = entries.find(Key{std::string(lateType), std::string(interfaceName)});
  return it == entries.end() ? nullptr : &it->second;
}

void KEPExtensionRegistry::Clear() {
  Entries().clear();
}
