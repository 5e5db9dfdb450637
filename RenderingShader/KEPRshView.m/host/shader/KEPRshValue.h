// A parameter value of any feature type, as stored by the stand-alone shader model.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "KEPIPLMDmtDocument.h"
#include "KEP_var.h"

enum class KEPRmaType { Boolean, Integer, Scalar, Color, Vector, Texture, LightProfile, Void };

/// "KEPRmaBoolean" ... "KEPRmaVoid".
const char* KEPRmaTypeName(KEPRmaType type);
/// The type named `name`, or nothing for an unknown name.
std::optional<KEPRmaType> KEPRmaTypeFromName(std::string_view name);

struct KEPRshValue {
  // --- Values of each type
  static KEPRshValue Boolean(bool value);
  static KEPRshValue Integer(int value);
  static KEPRshValue Scalar(float value);
  static KEPRshValue Color(float r, float g, float b, float alpha = 1.0f);
  /// A vector of 2 to 4 components (more are ignored, fewer than 2 make a 2-vector).
  static KEPRshValue Vector(std::initializer_list<float> components);
  /// A texture value holding `document` (may be null), with a reference of its own.
  static KEPRshValue Texture(KEPIPLMDmtDocument* document);
  static KEPRshValue Void() { return KEPRshValue{}; }

  KEPRmaType type = KEPRmaType::Void;
  bool boolean = false;
  int integer = 0;
  float scalar = 0.0f;
  float components[4] = {0.0f, 0.0f, 0.0f, 1.0f};  ///< colour rgba or vector xyzw
  int dimension = 3;                               ///< vector size, 2 to 4
  KEP_var<KEPIPLMDmtDocument> texture;             ///< texture document, may be empty
  std::string lightProfile;                        ///< light profile file, may be empty
};
