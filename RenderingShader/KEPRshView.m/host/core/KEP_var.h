// Smart handles: KEP_var<T> holds one reference and releases it; NULL_var is the empty handle.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <utility>

#include "KEPIUnknown.h"

struct KEPNullVar {};
inline constexpr KEPNullVar NULL_var{};

template <class T>
class KEP_var {
 public:
  KEP_var() = default;
  KEP_var(KEPNullVar) {}
  /// Borrows `p`: adds a reference of its own.
  explicit KEP_var(T* p) : p_(p) {
    if (p_) p_->AddRef();
  }
  KEP_var(const KEP_var& other) : KEP_var(other.p_) {}
  KEP_var(KEP_var&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
  ~KEP_var() { Reset(); }

  KEP_var& operator=(const KEP_var& other) {
    KEP_var copy(other);
    std::swap(p_, copy.p_);
    return *this;
  }
  KEP_var& operator=(KEP_var&& other) noexcept {
    if (this != &other) {
      Reset();
      p_ = std::exchange(other.p_, nullptr);
    }
    return *this;
  }
  KEP_var& operator=(KEPNullVar) {
    Reset();
    return *this;
  }

  /// Takes over a reference that the caller already owns.
  static KEP_var Adopt(T* p) {
    KEP_var v;
    v.p_ = p;
    return v;
  }
  /// Releases the held reference and gives the address for an out-argument that adds one.
  T** Out() {
    Reset();
    return &p_;
  }
  /// Gives up the reference to the caller.
  T* Detach() { return std::exchange(p_, nullptr); }
  void Reset() {
    if (T* p = std::exchange(p_, nullptr)) p->Release();
  }

  T* Get() const { return p_; }
  T* operator->() const { return p_; }
  T& operator*() const { return *p_; }
  explicit operator bool() const { return p_ != nullptr; }
  bool operator==(KEPNullVar) const { return p_ == nullptr; }
  bool operator!=(KEPNullVar) const { return p_ != nullptr; }

 private:
  T* p_ = nullptr;
};

/// Queries `object` for interface I and returns it as a handle (empty on a miss).
template <class I, class U>
KEP_var<I> KEPQueryVar(U* object) {
  I* out = nullptr;
  if (object) object->QueryInterface(I::IID(), reinterpret_cast<void**>(&out));
  return KEP_var<I>::Adopt(out);
}
template <class I, class U>
KEP_var<I> KEPQueryVar(const KEP_var<U>& object) {
  return KEPQueryVar<I>(object.Get());
}

#pragma GCC visibility pop
