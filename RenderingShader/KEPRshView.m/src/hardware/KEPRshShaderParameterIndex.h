// KEPRshShaderParameterIndex: a shader's parameter list as the hardware material keeps it, with
// the lookups the viewer's questions need.
//
// The index owns the list and one reference on each of its non-null parameters; a copy holds
// references of its own. Positions count from 1. The names are kept apart from the list: a
// parameter whose name cannot be read contributes no name, so later names pair with earlier
// positions, and names survive Clear (a re-read appends them again behind the old ones).
#pragma once

#include <cstddef>
#include <functional>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "KEPIRshParameter.h"
#include "KEPListP.h"
#include "KEPVisTypes.h"

class KEPRshShaderParameterIndex {
 public:
  /// The parameter names that the material's answers read, resolved to positions once per list.
  static constexpr std::string_view kReadNames[] = {
      "RNDMaterialVersion",
      "_uv_angle",
      "_uv_flip_u",
      "_uv_flip_v",
      "_uv_mapping",
      "_uv_offset_u",
      "_uv_offset_v",
      "_uv_scale_u",
      "_uv_scale_v",
      "angle",
      "default_generic_brdf_diffuse_glossiness",
      "default_generic_brdf_diffuse_weight",
      "default_generic_brdf_specular_weight",
      "default_slot_diffuse_color",
      "default_slot_opacity",
      "default_slot_specular_color",
      "default_slot_specular_glossiness",
      "default_slot_transparency",
      "flip_u",
      "flip_v",
      "offset_u",
      "offset_v",
      "repeat_u",
      "repeat_v",
      "scale_u",
      "scale_v",
      "type",
  };
  static constexpr int kReadNameCount = static_cast<int>(std::size(kReadNames));
  /// Index of `name` in kReadNames; a name missing from the table does not compile.
  static consteval int ReadName(std::string_view name) {
    for (int i = 0; i < kReadNameCount; ++i)
      if (kReadNames[i] == name) return i;
    throw "not a name the material reads";
  }

  KEPRshShaderParameterIndex() = default;
  /// A copy of `other`'s names and positions, with a list of its own holding new references.
  KEPRshShaderParameterIndex(const KEPRshShaderParameterIndex& other);
  /// Releases this index's parameters, then copies `other` as the copy constructor does.
  KEPRshShaderParameterIndex& operator=(const KEPRshShaderParameterIndex& other);
  /// Releases the parameters.
  ~KEPRshShaderParameterIndex();

  /// Takes over `list` (a shader's answer, with its references; null: no list) and indexes it:
  /// appends the readable names, notes the texture parameters and resolves kReadNames. A list
  /// already held is released first.
  void Take(KEPListP<KEPIRshParameter>* list);
  /// Releases the parameters and forgets the list; the names are kept. Nothing without a list.
  void Clear();

  /// True once a list has been taken (and not cleared).
  bool HasList() const { return parameters_ != nullptr; }
  /// Number of positions of the list; 0 without a list.
  int Count() const { return parameters_ ? parameters_->Size() : 0; }
  /// Parameter at position i (borrowed); null outside 1..Count() or without a list.
  KEPIRshParameter* At(int i) const { return parameters_ ? (*parameters_)[i] : nullptr; }
  /// Parameter at the first position of `name` among the names (exact, case-sensitive;
  /// borrowed); null when absent or without a list. An empty name that is not among the names
  /// meets the first position past them (a parameter whose name could not be read).
  KEPIRshParameter* ByName(std::string_view name) const;
  /// Position of the first name equal to `name`, or -1 (answers from the names alone).
  int PositionOf(std::string_view name) const;
  /// Same answer as ByName(kReadNames[index]) (null when absent or without a list), without a
  /// string lookup.
  KEPIRshParameter* Read(int index) const {
    const int position = readPositions_[index];
    return position == 0 ? nullptr : At(position);
  }
  /// Positions of the parameters whose type name is "KEPRmaTexture", ascending; empty without
  /// a list.
  const std::vector<int>& TexturePositions() const { return texturePositions_; }

 private:
  void ReleaseParameters();
  void CopyFrom(const KEPRshShaderParameterIndex& other);

  struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
  };

  KEPListValKEPString names_;
  KEPListP<KEPIRshParameter>* parameters_ = nullptr;
  /// Name -> first position in names_.
  std::unordered_map<KEPString, int, NameHash, std::equal_to<>> firstPosition_;
  std::vector<int> texturePositions_;
  /// First position of each of kReadNames in names_, 0 when absent.
  int readPositions_[kReadNameCount] = {};
};
