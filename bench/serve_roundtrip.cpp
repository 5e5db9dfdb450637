// rshview serve over loopback: 1,000 slider moves, each an HTTP request whose event writes a
// parameter under the render lock and answers the writes and the changed widgets. Prints the
// round-trip time's median and 99th percentile (the target is a 99th percentile of 5 ms or less).
#include <httplib.h>
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <future>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "RshviewCommand.h"
#include "RshviewServe.h"

namespace {
namespace fs = std::filesystem;

double Percentile(std::vector<double> values, double fraction) {
  std::sort(values.begin(), values.end());
  const auto index = static_cast<std::size_t>(fraction * static_cast<double>(values.size() - 1));
  return values[index];
}
}  // namespace

int main(int argc, char** argv) {
  int moves = 1000;
  if (argc > 1) moves = std::max(1, std::atoi(argv[1]));
  // The server's working copy goes to a scratch folder.
  std::string pattern = (fs::temp_directory_path() / "rshview-benchXXXXXX").string();
  const fs::path scratch = mkdtemp(pattern.data());
  setenv("RSHVIEW_DATA", scratch.c_str(), 1);
  setenv("KEPRSH_PREFERENCES", (scratch / "preferences.json").c_str(), 1);

  RshviewServeControl control;
  std::promise<int> ready;
  control.ready = [&ready](int port) { ready.set_value(port); };
  RshviewSetServeControl(&control);
  std::ostringstream out, err;
  int code = -1;
  std::thread server([&] { code = RshviewMain({"serve", "--port", "0"}, out, err); });
  auto port = ready.get_future();
  if (port.wait_for(std::chrono::seconds(60)) != std::future_status::ready) {
    std::fprintf(stderr, "the server did not start\n");
    control.stop = true;
    server.join();
    std::fprintf(stderr, "%s", err.str().c_str());
    return 1;
  }
  httplib::Client client("127.0.0.1", port.get());
  client.set_keep_alive(true);
  client.set_tcp_nodelay(true);
  const char* const slider = "ParameterGroup0/ParameterWidget3/scalarSlider";
  client.Get("/api/nodes/red_paint/editor");  // builds the editor, as a page's first fetch does

  std::vector<double> times;
  times.reserve(static_cast<std::size_t>(moves));
  int failures = 0;
  std::size_t answered = 0;
  for (int i = 0; i < moves; ++i) {
    const std::string body = std::string(R"({"action": "set", "path": ")") + slider +
                             R"(", "argument": ")" + std::to_string(10 + i % 80) + "\"}";
    const auto start = std::chrono::steady_clock::now();
    auto result = client.Post("/api/nodes/red_paint/events", {{"X-Rshview-Client", "bench"}}, body,
                              "application/json");
    const auto stop = std::chrono::steady_clock::now();
    if (!result || result->status != 200) {
      ++failures;
      continue;
    }
    answered += result->body.size();
    times.push_back(std::chrono::duration<double, std::milli>(stop - start).count());
  }
  // The same number of requests that do nothing: the HTTP and thread hand-over share of the time.
  std::vector<double> base;
  for (int i = 0; i < moves; ++i) {
    const auto start = std::chrono::steady_clock::now();
    auto result = client.Get("/api/units");
    const auto stop = std::chrono::steady_clock::now();
    if (result && result->status == 200)
      base.push_back(std::chrono::duration<double, std::milli>(stop - start).count());
  }
  control.stop = true;
  server.join();
  RshviewSetServeControl(nullptr);
  std::error_code ignored;
  fs::remove_all(scratch, ignored);
  if (times.empty()) {
    std::fprintf(stderr, "no request succeeded\n%s", err.str().c_str());
    return 1;
  }
  std::printf("serve_roundtrip: %zu slider moves over loopback, %d failed, %zu bytes answered\n",
              times.size(), failures, answered);
  std::printf("  p50 %.3f ms   p99 %.3f ms   max %.3f ms   (target p99 <= 5 ms)\n",
              Percentile(times, 0.50), Percentile(times, 0.99),
              *std::max_element(times.begin(), times.end()));
  if (!base.empty())
    std::printf("  (GET /api/units, for the transport alone: p50 %.3f ms   p99 %.3f ms)\n",
                Percentile(base, 0.50), Percentile(base, 0.99));
  return failures == 0 && code == 0 ? 0 : 1;
}
