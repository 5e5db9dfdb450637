// The timing loops the editor benchmarks share. A scene holds one node and its editor's
// behaviour: `Ready()` says whether the module answered for the node, `Build(root)` builds the
// editor under a fresh root of type `Scene::Root` (the root owns it) and returns it.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

#include "KEPVidTree.h"
#include "KEP_var.h"

namespace bench {

/// Building the editor; tearing it down is left out of the time.
template <class Scene>
void TimeBuild(benchmark::State& state, const Scene& scene) {
  if (!scene.Ready()) return state.SkipWithError("no editor registered for the node");
  for (auto _ : state) {
    KEP_var<typename Scene::Root> root;
    benchmark::DoNotOptimize(scene.Build(root));
    state.PauseTiming();
    root.Reset();
    state.ResumeTiming();
  }
}

/// Serialising a built editor to JSON text; answers the size of one text.
template <class Scene>
std::size_t TimeSerialise(benchmark::State& state, const Scene& scene) {
  if (!scene.Ready()) {
    state.SkipWithError("no editor registered for the node");
    return 0;
  }
  KEP_var<typename Scene::Root> root;
  auto* editor = scene.Build(root);
  std::size_t bytes = 0;
  for (auto _ : state) {
    const std::string text = KEPVidToJsonText(editor);
    bytes = text.size();
    benchmark::DoNotOptimize(text.data());
  }
  return bytes;
}

/// Tearing the editor down; building it is left out of the time.
template <class Scene>
void TimeTearDown(benchmark::State& state, const Scene& scene) {
  if (!scene.Ready()) return state.SkipWithError("no editor registered for the node");
  for (auto _ : state) {
    state.PauseTiming();
    KEP_var<typename Scene::Root> root;
    scene.Build(root);
    state.ResumeTiming();
    root.Reset();
  }
}

}  // namespace bench
