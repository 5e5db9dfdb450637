#include "KEPExtensionRegistry.h"

#include <functional>
#include <map>
#include <string>

namespace {
// Two levels with transparent comparison, so that a look-up by string_view allocates nothing: the
// viewer queries interfaces on every frame.
struct Registry {
  std::map<std::string, std::map<std::string, KEPExtensionEntry, std::less<>>, std::less<>> entries;
  std::map<std::string, std::string, std::less<>> parents;
};

Registry& TheRegistry() {
  static Registry registry;
  return registry;
}

/// The parent late type of `lateType`, or null.
const std::string* ParentOf(const Registry& registry, std::string_view lateType) {
  auto it = registry.parents.find(lateType);
  return it == registry.parents.end() ? nullptr : &it->second;
}
}  // namespace

void KEPExtensionRegistry::Register(const KEPExtensionEntry& entry) {
  TheRegistry().entries[entry.lateType][entry.interfaceName] = entry;
}

const KEPExtensionEntry* KEPExtensionRegistry::Find(std::string_view lateType,
                                                    std::string_view interfaceName) {
  const Registry& registry = TheRegistry();
  // Parent chains are acyclic (DeclareParent refuses a cycle), so the walk ends.
  for (std::string_view type = lateType; !type.empty();) {
    if (auto byType = registry.entries.find(type); byType != registry.entries.end()) {
      auto it = byType->second.find(interfaceName);
      if (it != byType->second.end()) return &it->second;
    }
    const std::string* parent = ParentOf(registry, type);
    if (!parent) break;
    type = *parent;
  }
  return nullptr;
}

bool KEPExtensionRegistry::DeclareParent(std::string_view lateType, std::string_view parent) {
  Registry& registry = TheRegistry();
  for (std::string_view ancestor = parent; !ancestor.empty();) {
    if (ancestor == lateType) return false;
    const std::string* next = ParentOf(registry, ancestor);
    if (!next) break;
    ancestor = *next;
  }
  registry.parents.insert_or_assign(std::string(lateType), std::string(parent));
  return true;
}

void KEPExtensionRegistry::Clear() {
  TheRegistry().entries.clear();
  TheRegistry().parents.clear();
}
