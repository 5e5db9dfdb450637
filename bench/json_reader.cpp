// Reading JSON: an object of 1,000 and 50,000 keys (each checked against the earlier ones for a
// repeat), and documents of 1,000 and 50,000 nodes over the bundled sample library (each node
// created, found by id and given a value).
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "KEPHostContext.h"
#include "KEPJsonReader.h"
#include "KEPShaderDocumentLoader.h"
#include "KEPShaderLibraryLoader.h"

namespace {

void BM_JsonObjectKeys(benchmark::State& state) {
  const auto keys = static_cast<std::size_t>(state.range(0));
  std::string json = "{";
  for (std::size_t i = 0; i < keys; ++i)
    json += (i ? ",\n\"" : "\"") + std::string("parameter_") + std::to_string(i) + "\": 0.5";
  json += "}";
  for (auto _ : state) {
    KEPJsonValue value;
    int line = 0;
    std::string key, message;
    if (!KEPJsonReader::Parse(json, value, line, key, message))
      state.SkipWithError(message.c_str());
    benchmark::DoNotOptimize(value.members.data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_DocumentNodes(benchmark::State& state) {
  KEPHostContext host;
  auto library = std::make_shared<KEPHostShaderLibrary>();
  const KEPLoadResult loaded =
      KEPShaderLibraryLoader::Load(std::string(KEPRSH_SOURCE_ROOT) + "/samples/library", *library);
  if (!loaded.Ok()) return state.SkipWithError(loaded.Text().c_str());
  const auto nodes = static_cast<std::size_t>(state.range(0));
  std::string json = "{\"materials\": [";
  for (std::size_t i = 0; i < nodes; ++i) {
    const std::string id = "texture_" + std::to_string(i);
    json += (i ? ",\n" : "\n") + std::string("{\"id\": \"") + id +
            "\", \"type\": \"kep_phen_texture\", \"values\": {\"_uv_flip_u\": true}";
    if (i) json += ", \"connections\": {\"tint\": \"texture_0\"}";
    json += "}";
  }
  json += "]}";
  for (auto _ : state) {
    KEP_var<KEPHostShaderDocument> document;
    const KEPLoadResult result =
        KEPShaderDocumentLoader::LoadText("bench.rshdoc.json", json, library, document);
    if (!result.Ok()) state.SkipWithError(result.Errors().front().c_str());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

}  // namespace

BENCHMARK(BM_JsonObjectKeys)->Arg(1000)->Arg(50000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DocumentNodes)->Arg(1000)->Arg(50000)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
