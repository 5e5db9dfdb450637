// The immersive editor of a node with many parameters in 32 groups: building it, and serialising
// its widget tree to JSON (what `rshview dump` and the browser ask for).
//
// Two nodes: "scalars", where each parameter is a slider row (label, widget grid, slider, editor,
// hidden button) with a range, a step and a group, a tenth of them lengths shown in centimetres so
// the unit path runs too; and "mixed", where the parameters take every type in turn (scalar
// slider, integer combo and spin box, boolean, colour, grey-level colour, vector sliders in a
// length unit and vector spin boxes, texture, sub-shader slot).
#include <benchmark/benchmark.h>

#include <nlohmann/json.hpp>

#include <string>

#include "BenchEditorLoops.h"
#include "BenchMixedNode.h"
#include "KEPHostConfiguration.h"
#include "KEPHostContext.h"
#include "KEPHostShaderDocument.h"
#include "KEPIRshShaderEditorImmLayout.h"
#include "KEPParmDictionary.h"
#include "KEPRshViewModule.h"
#include "KEPVidLayGrid.h"
#include "KEPVidTree.h"

namespace {

using bench::kGroups;

enum class Mix { Scalars, Mixed };

/// A host session with one node of `count` parameters spread over 32 groups.
struct Scene {
  explicit Scene(int count, Mix mix = Mix::Scalars) {
    KEPRshViewRegister();
    KEPHostShaderTypeDefinition type;
    if (mix == Mix::Mixed) {
      type = bench::MixedType("bench_mixed", count);
    } else {
      const std::string id = "bench_scalars";
      bench::ConfigureGroups(id);
      type.name = id;
      for (int i = 0; i < count; ++i) {
        const std::string name = "p" + std::to_string(i);
        const auto set = [&](const std::string& key, const std::string& value) {
          KEPHostConfiguration::SetValue(id, name + key, value);
        };
        set(".Group", "Group" + std::to_string(i % kGroups));
        set(".SortingOrder", std::to_string(count - i));
        type.parameters.push_back({name, KEPHostValue::Scalar(0.5f), {}});
        set(".Min", "0");
        set(".Max", "10");
        set(".Step", "0.01");
        set(".Widget", "slider");
        if (i % 10 == 0) {
          set(".Unit", "mm");
          set(".Magnitude", "length");
        }
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

  using Root = KEPVidLayGrid;
  bool Ready() const { return static_cast<bool>(layout); }

  KEPHostContext host;
  KEP_var<KEPHostShaderNode> node;
  KEP_var<KEPIRshShaderEditorImmLayout> layout;
};

void BM_BuildEditor(benchmark::State& state) {
  const Scene scene(static_cast<int>(state.range(0)));
  bench::TimeBuild(state, scene);
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
  const Scene scene(static_cast<int>(state.range(0)));
  bench::TimeSerialise(state, scene);
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_SerialiseEditor)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

void BM_TearDownEditor(benchmark::State& state) {
  const Scene scene(static_cast<int>(state.range(0)));
  bench::TimeTearDown(state, scene);
}
BENCHMARK(BM_TearDownEditor)->Arg(1000)->Unit(benchmark::kMicrosecond);

void BM_BuildMixedEditor(benchmark::State& state) {
  const Scene scene(static_cast<int>(state.range(0)), Mix::Mixed);
  bench::TimeBuild(state, scene);
}
BENCHMARK(BM_BuildMixedEditor)->Arg(1000)->Unit(benchmark::kMicrosecond);

void BM_SerialiseMixedEditor(benchmark::State& state) {
  const Scene scene(static_cast<int>(state.range(0)), Mix::Mixed);
  bench::TimeSerialise(state, scene);
}
BENCHMARK(BM_SerialiseMixedEditor)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
