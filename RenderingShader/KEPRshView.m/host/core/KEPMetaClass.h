// Metaclasses: the name, base and framework of a class, created on first use and kept for the
// life of the process.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <string_view>

/// Kind of class in the object model.
enum KEPClassKind : int {
  KEPClassKind_Implementation = 0,
  KEPClassKind_Component = 1,
  KEPClassKind_Extension = 2,
};

class KEPMetaClass {
 public:
  KEPMetaClass(const char* name, const char* secondName, const KEPMetaClass* base,
               const char* framework, KEPClassKind kind = KEPClassKind_Implementation,
               const char* extendedLateType = "")
      : name_(name),
        secondName_(secondName),
        base_(base),
        framework_(framework),
        kind_(kind),
        extendedLateType_(extendedLateType) {}

  const char* Name() const { return name_; }
  const char* SecondName() const { return secondName_; }
  const KEPMetaClass* Base() const { return base_; }
  const char* Framework() const { return framework_; }
  KEPClassKind Kind() const { return kind_; }
  const char* ExtendedLateType() const { return extendedLateType_; }

  /// True when this class or one of its bases is named `className`.
  bool IsAKindOf(std::string_view className) const {
    for (const KEPMetaClass* m = this; m; m = m->base_)
      if (className == m->name_) return true;
    return false;
  }

 private:
  const char* name_;
  const char* secondName_;
  const KEPMetaClass* base_;
  const char* framework_;
  KEPClassKind kind_;
  const char* extendedLateType_;
};

/// Declares the class-level metadata operations inside a class derived from KEPBaseUnknown.
#define KEP_DECLARE_CLASS                  \
 public:                                   \
  static const char* ClassName();          \
  static const KEPMetaClass* MetaObject(); \
  const KEPMetaClass* GetMetaObject() const override;

/// Defines them: the metaclass is created on first request and cached for the process.
#define KEP_IMPLEMENT_CLASS_EX(Class, Base, SecondName, Framework, Kind, LateType)          \
  const char* Class::ClassName() {                                                          \
    return #Class;                                                                          \
  }                                                                                         \
  const KEPMetaClass* Class::MetaObject() {                                                 \
    static const KEPMetaClass meta(#Class, SecondName, Base::MetaObject(), Framework, Kind, \
                                   LateType);                                               \
    return &meta;                                                                           \
  }                                                                                         \
  const KEPMetaClass* Class::GetMetaObject() const {                                        \
    return MetaObject();                                                                    \
  }

#define KEP_IMPLEMENT_CLASS(Class, Base, Framework) \
  KEP_IMPLEMENT_CLASS_EX(Class, Base, "KEPNull", Framework, KEPClassKind_Implementation, "")

#pragma GCC visibility pop
