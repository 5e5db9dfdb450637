// Introspection metaclasses: the typed properties of an introspectable class, registered by name.
//
// A module exports, per introspectable class C, a builder `fctCreateCSYPMetaClassBuilder` that
// fills a KEPSYPMetaClassBuilder (class name, base metaclass name or none, creation function,
// property batches), and registers it at load with KEPSYPRegistry::RegisterBuilder. The registry
// runs a builder on first request of its class. Properties are read and written by name through
// KEPISYPIntrospectable; a property's getter and setter are plain functions of the object.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <string>
#include <string_view>
#include <vector>

#include "KEPBaseUnknown.h"
#include "KEPSYPValue.h"
#include "KEPTypes.h"

/// Reads a property of `object` (which is of the registered class or derived from it).
using KEPSYPGetter = KEPSYPValue (*)(KEPBaseUnknown* object);
/// Writes a property; E_INVALIDARG when `value` is not of the property's type.
using KEPSYPSetter = HRESULT (*)(KEPBaseUnknown* object, const KEPSYPValue& value);
/// Creates a default-constructed object of the class, with one reference for the caller.
using KEPSYPCreator = KEPBaseUnknown* (*)();

/// One property as a builder receives it: name, type name, getter, and a setter or null for a
/// read-only property.
struct KEPSYPPropertyEntry {
  const char* name;
  const char* type;
  KEPSYPGetter get;
  KEPSYPSetter set;
};

/// A registered property (its entry, and which batch it came in, for diagnostics).
struct KEPSYPProperty {
  std::string name;
  std::string type;
  KEPSYPGetter get = nullptr;
  KEPSYPSetter set = nullptr;
  int batch = 0;
};

/// The description of one introspectable class.
class KEPSYPMetaClass {
 public:
  const std::string& GetName() const { return name_; }
  /// The base metaclass's name, empty when the class names none.
  const std::string& GetBaseName() const { return baseName_; }
  KEPSYPCreator GetCreator() const { return creator_; }
  /// The class's own properties, in registration order (a base's are not included).
  const std::vector<KEPSYPProperty>& GetOwnProperties() const { return properties_; }
  /// The property `name` of this class or, failing that, of its bases (borrowed), or null.
  const KEPSYPProperty* FindProperty(std::string_view name) const;
  /// This class's properties after those of its bases.
  std::vector<const KEPSYPProperty*> GetAllProperties() const;

 private:
  friend class KEPSYPMetaClassBuilder;
  friend class KEPSYPRegistry;
  std::string name_;
  std::string baseName_;
  KEPSYPCreator creator_ = nullptr;
  std::vector<KEPSYPProperty> properties_;
  int batches_ = 0;
};

/// What a `fctCreate...SYPMetaClassBuilder` fills.
class KEPSYPMetaClassBuilder {
 public:
  explicit KEPSYPMetaClassBuilder(KEPSYPMetaClass& target) : target_(target) {}
  /// Names the class, its base metaclass (null or empty: none) and its creation function.
  void SetClass(const char* name, const char* baseName, KEPSYPCreator creator);
  /// Registers a batch of properties; E_INVALIDARG (nothing registered) when an entry has no
  /// name, type or getter, repeats a name, or when the count is negative.
  HRESULT AddProperties(const KEPSYPPropertyEntry* entries, int count);
  /// The integer entry point: the same for properties whose type is "int" (any other type is
  /// E_INVALIDARG).
  HRESULT AddIntegerProperties(const KEPSYPPropertyEntry* entries, int count);

 private:
  KEPSYPMetaClass& target_;
};

/// A module's metaclass builder factory.
using KEPSYPBuilderFunction = HRESULT (*)(KEPSYPMetaClassBuilder& builder);
class KEPSYPIntrospectableAdapter;
/// A module's introspection adapter factory `CreateBOAKEPISYPIntrospectable...SYPIntro`: a new
/// adapter of `implementation`, owned by the caller (a control deletes its adapter with itself),
/// or null when `implementation` is not of the adapter's class.
using KEPSYPAdapterFactory = KEPSYPIntrospectableAdapter* (*)(KEPBaseUnknown* implementation);

/// The process-wide registry of introspectable classes (forgotten by nothing: what loaded code
/// registered stays, like the extension registry).
class KEPSYPRegistry {
 public:
  /// Registers (or replaces) the builder of class `className`.
  static void RegisterBuilder(const char* className, KEPSYPBuilderFunction builder);
  /// Registers (or replaces) the introspection adapter factory of class `className`; classes
  /// without one are introspected through the toolkit's own adapter.
  static void RegisterAdapter(const char* className, KEPSYPAdapterFactory factory);
  /// The metaclass of `className`, built on first request (borrowed, lives for the process), or
  /// null when no builder is registered or the builder failed (traced).
  static const KEPSYPMetaClass* Find(std::string_view className);
  /// The metaclass that describes `object`: that of its class, else of its nearest base class
  /// (in the object model's class chain) that has one; null when none has.
  static const KEPSYPMetaClass* FindFor(const KEPBaseUnknown* object);
  /// The adapter factory registered for the class of `object` or its nearest base, or null.
  static KEPSYPAdapterFactory FindAdapter(const KEPBaseUnknown* object);
  /// Removes every registration (tests).
  static void Clear();
};

#pragma GCC visibility pop
