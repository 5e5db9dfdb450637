// Weak reference to a KEPBaseUnknown: reads null once the object is gone.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <memory>

#include "KEPBaseUnknown.h"

/// Control block shared by an object and its weak references; the object's destructor clears it.
struct KEPWeakRemnant {
  KEPBaseUnknown* object = nullptr;
};

class KEPBaseUnknown_WR {
 public:
  KEPBaseUnknown_WR() = default;
  explicit KEPBaseUnknown_WR(KEPBaseUnknown* object) { Set(object); }

  void Set(KEPBaseUnknown* object) { remnant_ = object ? object->GetRemnant() : nullptr; }
  /// The object (borrowed: no reference added), or null once it has been destroyed.
  KEPBaseUnknown* Get() const { return remnant_ ? remnant_->object : nullptr; }
  bool IsAlive() const { return Get() != nullptr; }
  void Reset() { remnant_.reset(); }

 private:
  std::shared_ptr<KEPWeakRemnant> remnant_;
};

#pragma GCC visibility pop
