// The picture of `rshview preview`: a lit sphere in a material's viewer colours on a neutral
// background (the shading model is described in docs/rshview.md, "preview").
#pragma once

#include <cstdint>
#include <vector>

/// What the viewer's material answers, as the sphere uses it.
struct RshviewSphereMaterial {
  float diffuse = 0.8f;  ///< diffuse coefficient
  float diffuseColor[3] = {1.0f, 1.0f, 1.0f};
  float specular = 0.0f;  ///< specular coefficient
  float specularColor[3] = {1.0f, 1.0f, 1.0f};
  float glossiness = 0.0f;    ///< 0 (broad highlight) to 1 (sharp)
  float transparency = 0.0f;  ///< 0 opaque to 1 clear
  /// 0 (lit by the light only) to 1 (lights itself: its colour at full strength whatever the light)
  float luminosity = 0.0f;
  // The texture, when `texture` is not empty: width × height RGBA pixels, rows from the top.
  std::vector<std::uint8_t> texture;
  int textureWidth = 0;
  int textureHeight = 0;
  bool repeat[2] = {true, true};  ///< wrapping in u and v (else the edge texels continue)
  bool flip[2] = {false, false};
  float position[2] = {0.0f, 0.0f};
  float size[2] = {1.0f, 1.0f};  ///< one image per this much of the sphere's u and v
  /// Turn of the image in radians (as the viewer answers it), about the point facing the viewer.
  float angleRadians = 0.0f;
};

/// The background's grey level (0..255).
inline constexpr std::uint8_t kRshviewPreviewBackground = 128;

/// A `size` × `size` RGBA picture (rows from the top) of the sphere; `size` from 1.
std::vector<std::uint8_t> RshviewRenderSphere(const RshviewSphereMaterial& material, int size);
