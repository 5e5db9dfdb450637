// The black-body colour as a colour-temperature slider asks for it: one colour per pixel column of
// a 512 x 24 background from 1,000 K to 40,000 K, each copied down its column as bytes. The first
// call builds the colour table; the benchmark measures the gradients after it.
#include <benchmark/benchmark.h>

#include <vector>

#include "KEPBlackbodyColor.h"

namespace {

void BM_Gradient(benchmark::State& state) {
  const int width = static_cast<int>(state.range(0));
  const int height = 24;
  const double tmin = 1000.0;
  const double tmax = 40000.0;
  std::vector<unsigned char> pixels(static_cast<std::size_t>(width * height * 3));
  float r = 0, g = 0, b = 0;
  BlackbodyColor(6500.0f, &r, &g, &b);  // the table, made once per process
  for (auto _ : state) {
    for (int i = 0; i < width; ++i) {
      const double t = tmin + (static_cast<double>(i) / width) * (tmax - tmin);
      BlackbodyColor(static_cast<float>(t), &r, &g, &b);
      const auto rb = static_cast<unsigned char>(r * 255.0f);
      const auto gb = static_cast<unsigned char>(g * 255.0f);
      const auto bb = static_cast<unsigned char>(b * 255.0f);
      for (int j = 0; j < height; ++j) {
        unsigned char* p = &pixels[static_cast<std::size_t>((j * width + i) * 3)];
        p[0] = rb;
        p[1] = gb;
        p[2] = bb;
      }
    }
    benchmark::DoNotOptimize(pixels.data());
  }
}
BENCHMARK(BM_Gradient)->Arg(512)->Unit(benchmark::kMicrosecond);

void BM_FirstUseTable(benchmark::State& state) {
  // What one full computation costs (temperatures below the table are computed in full).
  float r = 0, g = 0, b = 0;
  for (auto _ : state) {
    BlackbodyColor(450.0f, &r, &g, &b);
    benchmark::DoNotOptimize(r);
  }
}
BENCHMARK(BM_FirstUseTable)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
