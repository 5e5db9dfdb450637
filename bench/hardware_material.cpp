// The viewer asks a material everything on every frame: measure the full set of questions for
// one material whose node has 10, 100 and 1,000 parameters (the named ones last, so that a
// linear lookup would show), in normal and sticker mode; the first question (the program search
// and the parameter list); and the look-up of the connected texture after a connection changed.
// Each benchmark reports the heap allocations per iteration ("allocs"): the per-frame path makes
// none.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <atomic>
#include <cstdlib>
#include <new>
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
#include "KEPRshParameterServices.h"
#include "KEPRshViewModule.h"
#include "KEPTextureDocument.h"

// Every allocation of the process is counted (the benchmark's own too, outside the timed loops).
// GCC sees the replaced operator delete's free() inlined into calls of the library's operator new
// and takes it for a mismatch.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif
namespace {
std::atomic<unsigned long long> gAllocations{0};
}  // namespace

void* operator new(std::size_t size) {
  gAllocations.fetch_add(1, std::memory_order_relaxed);
  if (void* p = std::malloc(size ? size : 1)) return p;
  throw std::bad_alloc();
}
void operator delete(void* p) noexcept {
  std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
  std::free(p);
}

namespace {

using V = KEPHostValue;

/// Counts the allocations made while it lives into the benchmark's "allocs" counter, per
/// iteration.
class AllocationCounter {
 public:
  explicit AllocationCounter(benchmark::State& state)
      : state_(state), start_(gAllocations.load()) {}
  ~AllocationCounter() {
    state_.counters["allocs"] = benchmark::Counter(
        static_cast<double>(gAllocations.load() - start_), benchmark::Counter::kAvgIterations);
  }
  AllocationCounter(const AllocationCounter&) = delete;
  AllocationCounter& operator=(const AllocationCounter&) = delete;

 private:
  benchmark::State& state_;
  unsigned long long start_;
};

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
  type.isTexture = true;
  return type;
}

/// A material of `kind` with `count` parameters, linked through a delegate, and the viewer's
/// four interfaces on it.
struct Scene {
  Scene(Kind kind, int count) {
    KEPRshViewRegister();
    host.SetEnvironment("KEPStartupPath", std::string(KEPRSH_SOURCE_ROOT) + "/samples/startup");
    library->AddType(MakeType(kind, count));
    library->AddType(TextureType());
    document = KEP_var<KEPHostShaderDocument>::Adopt(KEPHostShaderDocument::Create(library));
    document->CreateShader(library->Types()[0].name, "n", *shader.Out());
    if (kind == Kind::Connected) {
      document->CreateShader("kep_phen_texture", "t", *texture.Out());
      slot = document->FindNode("n")->Parameters().back().Get();
      slot->SetConnectedShader(texture.Get());
    }
    Link();
  }
  /// A new delegate linked to the shader, not asked anything yet.
  void Link() {
    delegate = KEP_var<KEPBaseUnknown>::Adopt(KEPCreateComponent("KEPRshShaderDelegate"));
    KEPQueryVar<KEPIRshShaderLink>(delegate)->SetShader(shader.Get());
    material = KEPQueryVar<KEPIHardwareMaterial>(delegate);
    program = KEPQueryVar<KEPIOpenGLShaderMaterial>(delegate);
    mapping = KEPQueryVar<KEPIRmaMappingManipulator>(delegate);
    mm = KEPQueryVar<KEPIRmaMappingManipulatorMaterial>(delegate);
  }
  void AskEverything() { ::AskEverything(material.Get(), program.Get(), mapping.Get(), mm.Get()); }

  KEPHostContext host;
  std::shared_ptr<KEPHostShaderLibrary> library = std::make_shared<KEPHostShaderLibrary>();
  KEP_var<KEPHostShaderDocument> document;
  KEP_var<KEPIRshShader> shader, texture;
  KEPHostParameter* slot = nullptr;
  KEP_var<KEPBaseUnknown> delegate;
  KEP_var<KEPIHardwareMaterial> material;
  KEP_var<KEPIOpenGLShaderMaterial> program;
  KEP_var<KEPIRmaMappingManipulator> mapping;
  KEP_var<KEPIRmaMappingManipulatorMaterial> mm;
};

void FullSet(benchmark::State& state, Kind kind, unsigned char sticker) {
  Scene scene(kind, static_cast<int>(state.range(0)));
  scene.program->SetStickerMode(sticker);
  scene.AskEverything();  // the first question initialises
  AllocationCounter allocations(state);
  for (auto _ : state) scene.AskEverything();
}

void BM_PhysicalMaterialFullSet(benchmark::State& state) {
  FullSet(state, Kind::Physical, 0);
}
void BM_OtherMaterialFullSet(benchmark::State& state) {
  FullSet(state, Kind::Other, 0);
}
void BM_ConnectedTextureFullSet(benchmark::State& state) {
  FullSet(state, Kind::Connected, 0);
}
void BM_PhysicalMaterialFullSetSticker(benchmark::State& state) {
  FullSet(state, Kind::Physical, 1);
}
void BM_ConnectedTextureFullSetSticker(benchmark::State& state) {
  FullSet(state, Kind::Connected, 1);
}

// A new delegate and its first question: the program file search along the startup path and the
// reading of the parameter list. The delegate is made outside the timed part.
void BM_FirstQuestion(benchmark::State& state) {
  Scene scene(Kind::Physical, static_cast<int>(state.range(0)));
  AllocationCounter allocations(state);
  for (auto _ : state) {
    state.PauseTiming();
    scene.Link();
    state.ResumeTiming();
    float coefficient = 0, color[3] = {0, 0, 0};
    scene.material->GetDiffuse(coefficient, color);
    benchmark::DoNotOptimize(coefficient);
  }
}

// A connection changed somewhere: the next question that falls back on the connected texture
// looks for it again.
void BM_ConnectedTextureRefind(benchmark::State& state) {
  Scene scene(Kind::Connected, static_cast<int>(state.range(0)));
  scene.AskEverything();
  AllocationCounter allocations(state);
  for (auto _ : state) {
    KEPRshParameterServices::NoteConnectionChange();
    float u = 0, v = 0;
    scene.material->GetTextureSize(u, v);
    benchmark::DoNotOptimize(u + v);
  }
}

}  // namespace

BENCHMARK(BM_PhysicalMaterialFullSet)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(BM_OtherMaterialFullSet)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(BM_ConnectedTextureFullSet)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(BM_PhysicalMaterialFullSetSticker)->Arg(10)->Arg(1000);
BENCHMARK(BM_ConnectedTextureFullSetSticker)->Arg(10)->Arg(1000);
BENCHMARK(BM_FirstQuestion)->Arg(10)->Arg(1000);
BENCHMARK(BM_ConnectedTextureRefind)->Arg(10)->Arg(1000);
BENCHMARK_MAIN();
