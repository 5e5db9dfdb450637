// The search for the enumeration entry of a value over a configured range: a combo asks it for
// every value it shows. Ranges from 4 to the whole of int, each with a few entries (the value
// sought is the last one), in a configuration that also holds the keys of 200 other parameters.
#include <benchmark/benchmark.h>

#include <string>

#include "KEPHostConfiguration.h"
#include "KEPHostContext.h"
#include "KEPHostShaderDocument.h"
#include "KEPHostShaderManager.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPRshViewModule.h"

namespace {

void EnumIndex(benchmark::State& state) {
  KEPHostContext host;
  KEPRshViewRegister();
  const long long width = state.range(0);
  const int entries = static_cast<int>(state.range(1));
  auto library = std::make_shared<KEPHostShaderLibrary>();
  KEPHostShaderTypeDefinition type;
  type.name = "combo_node";
  type.parameters.push_back({"mode", KEPHostValue::Integer(0), {}});
  library->AddType(type);
  KEPHostShaderManager::Install(library);
  for (int p = 0; p < 200; ++p)
    for (const char* suffix : {".Min", ".Max", ".Enum0", ".EnumVal0", ".Description"})
      KEPHostConfiguration::SetValue("combo_node", "other" + std::to_string(p) + suffix, "0");
  const long long min = width > 0xFFFFFFFFLL ? -2147483648LL : 0;
  const long long max = min + width - 1;
  KEPHostConfiguration::SetValue("combo_node", "mode.Min", std::to_string(min));
  KEPHostConfiguration::SetValue("combo_node", "mode.Max", std::to_string(max));
  // Entries spread over the range, the last one at its end.
  for (int e = 1; e <= entries; ++e) {
    const long long index = min + (max - min) / entries * e;
    KEPHostConfiguration::SetValue("combo_node", "mode.Enum" + std::to_string(index),
                                   "Entry " + std::to_string(e));
    KEPHostConfiguration::SetValue("combo_node", "mode.EnumVal" + std::to_string(index),
                                   std::to_string(e * 10));
  }
  auto document = KEP_var<KEPHostShaderDocument>::Adopt(KEPHostShaderDocument::Create(library));
  KEPIRshShader* shader = nullptr;
  document->CreateShader("combo_node", "n", shader);
  shader->Release();
  auto layout = KEPQueryVar<KEPIRshParameterImmLayout>(document->FindNode("n")->Parameters()[0]);
  for (auto _ : state) {
    int index = -1;
    benchmark::DoNotOptimize(layout->GetEnumIndex(entries * 10, index));
    benchmark::DoNotOptimize(index);
  }
}

}  // namespace

BENCHMARK(EnumIndex)
    ->ArgNames({"width", "entries"})
    ->Args({4, 3})
    ->Args({65536, 3})
    ->Args({100000, 3})
    ->Args({4294967296LL, 3})
    ->Args({4294967296LL, 100});
BENCHMARK_MAIN();
