// The classic editor of a node with many parameters: building it (the root frame, its shader
// frame and one parameter frame a row, under a root dialog as rshview opens it), and serialising
// its widget tree to JSON (what `rshview dump` and the browser ask for).
//
// The node is the immersive benchmark's mixed node (every parameter type in turn, see
// BenchMixedNode.h) with, in addition, a length in centimetres on every fifth scalar (a spin box
// with a unit) and one colour temperature slider ("blackbody", whose background is a gradient).
#include <benchmark/benchmark.h>

#include <string>

#include "BenchEditorLoops.h"
#include "BenchMixedNode.h"
#include "KEPDlgFrame.h"
#include "KEPHostConfiguration.h"
#include "KEPHostContext.h"
#include "KEPHostShaderDocument.h"
#include "KEPIRshShaderEditorDialog.h"
#include "KEPParmDictionary.h"
#include "KEPRshViewModule.h"
#include "KEPVidTree.h"

namespace {

/// A host session with one mixed node of `count` parameters and its classic editor's behaviour.
struct Scene {
  explicit Scene(int count) {
    KEPRshViewRegister();
    const std::string id = "bench_classic";
    KEPHostShaderTypeDefinition type = bench::MixedType(id, count);
    for (int i = 0; i < count; i += 50) {
      const std::string name = "p" + std::to_string(i);
      KEPHostConfiguration::SetValue(id, name + ".Widget", "spinner");
      KEPHostConfiguration::SetValue(id, name + ".Unit", "cm");
      KEPHostConfiguration::SetValue(id, name + ".Magnitude", "length");
      KEPHostConfiguration::SetValue(id, name + ".Min", "0");
      KEPHostConfiguration::SetValue(id, name + ".Max", "1000");
      type.parameters[static_cast<std::size_t>(i)].defaultValue = KEPHostValue::Scalar(25.0f);
    }
    if (count > 10) {
      KEPHostConfiguration::SetValue(id, "p10.Widget", "blackbody");
      KEPHostConfiguration::SetValue(id, "p10.Min", "1000");
      KEPHostConfiguration::SetValue(id, "p10.Max", "12000");
      KEPHostConfiguration::SetValue(id, "p10.Step", "100");
      KEPHostConfiguration::SetValue(id, "p10.Unit", "k");
      type.parameters[10].defaultValue = KEPHostValue::Scalar(5200.0f);
    }
    KEPICkeMagnitude* length = KEPParmDictionary::FindMagnitude(KEPParmDictionary::LengthType);
    length->SetCurrentUnit(KEPParmDictionary::FindUnit(KEPUnicodeString::FromUTF8("cm")));
    node = KEP_var<KEPHostShaderNode>::Adopt(KEPHostShaderNode::Create(type, "n"));
    dialog = KEPQueryVar<KEPIRshShaderEditorDialog>(static_cast<KEPIRshShader*>(node.Get()));
  }

  /// Builds the editor under a fresh root dialog; the root owns it.
  KEPDialog* Build(KEP_var<KEPDlgFrame>& root) const {
    root = KEP_var<KEPDlgFrame>::Adopt(new KEPDlgFrame(nullptr, "rshview"));
    KEPDialog* editor = nullptr;
    dialog->BuildEditor(root.Get(), editor);
    return editor;
  }

  using Root = KEPDlgFrame;
  bool Ready() const { return static_cast<bool>(dialog); }

  KEPHostContext host;
  KEP_var<KEPHostShaderNode> node;
  KEP_var<KEPIRshShaderEditorDialog> dialog;
};

void BM_BuildClassicEditor(benchmark::State& state) {
  const Scene scene(static_cast<int>(state.range(0)));
  bench::TimeBuild(state, scene);
  state.SetComplexityN(state.range(0));
  state.counters["rows/s"] = benchmark::Counter(static_cast<double>(state.range(0)),
                                                benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_BuildClassicEditor)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

void BM_SerialiseClassicEditor(benchmark::State& state) {
  const Scene scene(static_cast<int>(state.range(0)));
  const std::size_t bytes = bench::TimeSerialise(state, scene);
  state.SetComplexityN(state.range(0));
  state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK(BM_SerialiseClassicEditor)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

void BM_TearDownClassicEditor(benchmark::State& state) {
  const Scene scene(static_cast<int>(state.range(0)));
  bench::TimeTearDown(state, scene);
}
BENCHMARK(BM_TearDownClassicEditor)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
