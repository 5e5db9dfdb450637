#include "KEPBaseUnknown.h"

#include <cstdint>
#include <cstring>
#include <functional>
#include <typeinfo>
#include <unordered_set>

#include "KEPBaseUnknown_WR.h"
#include "KEPExtensionRegistry.h"

namespace {

// A class that does not derive from an interface, and the cast that found it out. A cast is a
// dynamic_cast (KEPCastTo), whose answer depends on the class of the object alone.
struct OwnMiss {
  const std::type_info* type;
  void* (*cast)(KEPIUnknown*);
  bool operator==(const OwnMiss&) const = default;
};

struct OwnMissHash {
  std::size_t operator()(const OwnMiss& miss) const noexcept {
    return std::hash<const void*>()(miss.type) * 31 +
           std::hash<std::uintptr_t>()(reinterpret_cast<std::uintptr_t>(miss.cast));  // NOLINT
  }
};

// The casts that failed, per class. Most queries of a component ask for an interface that one of
// its extensions serves, and a dynamic_cast that fails walks the whole class hierarchy first:
// remembering the miss sends the next query of that class straight to the extensions. Only
// misses are kept. Whether a class derives from an interface never changes, while where the
// interface lies does (an object under construction answers as its constructing base, laid out
// inside the final class). One table per thread, so nothing is locked.
thread_local std::unordered_set<OwnMiss, OwnMissHash> tOwnMisses;

}  // namespace

bool operator==(const KEPIID& a, const KEPIID& b) {
  return a.name == b.name || std::strcmp(a.name, b.name) == 0;
}

const char* KEPBaseUnknown::ClassName() {
  return "KEPBaseUnknown";
}

const KEPMetaClass* KEPBaseUnknown::MetaObject() {
  static const KEPMetaClass meta("KEPBaseUnknown", "KEPNull", nullptr, "System");
  return &meta;
}

const KEPMetaClass* KEPBaseUnknown::GetMetaObject() const {
  return MetaObject();
}

KEPBaseUnknown::KEPBaseUnknown() = default;

KEPBaseUnknown::KEPBaseUnknown(const KEPBaseUnknown& other)
    : KEPIUnknown(), lateType_(other.lateType_) {}

KEPBaseUnknown& KEPBaseUnknown::operator=(const KEPBaseUnknown& other) {
  // Identity (count, extensions, weak references, component link) is never copied.
  lateType_ = other.lateType_;
  return *this;
}

KEPBaseUnknown::~KEPBaseUnknown() {
  if (remnant_) remnant_->object = nullptr;
  // Extensions die with their component, newest first; they are detached before they go so
  // that nothing they do while being destroyed reaches a half-destroyed component.
  while (!extensions_.empty()) {
    KEPBaseUnknown* extension = extensions_.back().object;
    extensions_.pop_back();
    extension->extended_ = nullptr;
    extension->refs_ = 1;
    extension->Release();
  }
}

ULONG KEPBaseUnknown::AddRef() {
  if (extended_) return extended_->AddRef();
  return ++refs_;
}

ULONG KEPBaseUnknown::Release() {
  if (extended_) return extended_->Release();
  const ULONG left = --refs_;
  if (left == 0) delete this;
  return left;
}

ULONG KEPBaseUnknown::GetRefCount() const {
  return extended_ ? extended_->GetRefCount() : refs_;
}

bool KEPBaseUnknown::IsAKindOf(const char* className) const {
  return className && GetMetaObject()->IsAKindOf(className);
}

bool KEPBaseUnknown::IsA(const char* className) const {
  return className && std::strcmp(GetMetaObject()->Name(), className) == 0;
}

const std::string& KEPBaseUnknown::GetLateType() const {
  return extended_ ? extended_->GetLateType() : lateType_;
}

const std::shared_ptr<KEPWeakRemnant>& KEPBaseUnknown::GetRemnant() {
  if (!remnant_) {
    remnant_ = std::make_shared<KEPWeakRemnant>();
    remnant_->object = this;
  }
  return remnant_;
}

void* KEPBaseUnknown::QueryOwnInterface(const KEPIID& iid) {
  if (!iid.cast) return nullptr;
  const OwnMiss key{&typeid(*this), iid.cast};
  if (tOwnMisses.contains(key)) return nullptr;
  void* found = iid.cast(static_cast<KEPIUnknown*>(this));
  if (!found) tOwnMisses.insert(key);
  return found;
}

HRESULT KEPBaseUnknown::QueryInterface(const KEPIID& iid, void** out) {
  if (!out) return E_INVALIDARG;
  *out = nullptr;
  void* found = QueryOwnInterface(iid);
  if (found) {
    AddRef();
  } else if (extended_) {
    return extended_->QueryInterface(iid, out);
  } else {
    found = FindOrCreateExtension(iid);  // adds the reference itself
  }
  if (!found) return E_NOINTERFACE;
  *out = found;
  return S_OK;
}

void* KEPBaseUnknown::FindOrCreateExtension(const KEPIID& iid) {
  if (lateType_.empty()) return nullptr;
  const KEPExtensionEntry* entry = KEPExtensionRegistry::Find(lateType_, iid.name);
  if (!entry || !entry->tie) return nullptr;
  KEPBaseUnknown* instance = nullptr;
  for (const Extension& e : extensions_)
    if (e.className == entry->className) instance = e.object;
  if (!instance) {
    if (!entry->create) return nullptr;
    instance = entry->create();
    if (!instance) return nullptr;
    instance->extended_ = this;
    extensions_.push_back({entry->className, instance});
  }
  KEPIUnknown* adapter = entry->tie(instance);
  if (!adapter) return nullptr;
  // The adapter is counted on this component; hand out the requested interface pointer.
  void* typed = iid.cast ? iid.cast(adapter) : nullptr;
  if (!typed) adapter->Release();
  return typed;
}

HRESULT KEPBaseUnknown::ChangeComponentState(int from, int to, const void* context) {
  // Copy first: an extension may be created while others react to the change.
  std::vector<KEPBaseUnknown*> extensions;
  for (const Extension& e : extensions_) extensions.push_back(e.object);
  for (KEPBaseUnknown* extension : extensions) extension->ChangeComponentState(from, to, context);
  state_ = to;
  return S_OK;
}
