// The immersive editor of a node with many scalar parameters in 32 groups: building it, and
// serialising its widget tree to JSON (what `rshview dump` and the browser ask for).
//
// Each parameter is a slider row (label, widget grid, slider, editor, hidden button), with a
// range, a step and a group; a tenth are lengths shown in centimetres, so the unit path runs too.
#include <benchmark/benchmark.h>

#include <nlohmann/json.hpp>

#include <string>

#include "KEPHostConfiguration.h"
#include "KEPHostContext.h"
#include "KEPHostShaderDocument.h"
#include "KEPIRshShaderEditorImmLayout.h"
#include "KEPParmDictionary.h"
#include "KEPRshViewModule.h"
#include "KEPVidLayGrid.h"
#include "KEPVidTree.h"

namespace {

constexpr int kGroups = 32;

/// A host session with one node of `count` scalar parameters spread over 32 groups.
struct Scene {
  explicit Scene(int count) {
    KEPRshViewRegister();
    const std::string id = "bench_scalars";
    KEPHostConfiguration::SetValue(id, "GroupCount", std::to_string(kGroups));
    KEPHostConfiguration::SetValue(id, "GlobalShaderSortingOrder.Status", "yes");
    for (int g = 0; g < kGroups; ++g) {
      const std::string key = "Group" + std::to_string(g);
      KEPHostConfiguration::SetValue(id, key + ".Name", "Group " + std::to_string(g));
      KEPHostConfiguration::SetValue(id, key + ".Order", std::to_string(kGroups - g));
      KEPHostConfiguration::SetValue(id, key + ".CollapsedByDefault", "no");
    }
    KEPHostShaderTypeDefinition type;
    type.name = id;
    for (int i = 0; i < count; ++i) {
      const std::string name = "p" + std::to_string(i);
      type.parameters.push_back({name, KEPHostValue::Scalar(0.5f), {}});
      KEPHostConfiguration::SetValue(id, name + ".Group", "Group" + std::to_string(i % kGroups));
      KEPHostConfiguration::SetValue(id, name + ".Min", "0");
      KEPHostConfiguration::SetValue(id, name + ".Max", "10");
      KEPHostConfiguration::SetValue(id, name + ".Step", "0.01");
      KEPHostConfiguration::SetValue(id, name + ".Widget", "slider");
      KEPHostConfiguration::SetValue(id, name + ".SortingOrder", std::to_string(count - i));
      if (i % 10 == 0) {
        KEPHostConfiguration::SetValue(id, name + ".Unit", "mm");
        KEPHostConfiguration::SetValue(id, name + ".Magnitude", "length");
      }
    }
    KEPICkeMagnitude* length = KEPParmDictionary::FindMagnitude(KEPParmDictionary::LengthType);
    length->SetCurrentUnit(KEPParmDictionary::FindUnit(KEPUnicodeString::FromUTF8("cm")));
    node = KEP_var<KEPHostShaderNode>::Adopt(KEPHostShaderNode::Create(type, "n"));
    layout = KEPQueryVar<KEPIRshShaderEditorImmLayout>(static_cast<KEPIRshShader*>(node.Get()));
  }

  /// Builds the editor under a fresh root; the root owns it.
  KEPVidWidget* Build(KEP_var<KEPVidLayGrid>& root) const {
    root = KEP_var<KEPVidLayGrid>::Adopt(new KEPVidLayGrid(nullptr, "root"));
    KEPVidWidget* editor = nullptr;
    layout->BuildEditor(root.Get(), "ShaderEditor", false, editor);
    return editor;
  }

  KEPHostContext host;
  KEP_var<KEPHostShaderNode> node;
  KEP_var<KEPIRshShaderEditorImmLayout> layout;
};

void BM_BuildEditor(benchmark::State& state) {
  Scene scene(static_cast<int>(state.range(0)));
  if (!scene.layout) {
    state.SkipWithError("no immersive editor registered");
    return;
  }
  for (auto _ : state) {
    KEP_var<KEPVidLayGrid> root;
    benchmark::DoNotOptimize(scene.Build(root));
    state.PauseTiming();
    root.Reset();  // tearing down is not building
    state.ResumeTiming();
  }
  state.SetComplexityN(state.range(0));
  state.counters["rows/s"] = benchmark::Counter(static_cast<double>(state.range(0)),
                                                benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_BuildEditor)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

void BM_SerialiseEditor(benchmark::State& state) {
  Scene scene(static_cast<int>(state.range(0)));
  if (!scene.layout) {
    state.SkipWithError("no immersive editor registered");
    return;
  }
  KEP_var<KEPVidLayGrid> root;
  KEPVidWidget* editor = scene.Build(root);
  for (auto _ : state) benchmark::DoNotOptimize(KEPVidToJson(editor));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_SerialiseEditor)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

void BM_TearDownEditor(benchmark::State& state) {
  Scene scene(static_cast<int>(state.range(0)));
  if (!scene.layout) {
    state.SkipWithError("no immersive editor registered");
    return;
  }
  for (auto _ : state) {
    state.PauseTiming();
    KEP_var<KEPVidLayGrid> root;
    scene.Build(root);
    state.ResumeTiming();
    root.Reset();
  }
}
BENCHMARK(BM_TearDownEditor)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
