// The viewer asks a material everything on every frame: measure the full set of questions for
// one material whose node has 10, 100 and 1,000 parameters (the named ones last, so that a
// linear lookup would show).
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <string>

#include "KEPCreateComponent.h"
#include "KEPHostContext.h"
#include "KEPHostShaderDocument.h"
#include "KEPIHardwareMaterial.h"
#include "KEPIOpenGLShaderMaterial.h"
#include "KEPIRmaMappingManipulator.h"
#include "KEPIRmaMappingManipulatorMaterial.h"
#include "KEPIRshShaderLink.h"
#include "KEPPixelImage.h"
#include "KEPRshViewModule.h"
#include "KEPTextureDocument.h"

namespace {

using V = KEPHostValue;

KEPHostValue Texture(const std::string& path) {
  auto document = KEP_var<KEPTextureDocument>::Adopt(
      KEPTextureDocument::Create(KEPUnicodeString::FromUTF8(path)));
  return V::Texture(document.Get());
}

// Physical: slot and BRDF parameters. Other: the "_uv_*" family. Connected: neither; every texture
// question falls back to the texture node connected to the material's last parameter.
enum class Kind { Physical, Other, Connected };

KEPHostShaderTypeDefinition MakeType(Kind kind, int count) {
  KEPHostShaderTypeDefinition type;
  type.name = kind == Kind::Physical ? "MPM_car_paint" : "mia_phen_material";
  const bool physical = kind == Kind::Physical;
  auto add = [&](std::string name, KEPHostValue value) {
    type.parameters.push_back({std::move(name), std::move(value), {}});
  };
  if (physical) {
    add("default_generic_brdf_diffuse_weight", V::Scalar(0.9f));
    add("default_slot_diffuse_color", V::Color(0.8f, 0.1f, 0.1f));
    add("default_generic_brdf_diffuse_glossiness", V::Scalar(0.2f));
    add("default_generic_brdf_specular_weight", V::Scalar(0.6f));
    add("default_slot_specular_color", V::Color(1, 1, 1));
    add("default_slot_specular_glossiness", V::Scalar(0.8f));
    add("default_slot_transparency", V::Scalar(0.0f));
    add("default_slot_opacity", V::Scalar(1.0f));
    add("repeat_u", V::Boolean(true));
    add("repeat_v", V::Boolean(true));
    add("flip_u", V::Boolean(false));
    add("flip_v", V::Boolean(false));
    add("offset_u", V::Scalar(0));
    add("offset_v", V::Scalar(0));
    add("scale_u", V::Scalar(2));
    add("scale_v", V::Scalar(1));
    add("angle", V::Scalar(0.5f));
    add("type", V::Integer(5));
    add("RNDMaterialVersion", V::Integer(1));
  } else if (kind == Kind::Other) {
    add("_uv_mapping", V::Integer(2));
    add("_uv_flip_u", V::Boolean(false));
    add("_uv_flip_v", V::Boolean(true));
    add("_uv_offset_u", V::Scalar(0));
    add("_uv_offset_v", V::Scalar(0));
    add("_uv_scale_u", V::Scalar(2));
    add("_uv_scale_v", V::Scalar(4));
    add("_uv_angle", V::Scalar(0.25f));
  }
  if (kind == Kind::Connected)
    add("slot", V::Void());
  else
    add("texture",
        Texture(std::string(KEPRSH_SOURCE_ROOT) + "/samples/startup/textures/checker.png"));
  // Filler parameters first, so every named one sits behind them.
  const int filler = count - static_cast<int>(type.parameters.size());
  std::vector<KEPHostParameterDefinition> all;
  for (int i = 0; i < filler; ++i) all.push_back({"filler_" + std::to_string(i), V::Scalar(1), {}});
  for (auto& p : type.parameters) all.push_back(std::move(p));
  type.parameters = std::move(all);
  return type;
}

void AskEverything(KEPIHardwareMaterial* material, KEPIOpenGLShaderMaterial* program,
                   KEPIRmaMappingManipulator* mapping, KEPIRmaMappingManipulatorMaterial* mm) {
  float coef = 0, color[3] = {0, 0, 0}, gloss = 0, u = 0, v = 0;
  double d = 0, r = 0, g = 0, b = 0;
  unsigned char c = 0, fu = 0, fv = 0;
  int wu = 0, wv = 0;
  short type = 0;
  benchmark::DoNotOptimize(program->GetExternalShader());
  material->GetAmbient(coef, color);
  material->GetDiffuse(coef, color);
  material->GetSpecular(coef, color, gloss);
  benchmark::DoNotOptimize(material->GetTransparencyCoef());
  benchmark::DoNotOptimize(mm->GetLuminosity(d));
  benchmark::DoNotOptimize(mm->GetContrast(d));
  benchmark::DoNotOptimize(mm->GetShininess(d));
  benchmark::DoNotOptimize(mm->GetTransparency(d));
  benchmark::DoNotOptimize(mm->GetColor(r, g, b));
  benchmark::DoNotOptimize(mm->GetTransparentColor(r, g, b));
  benchmark::DoNotOptimize(mm->GetUseTranparentColor(c));
  KEPTexturePixelImage* image = material->GetTextureImage();
  if (image) image->Release();
  material->GetTextureWrapping(wu, wv);
  benchmark::DoNotOptimize(mm->GetTextureRepeat(c));
  material->GetTextureFlip(fu, fv);
  material->GetTexturePosition(u, v);
  material->GetTextureSize(u, v);
  benchmark::DoNotOptimize(material->GetTextureAngle());
  benchmark::DoNotOptimize(mapping->GetMappingType(type));
  benchmark::DoNotOptimize(mapping->GetRatio(d));
  benchmark::DoNotOptimize(mapping->GetRotation(d));
  benchmark::DoNotOptimize(mapping->GetScale(d));
  benchmark::DoNotOptimize(mapping->GetFlipU(c));
  benchmark::DoNotOptimize(mapping->GetFlipV(c));
  benchmark::DoNotOptimize(mapping->GetTranslationU(d));
  benchmark::DoNotOptimize(mapping->GetTranslationV(d));
  benchmark::DoNotOptimize(mapping->GetSize(d));
  benchmark::DoNotOptimize(coef + gloss + u + v + static_cast<double>(wu + wv + fu + fv) +
                           color[0]);
}

KEPHostShaderTypeDefinition TextureType() {
  KEPHostShaderTypeDefinition type = MakeType(Kind::Other, 0);
  type.name = "kep_phen_texture";
  return type;
}

void FullSet(benchmark::State& state, Kind kind) {
  KEPHostContext host;
  KEPRshViewRegister();
  setenv("KEPStartupPath", (std::string(KEPRSH_SOURCE_ROOT) + "/samples/startup").c_str(), 0);
  auto library = std::make_shared<KEPHostShaderLibrary>();
  library->AddType(MakeType(kind, static_cast<int>(state.range(0))));
  library->AddType(TextureType());
  auto document = KEP_var<KEPHostShaderDocument>::Adopt(KEPHostShaderDocument::Create(library));
  KEPIRshShader* shader = nullptr;
  document->CreateShader(library->Types()[0].name, "n", shader);
  if (kind == Kind::Connected) {
    KEP_var<KEPIRshShader> texture;
    document->CreateShader("kep_phen_texture", "t", *texture.Out());
    document->FindNode("n")->Parameters().back()->SetConnectedShader(texture.Get());
  }
  auto delegate = KEP_var<KEPBaseUnknown>::Adopt(KEPCreateComponent("KEPRshShaderDelegate"));
  KEPQueryVar<KEPIRshShaderLink>(delegate)->SetShader(shader);
  shader->Release();
  auto material = KEPQueryVar<KEPIHardwareMaterial>(delegate);
  auto program = KEPQueryVar<KEPIOpenGLShaderMaterial>(delegate);
  auto mapping = KEPQueryVar<KEPIRmaMappingManipulator>(delegate);
  auto mm = KEPQueryVar<KEPIRmaMappingManipulatorMaterial>(delegate);
  AskEverything(material.Get(), program.Get(), mapping.Get(), mm.Get());  // first query: Init
  for (auto _ : state) AskEverything(material.Get(), program.Get(), mapping.Get(), mm.Get());
}

void BM_PhysicalMaterialFullSet(benchmark::State& state) {
  FullSet(state, Kind::Physical);
}
void BM_OtherMaterialFullSet(benchmark::State& state) {
  FullSet(state, Kind::Other);
}
void BM_ConnectedTextureFullSet(benchmark::State& state) {
  FullSet(state, Kind::Connected);
}

}  // namespace

BENCHMARK(BM_PhysicalMaterialFullSet)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(BM_OtherMaterialFullSet)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(BM_ConnectedTextureFullSet)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK_MAIN();
