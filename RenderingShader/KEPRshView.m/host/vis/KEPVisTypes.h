// Small host types that the visualisation interfaces name in their signatures. The stand-alone
// viewer does not use them beyond passing them through, so they are kept minimal.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <string_view>
#include <vector>

#include "KEPIUnknown.h"
#include "KEPString.h"

/// A 3D transformation: a 3x3 matrix (row-major) and a translation.
struct KEPMathTransformation {
  double matrix[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  double translation[3] = {0, 0, 0};
};

/// An object that can be the target of a link (for example an external CgFX program document).
class KEPILinkableObject : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPILinkableObject)
};

/// An environment image used for reflections; the stand-alone host never produces one.
class KEPRmaEnvironmentPixelImage {
 public:
  int width = 0;
  int height = 0;
};

/// A list of narrow strings with positions counted from 1.
class KEPListValKEPString {
 public:
  int Size() const { return static_cast<int>(items_.size()); }
  /// Item at position i (1-based); an empty string outside 1..Size().
  const KEPString& operator[](int i) const {
    static const KEPString empty;
    return i >= 1 && i <= Size() ? items_[static_cast<std::size_t>(i - 1)] : empty;
  }
  void Append(KEPString item) { items_.push_back(std::move(item)); }
  /// Position (1-based) of the first item equal to `item`, or 0.
  int Locate(std::string_view item) const {
    for (std::size_t i = 0; i < items_.size(); ++i)
      if (items_[i] == item) return static_cast<int>(i) + 1;
    return 0;
  }
  void RemoveAll() { items_.clear(); }

 private:
  std::vector<KEPString> items_;
};

#pragma GCC visibility pop
