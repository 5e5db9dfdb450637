// Introspection of an object: its typed properties read and written by name, and announcements
// of property changes to whoever is bound to them (the parts a style built).
//
// An object is introspectable through an adapter (KEPSYPIntrospectableAdapter or a class derived
// from it): every KEPVidCtl answers KEPISYPIntrospectable with the adapter registered for its class
// (KEPSYPRegistry::RegisterAdapter), else the toolkit's own. The adapter shares its object's
// reference count. GetImplementation gives the adapter itself, so that code holding the interface
// reaches DispatchModifyProperty by a dynamic cast to KEPSYPIntrospectableAdapter.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "KEPBaseUnknown.h"
#include "KEPSYPMetaClass.h"
#include "KEPSYPValue.h"

class KEPISYPIntrospectable : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPISYPIntrospectable)
  /// The metaclass describing the object (borrowed), or null.
  virtual const KEPSYPMetaClass* GetSYPMetaClass() = 0;
  /// Reads property `name`; E_FAIL for an unknown property (value left empty).
  virtual HRESULT GetProperty(std::string_view name, KEPSYPValue& value) = 0;
  /// Writes property `name`; E_FAIL for an unknown or read-only property, E_INVALIDARG for a
  /// value of the wrong type.
  virtual HRESULT SetProperty(std::string_view name, const KEPSYPValue& value) = 0;
  /// The implementation behind the interface (borrowed): the adapter object.
  virtual KEPIUnknown* GetImplementation() = 0;
};

/// Called with the property name on every DispatchModifyProperty.
using KEPSYPListener = std::function<void(std::string_view property)>;

class KEPSYPIntrospectableAdapter : public KEPISYPIntrospectable {
 public:
  /// The adapter of `object` (borrowed; the adapter does not keep it alive).
  explicit KEPSYPIntrospectableAdapter(KEPBaseUnknown* object);
  ~KEPSYPIntrospectableAdapter() override;

  // --- KEPIUnknown: the object's own count and interfaces.
  HRESULT QueryInterface(const KEPIID& iid, void** out) override;
  using KEPIUnknown::QueryInterface;
  ULONG AddRef() override;
  ULONG Release() override;

  // --- KEPISYPIntrospectable
  const KEPSYPMetaClass* GetSYPMetaClass() override;
  HRESULT GetProperty(std::string_view name, KEPSYPValue& value) override;
  HRESULT SetProperty(std::string_view name, const KEPSYPValue& value) override;
  KEPIUnknown* GetImplementation() override { return this; }

  KEPBaseUnknown* GetObject() const { return object_; }

  /// Tells every listener that property `name` changed (the object announces it; nothing is
  /// read here). Listeners added or removed by a listener take effect from the next dispatch,
  /// except that a listener removed during a dispatch is not called by it any more (its owner
  /// may be gone). The object is kept alive while its listeners run.
  void DispatchModifyProperty(std::string_view name);
  /// Adds a listener; returns a token for RemoveListener.
  int AddListener(KEPSYPListener listener);
  void RemoveListener(int token);
  /// The names of the last kDispatchedKept DispatchModifyProperty calls, oldest first (tests,
  /// diagnostics): a long-lived control announces without end, so older names are dropped.
  const std::vector<std::string>& GetDispatched() const { return dispatched_; }
  static constexpr std::size_t kDispatchedKept = 256;
  /// Number of DispatchModifyProperty calls so far, dropped names included.
  std::size_t GetDispatchCount() const { return dispatchCount_; }

 private:
  KEPBaseUnknown* object_;
  struct Listener {
    int token;
    KEPSYPListener function;
  };
  std::vector<Listener> listeners_;
  std::vector<std::string> dispatched_;
  int nextToken_ = 1;
  std::size_t dispatchCount_ = 0;
  int dispatching_ = 0;           ///< nesting depth of DispatchModifyProperty
  bool listenerRemoved_ = false;  ///< a listener was emptied during a dispatch: compact after it
};

#pragma GCC visibility pop
