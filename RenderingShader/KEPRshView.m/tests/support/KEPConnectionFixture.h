// A document of two materials with shared and nested sub-shaders, for the tests of connections.
//
//   Glass (mia_phen_material)  tint -> Mixed     other -> Noise
//   Metal (mia_phen_material)  tint -> Tiles     other -> Noise    extra -> Outer   slot -> Bumps
//   Outer (KEPRmaColor)        input -> Inner
//   Inner (KEPRmaColor)        input -> Glass   (so Glass.tint is reached from Inner and Outer)
//   Mixed, Tiles, Noise (KEPRmaColor), Bumps (KEPRmaVector), Lonely (KEPRmaColor, unused)
//
// Shader types named after the feature type they answer ("KEPRmaColor") are the ones a
// parameter of that type may reuse. The manager offers "KEPRmaColor" ("Colour map") and
// "kep_phen_texture" ("Texture") for colour parameters, "KEPRmaVector" ("Bump") for slots.
#pragma once

#include <string>
#include <vector>

#include "KEPTestSupport.h"

namespace keptest {

struct ConnectionDocument {
  KEPHostShaderNode* glass = nullptr;
  KEPHostShaderNode* metal = nullptr;
  KEPHostShaderNode* outer = nullptr;
  KEPHostShaderNode* inner = nullptr;
  KEPHostShaderNode* mixed = nullptr;
  KEPHostShaderNode* tiles = nullptr;
  KEPHostShaderNode* noise = nullptr;
  KEPHostShaderNode* bumps = nullptr;
  KEPHostShaderNode* lonely = nullptr;
};

/// Adds the types, the connectable lists and the nodes above to `world`.
ConnectionDocument BuildConnectionDocument(World& world);

/// True when some node reaches itself through connections (a cycle in the model); `path`
/// receives the identifiers of one such cycle.
bool HasConnectionCycle(KEPHostShaderDocument& document, std::vector<std::string>* path = nullptr);

}  // namespace keptest
