// A document of two materials with shared and nested sub-shaders, for the tests of connections.
//
//   Glass (mia_phen_material)  tint -> Mixed     other -> Noise
//   Metal (mia_phen_material)  tint -> Tiles     other -> Noise    extra -> Outer   slot -> Bumps
//   Outer (colour_map)         input -> Inner
//   Inner (colour_map)         input -> Glass   (so Glass.tint is reached from Inner and Outer)
//   Mixed, Tiles, Noise (colour_map), Bumps (bump_map), Lonely (colour_map, unused)
//
// Reuse goes by what a node yields, not by its type name: colour_map declares the output
// "KEPRmaColor" and bump_map "KEPRmaVector", and no type is named after a feature type, so an
// editor that compared type names would offer nothing. The manager offers "colour_map"
// ("Colour map") and "kep_phen_texture" ("Texture", output "KEPRmaColor") for colour parameters
// and "bump_map" ("Bump") for slots.
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
