#include "RshviewSphere.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

struct Rgb {
  float r, g, b;
};

float Clamp01(float value) {
  return std::clamp(value, 0.0f, 1.0f);
}

std::uint8_t Byte(float value) {
  return static_cast<std::uint8_t>(std::lround(Clamp01(value) * 255.0f));
}

/// A texture coordinate inside [0, 1): wrapped when repeating, else held at the edges.
float Wrap(float t, bool repeat) {
  if (repeat) return t - std::floor(t);
  return std::clamp(t, 0.0f, std::nextafter(1.0f, 0.0f));
}

/// The texel under sphere coordinates (u, v), nearest-neighbour. The image turns about the point
/// facing the viewer (u, v = 0.5), measured in arc so that u (once round) and v (pole to pole)
/// turn alike: a quarter turn makes a left | right split a top | bottom one.
Rgb Texel(const RshviewSphereMaterial& m, float u, float v) {
  const float c = std::cos(m.angleRadians), n = std::sin(m.angleRadians);
  const float du = 2.0f * (u - 0.5f), dv = v - 0.5f;
  const float tu = 0.5f + 0.5f * (du * c - dv * n);
  const float tv = 0.5f + (du * n + dv * c);
  const float su = m.size[0] > 0.0f ? m.size[0] : 1.0f;
  const float sv = m.size[1] > 0.0f ? m.size[1] : 1.0f;
  const float rs = (tu - m.position[0]) / su;
  const float rt = (tv - m.position[1]) / sv;
  const float s = Wrap(m.flip[0] ? -rs : rs, m.repeat[0]);
  const float t = Wrap(m.flip[1] ? -rt : rt, m.repeat[1]);
  const int x =
      std::min(static_cast<int>(s * static_cast<float>(m.textureWidth)), m.textureWidth - 1);
  const int y =
      std::min(static_cast<int>(t * static_cast<float>(m.textureHeight)), m.textureHeight - 1);
  const std::size_t at = (static_cast<std::size_t>(y) * static_cast<std::size_t>(m.textureWidth) +
                          static_cast<std::size_t>(x)) *
                         4;
  return {static_cast<float>(m.texture[at]) / 255.0f,
          static_cast<float>(m.texture[at + 1]) / 255.0f,
          static_cast<float>(m.texture[at + 2]) / 255.0f};
}

}  // namespace

std::vector<std::uint8_t> RshviewRenderSphere(const RshviewSphereMaterial& m, int size) {
  const auto side = static_cast<std::size_t>(std::max(size, 1));
  std::vector<std::uint8_t> pixels(side * side * 4);
  const bool textured = !m.texture.empty() && m.textureWidth > 0 && m.textureHeight > 0 &&
                        m.texture.size() >= static_cast<std::size_t>(m.textureWidth) *
                                                static_cast<std::size_t>(m.textureHeight) * 4;
  // A light above, left of and in front of the viewer; the viewer looks along -z.
  const float lightLength = std::sqrt(0.5f * 0.5f + 0.6f * 0.6f + 0.8f * 0.8f);
  const float light[3] = {-0.5f / lightLength, 0.6f / lightLength, 0.8f / lightLength};
  const float halfLength =
      std::sqrt(light[0] * light[0] + light[1] * light[1] + (light[2] + 1.0f) * (light[2] + 1.0f));
  const float half[3] = {light[0] / halfLength, light[1] / halfLength,
                         (light[2] + 1.0f) / halfLength};
  const float exponent = 2.0f + 126.0f * Clamp01(m.glossiness);
  const float background = static_cast<float>(kRshviewPreviewBackground) / 255.0f;
  const float seeThrough = 0.5f * Clamp01(m.transparency);
  // A luminous material's colour is its own light: the share `glow` of it shows at full strength
  // and the rest is lit as usual, so a luminosity of 0 leaves the lit picture exactly as it is.
  const float glow = std::isfinite(m.luminosity) ? Clamp01(m.luminosity) : 0.0f;
  constexpr float kAmbient = 0.15f;
  const float radius = 0.45f * static_cast<float>(side);
  const float centre = 0.5f * static_cast<float>(side);

  for (std::size_t row = 0; row < side; ++row) {
    for (std::size_t column = 0; column < side; ++column) {
      // Pixel centres; y grows upwards.
      const float x = (static_cast<float>(column) + 0.5f - centre) / radius;
      const float y = (centre - static_cast<float>(row) - 0.5f) / radius;
      const float rr = x * x + y * y;
      Rgb out{background, background, background};
      if (rr <= 1.0f) {
        const float z = std::sqrt(1.0f - rr);
        Rgb base{m.diffuseColor[0], m.diffuseColor[1], m.diffuseColor[2]};
        if (textured) {
          const float u = 0.5f + std::atan2(x, z) / (2.0f * std::numbers::pi_v<float>);
          const float v = 0.5f - std::asin(std::clamp(y, -1.0f, 1.0f)) / std::numbers::pi_v<float>;
          const Rgb texel = Texel(m, u, v);
          base = {base.r * texel.r, base.g * texel.g, base.b * texel.b};
        }
        const float lambert = std::max(0.0f, x * light[0] + y * light[1] + z * light[2]);
        const float highlight =
            std::pow(std::max(0.0f, x * half[0] + y * half[1] + z * half[2]), exponent);
        const float d = glow + (1.0f - glow) * (kAmbient + m.diffuse * lambert);
        const float s = m.specular * highlight;
        const Rgb shaded{base.r * d + m.specularColor[0] * s, base.g * d + m.specularColor[1] * s,
                         base.b * d + m.specularColor[2] * s};
        out = {shaded.r + (background - shaded.r) * seeThrough,
               shaded.g + (background - shaded.g) * seeThrough,
               shaded.b + (background - shaded.b) * seeThrough};
      }
      std::uint8_t* pixel = &pixels[(row * side + column) * 4];
      pixel[0] = Byte(out.r);
      pixel[1] = Byte(out.g);
      pixel[2] = Byte(out.b);
      pixel[3] = 255;
    }
  }
  return pixels;
}
