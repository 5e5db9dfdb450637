// The root of every host interface: reference counting and interfaces by identifier.
//
// An interface is an abstract class that derives virtually from KEPIUnknown and names itself with
// KEP_DECLARE_INTERFACE. Its identifier carries a cast function, so any object that implements it
// can be asked for it by identifier without listing its interfaces; a miss is a null pointer and
// E_NOINTERFACE, never an exception.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPTypes.h"

class KEPIUnknown;

/// Identifier of an interface: its name, and the cast from the root to it.
struct KEPIID {
  const char* name;
  void* (*cast)(KEPIUnknown* object);
};

bool operator==(const KEPIID& a, const KEPIID& b);

class KEPIUnknown {
 public:
  /// Finds interface `iid` on this object (or the component it extends) and adds a reference
  /// for the caller. On a miss sets `*out` to null and returns E_NOINTERFACE.
  virtual HRESULT QueryInterface(const KEPIID& iid, void** out) = 0;
  virtual ULONG AddRef() = 0;
  virtual ULONG Release() = 0;

  /// Typed form of QueryInterface.
  template <class I>
  HRESULT QueryInterface(I** out) {
    return QueryInterface(I::IID(), reinterpret_cast<void**>(out));
  }

 protected:
  virtual ~KEPIUnknown() = default;
};

template <class I>
void* KEPCastTo(KEPIUnknown* object) {
  return object ? static_cast<void*>(dynamic_cast<I*>(object)) : nullptr;
}

#define KEP_DECLARE_INTERFACE(Interface)                       \
 public:                                                       \
  static const KEPIID& IID() {                                 \
    static const KEPIID id{#Interface, &KEPCastTo<Interface>}; \
    return id;                                                 \
  }

#pragma GCC visibility pop
