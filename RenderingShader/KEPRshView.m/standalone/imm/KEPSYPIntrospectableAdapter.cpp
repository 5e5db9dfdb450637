// The toolkit's introspection adapter: an object's properties read and written by name through the
// metaclass registered for its class (or its nearest base), and property announcements passed on
// to listeners.
//
// The adapter has no identity of its own: it counts on its object and answers for it every
// interface but KEPISYPIntrospectable. Getters and setters are module code: whatever they throw
// stays here and becomes a failure result.
#include <algorithm>
#include <exception>
#include <string>
#include <utility>

#include "KEPISYPIntrospectable.h"
#include "KEPTrace.h"

namespace {

constexpr const char* kSource =
    "RenderingShader/KEPRshView.m/standalone/imm/KEPSYPIntrospectableAdapter";

const KEPTrace& Trace() {
  static const KEPTrace trace("KEPSYP");
  return trace;
}

/// True when `value` may be written to a property declared with `type`. Interface types (any
/// name but the plain ones) take an interface or nothing.
bool Fits(const std::string& type, const KEPSYPValue& value) {
  if (type == "bool") return std::holds_alternative<bool>(value);
  if (type == "int") return std::holds_alternative<int>(value);
  if (type == "double") return std::holds_alternative<double>(value);
  if (type == "string" || type == "KEPString") return std::holds_alternative<KEPString>(value);
  if (type == "KEPMathPoint2D") return std::holds_alternative<KEPMathPoint2D>(value);
  return std::holds_alternative<KEP_var<KEPIUnknown>>(value) ||
         std::holds_alternative<std::monostate>(value);
}

const char* ClassOf(const KEPBaseUnknown* object) {
  return object ? object->GetMetaObject()->Name() : "none";
}

}  // namespace

KEPSYPIntrospectableAdapter::KEPSYPIntrospectableAdapter(KEPBaseUnknown* object)
    : object_(object) {}

KEPSYPIntrospectableAdapter::~KEPSYPIntrospectableAdapter() = default;

HRESULT KEPSYPIntrospectableAdapter::QueryInterface(const KEPIID& iid, void** out) {
  if (!out) return E_INVALIDARG;
  *out = nullptr;
  if (iid == KEPISYPIntrospectable::IID()) {
    *out = static_cast<KEPISYPIntrospectable*>(this);
    AddRef();
    return S_OK;
  }
  return object_ ? object_->QueryInterface(iid, out) : E_NOINTERFACE;
}

ULONG KEPSYPIntrospectableAdapter::AddRef() {
  return object_ ? object_->AddRef() : 1;
}

ULONG KEPSYPIntrospectableAdapter::Release() {
  // The object may delete this adapter with itself: nothing of the adapter is used after.
  return object_ ? object_->Release() : 1;
}

const KEPSYPMetaClass* KEPSYPIntrospectableAdapter::GetSYPMetaClass() {
  return KEPSYPRegistry::FindFor(object_);
}

HRESULT KEPSYPIntrospectableAdapter::GetProperty(std::string_view name, KEPSYPValue& value) {
  value = std::monostate{};
  const KEPSYPMetaClass* meta = GetSYPMetaClass();
  const KEPSYPProperty* property = meta ? meta->FindProperty(name) : nullptr;
  if (!property) return E_FAIL;
  try {
    value = property->get(object_);
  } catch (const std::exception& e) {
    Trace().Error(kSource, __LINE__, "Getter threw { class = %s, property = %s, what = %s }",
                  ClassOf(object_), property->name.c_str(), e.what());
    value = std::monostate{};
    return E_FAIL;
  } catch (...) {
    Trace().Error(kSource, __LINE__, "Getter threw { class = %s, property = %s }", ClassOf(object_),
                  property->name.c_str());
    value = std::monostate{};
    return E_FAIL;
  }
  return S_OK;
}

HRESULT KEPSYPIntrospectableAdapter::SetProperty(std::string_view name, const KEPSYPValue& value) {
  const KEPSYPMetaClass* meta = GetSYPMetaClass();
  const KEPSYPProperty* property = meta ? meta->FindProperty(name) : nullptr;
  if (!property || !property->set) return E_FAIL;
  if (!Fits(property->type, value)) return E_INVALIDARG;
  try {
    return property->set(object_, value);
  } catch (const std::exception& e) {
    Trace().Error(kSource, __LINE__, "Setter threw { class = %s, property = %s, what = %s }",
                  ClassOf(object_), property->name.c_str(), e.what());
  } catch (...) {
    Trace().Error(kSource, __LINE__, "Setter threw { class = %s, property = %s }", ClassOf(object_),
                  property->name.c_str());
  }
  return E_FAIL;
}

void KEPSYPIntrospectableAdapter::DispatchModifyProperty(std::string_view name) {
  ++dispatchCount_;
  if (dispatched_.size() >= kDispatchedKept)
    dispatched_.erase(dispatched_.begin(),
                      dispatched_.begin() +
                          static_cast<std::ptrdiff_t>(dispatched_.size() - kDispatchedKept + 1));
  dispatched_.emplace_back(name);
  if (listeners_.empty()) return;

  // A listener may release the last other reference of the object (rebuilding a view): keep it
  // alive until every listener has run. An object being destroyed (count 0) is not revived.
  KEPBaseUnknown* keep = object_ && object_->GetRefCount() > 0 ? object_ : nullptr;
  if (keep) keep->AddRef();
  ++dispatching_;
  // Listeners added during the dispatch wait for the next one; each is copied before it is
  // called, since adding one may move the list.
  const std::size_t count = listeners_.size();
  for (std::size_t i = 0; i < count; ++i) {
    if (!listeners_[i].function) continue;
    const KEPSYPListener listener = listeners_[i].function;
    listener(name);
  }
  --dispatching_;
  if (dispatching_ == 0 && listenerRemoved_) {
    std::erase_if(listeners_, [](const Listener& l) { return !l.function; });
    listenerRemoved_ = false;
  }
  if (keep) keep->Release();
}

int KEPSYPIntrospectableAdapter::AddListener(KEPSYPListener listener) {
  const int token = nextToken_++;
  listeners_.push_back({token, std::move(listener)});
  return token;
}

void KEPSYPIntrospectableAdapter::RemoveListener(int token) {
  auto it = std::find_if(listeners_.begin(), listeners_.end(),
                         [token](const Listener& l) { return l.token == token; });
  if (it == listeners_.end()) return;
  if (dispatching_ > 0) {
    // Emptied now, erased once no dispatch walks the list.
    KEPSYPListener gone = std::move(it->function);
    it->function = nullptr;
    listenerRemoved_ = true;
    return;  // `gone` dies here: whatever it held goes with it
  }
  KEPSYPListener gone = std::move(it->function);
  listeners_.erase(it);
}
