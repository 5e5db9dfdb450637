#include "KEPRbaConfiguration.h"
#include "KEPHostConfiguration.h"

#include "KEPHostContext.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <map>
#include <set>
#include <unordered_map>

namespace {
struct Configuration {
  KEPString parent;
  std::unordered_map<KEPString, KEPString> values;
  std::vector<KEPString> order;
};

struct ConfigurationStore {
  std::map<KEPString, Configuration> configurations;
};

std::map<KEPString, Configuration>& Store() {
  return KEPHostContext::State<ConfigurationStore>().configurations;
}

const KEPString* Lookup(const KEPString& id, const KEPString& key) {
  std::set<KEPString> seen;  // a parent cycle ends the walk instead of looping
  const KEPString* current = &id;
  while (seen.insert(*current).second) {
    auto it = Store().find(*current);
    if (it == Store().end()) return nullptr;
    auto value = it->second.values.find(key);
    if (value != it->second.values.end()) return &value->second;
    if (it->second.parent.empty()) return nullptr;
    current = &it->second.parent;
  }
  return nullptr;
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
  const char* begin = value->c_str();
  char* end = nullptr;
  errno = 0;
  const long parsed = std::strtol(begin, &end, 10);
  if (end == begin || errno == ERANGE || parsed < INT_MIN || parsed > INT_MAX) return E_FAIL;
  while (*end == ' ' || *end == '\t') ++end;
  if (*end != '\0') return E_FAIL;
  out = static_cast<int>(parsed);
  return S_OK;
}

void KEPHostConfiguration::SetValue(const KEPString& id, const KEPString& key,
                                    const KEPString& value) {
  Configuration& c = Store()[id];
  if (c.values.insert_or_assign(key, value).second) c.order.push_back(key);
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
