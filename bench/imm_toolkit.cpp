// The immersive toolkit at the size of a large editor: 1,000 parameter rows of about six widgets
// (label, row widget, its grid, slider, editor, hidden button), built, then written as JSON text,
// as a JSON document and as readable text, and searched by path.
#include <benchmark/benchmark.h>

#include <nlohmann/json.hpp>
#include <string>

#include "KEPVidCtlButton.h"
#include "KEPVidCtlEditor.h"
#include "KEPVidCtlLabel.h"
#include "KEPVidCtlSlider.h"
#include "KEPVidLayGrid.h"
#include "KEPVidTree.h"
#include "KEP_var.h"

namespace {

constexpr int kRows = 1000;

KEP_var<KEPVidWidget> BuildRows(int rows) {
  auto root = KEP_var<KEPVidWidget>::Adopt(new KEPVidLayGrid(nullptr, "ParameterNoGroupLayout"));
  auto* grid = static_cast<KEPVidLayGrid*>(root.Get());
  grid->SetColumnWeight(0, 0.0);
  grid->SetColumnWeight(1, 1.0);
  grid->SetColumnWeight(2, 0.0);
  char name[32];
  for (int i = 0; i < rows; ++i) {
    std::snprintf(name, sizeof name, "ParameterLabel%d", i);
    auto* label = new KEPVidCtlLabel(root.Get(), name);
    label->SetText(u"Diffuse weight");
    label->SetGridCell({i, 0, 1, 1, KEPVidAttach_None});
    std::snprintf(name, sizeof name, "ParameterWidget%d", i);
    auto* widget = new KEPVidWidget(root.Get(), name);
    widget->SetGridCell({i, 1, 1, 1, KEPVidAttach_All});
    widget->SetLayoutWhenInvisible(false);
    auto* layout = new KEPVidLayGrid(widget, "ScalarLayout");
    layout->SetCellSpacing(2, 2);
    layout->SetColumnWeight(0, 1.0);
    layout->SetGridCell({0, 0, 1, 1, KEPVidAttach_All});
    auto* slider = new KEPVidCtlSlider(layout, "scalarSlider");
    slider->SetRange(0, 100);
    slider->SetValue(i % 100);
    slider->SetGridCell({0, 0, 1, 1, KEPVidAttach_All});
    slider->SetTooltipInitialDelay(0.1);
    auto* editor = new KEPVidCtlEditor(layout, "scalarEditor");
    editor->SetDataType(KEPVidEditor_Double);
    editor->SetValue(i * 0.01);
    editor->SetGridCell({0, 1, 1, 1, KEPVidAttach_None});
    auto* button = new KEPVidCtlButton(layout, "HidedButton");
    button->SetVisibility(false);
    button->SetMinimumSize(15, 15);
    button->SetGridCell({0, 2, 1, 1, KEPVidAttach_None});
  }
  return root;
}

void BM_BuildRows(benchmark::State& state) {
  for (auto _ : state) {
    KEP_var<KEPVidWidget> root = BuildRows(kRows);
    benchmark::DoNotOptimize(root.Get());
  }
  state.SetItemsProcessed(state.iterations() * kRows * 6);
}

void BM_JsonText(benchmark::State& state) {
  const KEP_var<KEPVidWidget> root = BuildRows(kRows);
  std::size_t bytes = 0;
  for (auto _ : state) {
    const std::string text = KEPVidToJsonText(root.Get());
    bytes = text.size();
    benchmark::DoNotOptimize(text.data());
  }
  state.counters["bytes"] = static_cast<double>(bytes);
  state.SetItemsProcessed(state.iterations() * kRows * 6);
}

void BM_JsonDocument(benchmark::State& state) {
  const KEP_var<KEPVidWidget> root = BuildRows(kRows);
  for (auto _ : state) {
    const nlohmann::json json = KEPVidToJson(root.Get());
    benchmark::DoNotOptimize(&json);
  }
  state.SetItemsProcessed(state.iterations() * kRows * 6);
}

void BM_JsonDocumentDumped(benchmark::State& state) {
  const KEP_var<KEPVidWidget> root = BuildRows(kRows);
  for (auto _ : state) {
    const std::string text = KEPVidToJson(root.Get()).dump();
    benchmark::DoNotOptimize(text.data());
  }
  state.SetItemsProcessed(state.iterations() * kRows * 6);
}

void BM_Text(benchmark::State& state) {
  const KEP_var<KEPVidWidget> root = BuildRows(kRows);
  for (auto _ : state) {
    const std::string text = KEPVidToText(root.Get());
    benchmark::DoNotOptimize(text.data());
  }
  state.SetItemsProcessed(state.iterations() * kRows * 6);
}

// The last row's slider, by a short path: the worst case of the breadth-first search.
void BM_FindLastRow(benchmark::State& state) {
  const KEP_var<KEPVidWidget> root = BuildRows(kRows);
  const std::string path = "ParameterWidget" + std::to_string(kRows - 1) + "/scalarSlider";
  std::string error;
  for (auto _ : state) {
    KEPVidWidget* found = KEPVidFindByPath(root.Get(), path, error);
    if (!found) state.SkipWithError(error.c_str());
    benchmark::DoNotOptimize(found);
  }
}

}  // namespace

BENCHMARK(BM_BuildRows)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JsonText)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JsonDocument)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JsonDocumentDumped)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Text)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FindLastRow)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
