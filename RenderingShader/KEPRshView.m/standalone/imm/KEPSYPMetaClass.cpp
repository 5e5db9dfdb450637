// Metaclasses of introspectable classes and the builder that fills them.
//
// A metaclass names its base by name only; the base is looked up in the registry whenever it is
// needed, so a base registered after its derived class is still found. The walk up the bases is
// bounded: a base chain that loops (A names B, B names A) ends after kMaxDepth steps instead of
// hanging, and the registry refuses a class that names itself.
#include "KEPSYPMetaClass.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "KEPTrace.h"

namespace {

// Far deeper than any real class hierarchy; only a loop reaches it.
constexpr int kMaxDepth = 64;

const KEPTrace& Trace() {
  static const KEPTrace trace("KEPSYP");
  return trace;
}

bool Empty(const char* text) {
  return !text || !*text;
}

/// Why batch `entries` cannot be registered on `target`, or an empty string when it can.
std::string CheckBatch(const KEPSYPMetaClass& target, const KEPSYPPropertyEntry* entries, int count,
                       bool integersOnly) {
  if (count < 0) return KEPFormat("negative count %d", count);
  if (count > 0 && !entries) return "no entries";
  for (int i = 0; i < count; ++i) {
    const KEPSYPPropertyEntry& entry = entries[i];
    if (Empty(entry.name)) return KEPFormat("entry %d has no name", i);
    if (Empty(entry.type)) return KEPFormat("property \"%s\" has no type", entry.name);
    if (!entry.get) return KEPFormat("property \"%s\" has no getter", entry.name);
    if (integersOnly && std::strcmp(entry.type, "int") != 0)
      return KEPFormat("property \"%s\" is of type \"%s\", not \"int\"", entry.name, entry.type);
    const std::string_view name(entry.name);
    const auto& own = target.GetOwnProperties();
    if (std::any_of(own.begin(), own.end(),
                    [&](const KEPSYPProperty& p) { return p.name == name; }))
      return KEPFormat("property \"%s\" is already registered", entry.name);
    for (int j = 0; j < i; ++j)
      if (!Empty(entries[j].name) && name == entries[j].name)
        return KEPFormat("property \"%s\" is given twice in the batch", entry.name);
  }
  return {};
}

}  // namespace

const KEPSYPProperty* KEPSYPMetaClass::FindProperty(std::string_view name) const {
  const KEPSYPMetaClass* meta = this;
  for (int depth = 0; meta && depth < kMaxDepth; ++depth) {
    for (const KEPSYPProperty& property : meta->properties_)
      if (property.name == name) return &property;
    if (meta->baseName_.empty() || meta->baseName_ == meta->name_) break;
    meta = KEPSYPRegistry::Find(meta->baseName_);
  }
  return nullptr;
}

std::vector<const KEPSYPProperty*> KEPSYPMetaClass::GetAllProperties() const {
  // The chain from this class up, then its properties from the root down; a property that a
  // derived class declares again hides the base's one, in the base's place.
  std::vector<const KEPSYPMetaClass*> chain;
  for (const KEPSYPMetaClass* meta = this; meta && chain.size() < kMaxDepth;) {
    if (std::find(chain.begin(), chain.end(), meta) != chain.end()) break;
    chain.push_back(meta);
    if (meta->baseName_.empty()) break;
    meta = KEPSYPRegistry::Find(meta->baseName_);
  }
  std::vector<const KEPSYPProperty*> all;
  for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
    for (const KEPSYPProperty& property : (*it)->properties_) {
      auto same = std::find_if(all.begin(), all.end(),
                               [&](const KEPSYPProperty* p) { return p->name == property.name; });
      if (same != all.end())
        *same = &property;
      else
        all.push_back(&property);
    }
  }
  return all;
}

void KEPSYPMetaClassBuilder::SetClass(const char* name, const char* baseName,
                                      KEPSYPCreator creator) {
  target_.name_ = name ? name : "";
  target_.baseName_ = baseName ? baseName : "";
  target_.creator_ = creator;
}

HRESULT KEPSYPMetaClassBuilder::AddProperties(const KEPSYPPropertyEntry* entries, int count) {
  const std::string fault = CheckBatch(target_, entries, count, false);
  if (!fault.empty()) {
    Trace().Error("RenderingShader/KEPRshView.m/standalone/imm/KEPSYPMetaClass", __LINE__,
                  "Batch refused { class = %s, batch = %d, reason = %s }", target_.name_.c_str(),
                  target_.batches_ + 1, fault.c_str());
    return E_INVALIDARG;
  }
  if (count == 0) return S_OK;
  const int batch = ++target_.batches_;
  target_.properties_.reserve(target_.properties_.size() + static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i)
    target_.properties_.push_back(
        {entries[i].name, entries[i].type, entries[i].get, entries[i].set, batch});
  return S_OK;
}

HRESULT KEPSYPMetaClassBuilder::AddIntegerProperties(const KEPSYPPropertyEntry* entries,
                                                     int count) {
  const std::string fault = CheckBatch(target_, entries, count, true);
  if (!fault.empty()) {
    Trace().Error("RenderingShader/KEPRshView.m/standalone/imm/KEPSYPMetaClass", __LINE__,
                  "Integer batch refused { class = %s, batch = %d, reason = %s }",
                  target_.name_.c_str(), target_.batches_ + 1, fault.c_str());
    return E_INVALIDARG;
  }
  return AddProperties(entries, count);
}
