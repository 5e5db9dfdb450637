// Registry of data extensions: which extension class serves an interface on a late type.
//
// A module registers, for each (late type, interface), the extension class name, its creator
// (the class's CreateItself) and its interface adapter factory CreateTIE<Interface><Class>.
// A late type may name a parent late type: a component of the derived type is served by the
// extensions of its own type first, then by those of its parent, and so on up.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <string>
#include <string_view>

#include "KEPBaseUnknown.h"

/// Creates an extension instance (count 1), or null when the class cannot be instantiated.
using KEPExtensionCreator = KEPBaseUnknown* (*)();
/// Returns interface adapter of `implementation` with one reference added, or null.
using KEPTIEFactory = KEPIUnknown* (*)(KEPBaseUnknown* implementation);

struct KEPExtensionEntry {
  std::string lateType;
  std::string interfaceName;
  std::string className;
  KEPExtensionCreator create = nullptr;
  KEPTIEFactory tie = nullptr;
};

class KEPExtensionRegistry {
 public:
  /// Registers (or replaces) the extension serving `interfaceName` on `lateType`.
  static void Register(const KEPExtensionEntry& entry);
  /// The entry for (late type, interface), looked up on the late type and then on its parents;
  /// null when none serves the interface. Allocates nothing.
  static const KEPExtensionEntry* Find(std::string_view lateType, std::string_view interfaceName);
  /// Declares `parent` as the parent late type of `lateType` (replacing an earlier declaration).
  /// A declaration that would make a late type its own ancestor is refused (false).
  static bool DeclareParent(std::string_view lateType, std::string_view parent);
  /// Removes every registration and parent declaration (tests).
  static void Clear();
};

/// Defines CreateTIE<Interface><Class>: the adapter is the implementation itself seen through the
/// interface, so an existing adapter of the same object is always reused.
#define KEP_DEFINE_TIE(Interface, Class)                                                \
  KEP_EXPORT KEPIUnknown* CreateTIE##Interface##Class(KEPBaseUnknown* implementation) { \
    auto* object = dynamic_cast<Class*>(implementation);                                \
    if (!object) return nullptr;                                                        \
    Interface* adapter = object;                                                        \
    adapter->AddRef();                                                                  \
    return adapter;                                                                     \
  }

#define KEP_DECLARE_TIE(Interface, Class) \
  KEP_EXPORT KEPIUnknown* CreateTIE##Interface##Class(KEPBaseUnknown* implementation);

#pragma GCC visibility pop
