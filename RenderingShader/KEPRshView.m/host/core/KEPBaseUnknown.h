// KEPBaseUnknown: the reference-counted base of every host and module object.
//
// An object is either a component or a data extension of one. A component has a late type (for
// example "KEPRmaScalar"); when it is asked for an interface that it does not implement itself,
// the extension registry names the extension class that serves (late type, interface), and the
// component creates one instance of that class on first query, keeps it, and destroys it with
// itself. An extension answers interface queries for its component too, and shares the
// component's reference count, so a reference to an extension keeps its component alive.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <memory>
#include <string>
#include <vector>

#include "KEPIUnknown.h"
#include "KEPMetaClass.h"

/// Component states; the host moves a component from a state below 2 to 2 when deleting it.
enum KEPComponentState : int {
  KEPComponentState_Created = 0,
  KEPComponentState_Alive = 1,
  KEPComponentState_Deleted = 2,
};

struct KEPWeakRemnant;

class KEPBaseUnknown : public virtual KEPIUnknown {
 public:
  static const char* ClassName();
  static const KEPMetaClass* MetaObject();
  virtual const KEPMetaClass* GetMetaObject() const;

  // --- KEPIUnknown
  HRESULT QueryInterface(const KEPIID& iid, void** out) override;
  using KEPIUnknown::QueryInterface;
  ULONG AddRef() override;
  ULONG Release() override;
  /// Current count (of the component for an attached extension); for tests and diagnostics.
  ULONG GetRefCount() const;

  // --- Class information
  /// True when the class of this object or one of its bases is named `className`.
  bool IsAKindOf(const char* className) const;
  /// True when the class of this object is exactly `className`.
  bool IsA(const char* className) const;

  // --- Component states
  /// Moves the component (and every extension it has created) from `from` to `to`.
  virtual HRESULT ChangeComponentState(int from, int to, const void* context);
  int GetComponentState() const { return state_; }

  // --- Late types and extensions
  /// Late type of a component; empty for plain objects. An extension answers its component's.
  const std::string& GetLateType() const;
  void SetLateType(std::string lateType) { lateType_ = std::move(lateType); }
  /// The component this object extends (borrowed), or null for a component or a detached one.
  KEPBaseUnknown* GetExtendedObject() const { return extended_; }
  /// Number of extensions a component has created; for tests and diagnostics.
  std::size_t GetExtensionCount() const { return extensions_.size(); }

  /// The weak-reference remnant, created on first request.
  const std::shared_ptr<KEPWeakRemnant>& GetRemnant();

 protected:
  KEPBaseUnknown();
  /// A copy is a new object: count 1, no extensions, no weak references, same late type.
  KEPBaseUnknown(const KEPBaseUnknown& other);
  KEPBaseUnknown& operator=(const KEPBaseUnknown& other);
  ~KEPBaseUnknown() override;

  /// Interfaces that this object implements itself; the default finds any interface the
  /// object's class derives from. Override to hide one (answer null).
  virtual void* QueryOwnInterface(const KEPIID& iid);

 private:
  void* FindOrCreateExtension(const KEPIID& iid);

  ULONG refs_ = 1;
  int state_ = KEPComponentState_Created;
  std::string lateType_;
  KEPBaseUnknown* extended_ = nullptr;
  struct Extension {
    std::string className;
    KEPBaseUnknown* object;
  };
  std::vector<Extension> extensions_;
  std::shared_ptr<KEPWeakRemnant> remnant_;
};

/// Typed query: the interface with a reference for the caller, or null.
template <class I>
I* KEPQuery(KEPIUnknown* object) {
  I* out = nullptr;
  if (object) object->QueryInterface(I::IID(), reinterpret_cast<void**>(&out));
  return out;
}

#pragma GCC visibility pop
