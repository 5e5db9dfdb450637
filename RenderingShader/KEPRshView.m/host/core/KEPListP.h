// KEPListP<T>: a raw pointer collection with positions counted from 1, as the host hands out
// lists of interface pointers. The list does not count references itself: whoever fills it
// says who owns the elements.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

template <class T>
class KEPListP {
 public:
  int Size() const { return static_cast<int>(items_.size()); }
  /// Element at position i (1-based); null outside 1..Size().
  T* operator[](int i) const {
    return i >= 1 && i <= Size() ? items_[static_cast<std::size_t>(i - 1)] : nullptr;
  }
  void Append(T* item) { items_.push_back(item); }
  void RemoveAll() { items_.clear(); }

 private:
  std::vector<T*> items_;
};

#pragma GCC visibility pop
