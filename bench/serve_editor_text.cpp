// What the server does with an editor's tree on each event of a large node, besides writing it
// (immersive_editor's BM_SerialiseEditor): reading the text into its widgets, comparing two trees
// for the widgets that changed, and the view that tells what the paths stand for.
#include <benchmark/benchmark.h>

#include <string>

#include "BenchMixedNode.h"
#include "KEPHostContext.h"
#include "KEPHostShaderDocument.h"
#include "KEPIRshShaderEditorImmLayout.h"
#include "KEPRshViewModule.h"
#include "KEPVidLayGrid.h"
#include "KEPVidTree.h"
#include "RshviewEditorDiff.h"
#include "RshviewEditorView.h"

namespace {

/// The immersive editor's tree, as JSON text, of the mixed node of `count` parameters.
std::string MixedEditorText(int count) {
  KEPHostContext host;
  KEPRshViewRegister();
  const auto node = KEP_var<KEPHostShaderNode>::Adopt(
      KEPHostShaderNode::Create(bench::MixedType("bench_mixed", count), "n"));
  const auto layout =
      KEPQueryVar<KEPIRshShaderEditorImmLayout>(static_cast<KEPIRshShader*>(node.Get()));
  if (!layout) return {};
  const auto root = KEP_var<KEPVidLayGrid>::Adopt(new KEPVidLayGrid(nullptr, "root"));
  KEPVidWidget* editor = nullptr;
  layout->BuildEditor(root.Get(), "ShaderEditor", false, editor);
  return editor ? KEPVidToJsonText(editor) : std::string();
}

void BM_ReadTree(benchmark::State& state) {
  const std::string text = MixedEditorText(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    const RshviewWidgetText tree(text);
    if (!tree.Valid()) state.SkipWithError("the tree does not read");
    benchmark::DoNotOptimize(&tree);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_ReadTree)->Arg(1000)->Unit(benchmark::kMillisecond);

void BM_ChangedWidgets(benchmark::State& state) {
  const std::string text = MixedEditorText(static_cast<int>(state.range(0)));
  const RshviewWidgetText before(text), after(text);
  for (auto _ : state) benchmark::DoNotOptimize(RshviewChangedWidgets(before, after));
}
BENCHMARK(BM_ChangedWidgets)->Arg(1000)->Unit(benchmark::kMillisecond);

void BM_EditorView(benchmark::State& state) {
  const RshviewWidgetText tree(MixedEditorText(static_cast<int>(state.range(0))));
  for (auto _ : state) benchmark::DoNotOptimize(RshviewEditorView(tree, R"({"length":"mm"})"));
}
BENCHMARK(BM_EditorView)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
