// A JSON value that remembers the line it starts on, so that loaders can name it in errors.
#pragma once

#include <memory>
#include <string>
#include <vector>

struct KEPJsonMember;

struct KEPJsonValue {
  enum class Kind { Null, Boolean, Number, String, Array, Object };

  Kind kind = Kind::Null;
  int line = 0;  ///< 1-based line of the value's first character
  bool boolean = false;
  double number = 0.0;
  std::string text;                    ///< string value (UTF-8)
  std::vector<KEPJsonValue> items;     ///< array elements
  std::vector<KEPJsonMember> members;  ///< object members, in file order

  bool IsNull() const { return kind == Kind::Null; }
  bool IsBoolean() const { return kind == Kind::Boolean; }
  bool IsNumber() const { return kind == Kind::Number; }
  bool IsString() const { return kind == Kind::String; }
  bool IsArray() const { return kind == Kind::Array; }
  bool IsObject() const { return kind == Kind::Object; }

  /// The member named `key` of an object, or null when absent (or not an object).
  const KEPJsonValue* Find(const std::string& key) const;
  /// "null", "boolean", "number", "string", "array" or "object".
  const char* KindName() const {
    switch (kind) {
      case Kind::Null:
        return "null";
      case Kind::Boolean:
        return "boolean";
      case Kind::Number:
        return "number";
      case Kind::String:
        return "string";
      case Kind::Array:
        return "array";
      case Kind::Object:
        return "object";
    }
    return "null";
  }
};

/// One member of an object: its name and value. (A member type of its own, because a pair would
/// need KEPJsonValue complete inside its own definition.)
struct KEPJsonMember {
  std::string name;
  KEPJsonValue value;
};

inline const KEPJsonValue* KEPJsonValue::Find(const std::string& key) const {
  for (const auto& [name, value] : members)
    if (name == key) return &value;
  return nullptr;
}
