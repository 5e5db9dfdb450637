#include "KEPRbaConfiguration.h"
#include "KEPHostConfiguration.h"

#include "KEPHostContext.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <string_view>
#include <unordered_map>

namespace {
struct Configuration {
  Configuration() = default;
  // The index points into `values`: a copy would point into the original.
  Configuration(const Configuration&) = delete;
  Configuration& operator=(const Configuration&) = delete;
  Configuration(Configuration&&) = default;
  Configuration& operator=(Configuration&&) = default;

  KEPString parent;
  std::map<KEPString, KEPString> values;  // ordered: the keys of a prefix are one run
  // The same entries hashed, for the readers' exact look-ups (several per widget): views of the
  // ordered map's keys, which stay where they are for as long as the entry exists.
  std::unordered_map<std::string_view, const KEPString*> index;
  std::vector<KEPString> order;
};

struct ConfigurationStore {
  std::map<KEPString, Configuration> configurations;
};

std::map<KEPString, Configuration>& Store() {
  return KEPHostContext::State<ConfigurationStore>().configurations;
}

/// Calls `visit` with configuration `id` and then each of its parents, while it answers true.
/// A parent cycle ends the walk instead of looping; so does a parent that does not exist.
template <class Visit>
void WalkParents(const KEPString& id, Visit visit) {
  // A chain without a cycle visits each configuration at most once, so a walk longer than the
  // store is in a cycle. Counting keeps the readers free of allocation (they run per widget).
  std::size_t left = Store().size();
  const KEPString* current = &id;
  while (left-- > 0) {
    auto it = Store().find(*current);
    if (it == Store().end() || !visit(it->second) || it->second.parent.empty()) return;
    current = &it->second.parent;
  }
}

const KEPString* Lookup(const KEPString& id, const KEPString& key) {
  const KEPString* found = nullptr;
  WalkParents(id, [&](const Configuration& c) {
    auto value = c.index.find(std::string_view(key));
    if (value != c.index.end()) found = value->second;
    return !found;
  });
  return found;
}
}  // namespace

HRESULT KEPRbaConfiguration::GetHierarchicalValue(const KEPString& id, const KEPString& key,
                                                  KEPString& out) {
  const KEPString* value = Lookup(id, key);
  if (!value) return E_FAIL;
  out = *value;
  return S_OK;
}

HRESULT KEPRbaConfiguration::GetHierarchicalValue(const KEPString& id, const KEPString& key,
                                                  KEPUnicodeString& out) {
  const KEPString* value = Lookup(id, key);
  if (!value) return E_FAIL;
  out = KEPUnicodeString::FromUTF8(*value);
  return S_OK;
}

HRESULT KEPRbaConfiguration::GetHierarchicalValue(const KEPString& id, const KEPString& key,
                                                  int& out) {
  const KEPString* value = Lookup(id, key);
  if (!value) return E_FAIL;
  // The readers parse their numbers with sscanf; an integer key reads the same way, so that a
  // text means one number whichever way it is asked for.
  int parsed = 0;
  if (std::sscanf(value->c_str(), "%d", &parsed) != 1) return E_FAIL;
  out = parsed;
  return S_OK;
}

HRESULT KEPRbaConfiguration::GetHierarchicalKeys(const KEPString& id, const KEPString& prefix,
                                                 std::vector<KEPString>& keys) {
  if (!Store().count(id)) return E_FAIL;
  std::vector<KEPString> found;
  WalkParents(id, [&](const Configuration& c) {
    for (auto it = c.values.lower_bound(prefix);
         it != c.values.end() && it->first.compare(0, prefix.size(), prefix) == 0; ++it)
      found.push_back(it->first);
    return true;
  });
  std::sort(found.begin(), found.end());
  found.erase(std::unique(found.begin(), found.end()), found.end());
  keys = std::move(found);
  return S_OK;
}

void KEPHostConfiguration::SetValue(const KEPString& id, const KEPString& key,
                                    const KEPString& value) {
  Configuration& c = Store()[id];
  const auto [entry, inserted] = c.values.insert_or_assign(key, value);
  if (!inserted) return;
  c.order.push_back(key);
  c.index.emplace(std::string_view(entry->first), &entry->second);
}

void KEPHostConfiguration::SetParent(const KEPString& id, const KEPString& parentId) {
  Store()[id].parent = parentId;
}

bool KEPHostConfiguration::HasConfiguration(const KEPString& id) {
  return Store().count(id) > 0;
}

std::vector<KEPString> KEPHostConfiguration::ConfigurationIds() {
  std::vector<KEPString> ids;
  for (const auto& [id, c] : Store()) ids.push_back(id);
  return ids;
}

KEPString KEPHostConfiguration::Parent(const KEPString& id) {
  auto it = Store().find(id);
  return it == Store().end() ? KEPString() : it->second.parent;
}

std::vector<KEPString> KEPHostConfiguration::Keys(const KEPString& id) {
  auto it = Store().find(id);
  return it == Store().end() ? std::vector<KEPString>{} : it->second.order;
}

void KEPHostConfiguration::Clear() {
  Store().clear();
}
