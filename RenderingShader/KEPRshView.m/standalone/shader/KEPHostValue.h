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

struct KEPHostValue {
  // --- Values of each type
  static KEPHostValue Boolean(bool value);
  static KEPHostValue Integer(int value);
  static KEPHostValue Scalar(float value);
  static KEPHostValue Color(float r, float g, float b, float alpha = 1.0f);
  /// A vector of 2 to 4 components (more are ignored, fewer than 2 make a 2-vector).
  static KEPHostValue Vector(std::initializer_list<float> components);
  /// A texture value holding `document` (may be null), with a reference of its own.
  static KEPHostValue Texture(KEPIPLMDmtDocument* document);
  static KEPHostValue Void() { return KEPHostValue{}; }

  KEPRmaType type = KEPRmaType::Void;
  bool boolean = false;
  int integer = 0;
  float scalar = 0.0f;
  float components[4] = {0.0f, 0.0f, 0.0f, 1.0f};  ///< colour rgba or vector xyzw
  int dimension = 3;                               ///< vector size, 2 to 4
  KEP_var<KEPIPLMDmtDocument> texture;             ///< texture document, may be empty
  std::string lightProfile;                        ///< light profile file, may be empty
};
