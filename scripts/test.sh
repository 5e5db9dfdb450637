#!/usr/bin/env bash
# Installs what is missing, checks formatting, builds and runs every test: in the optimised GCC
# build and in the Clang build with the address and undefined-behaviour sanitizers, warnings
# being errors in both; then clang-tidy over the sources, and each fuzz target for a short while
# ($KEPRSH_FUZZ_SECONDS, default 20 s; any crash, leak or sanitizer report fails). After the
# optimised build, the browser tests of `rshview serve` run in Chromium (KEPRSH_BROWSER_TESTS=0
# leaves them out).
#   scripts/test.sh                both builds and every check
#   scripts/test.sh release        only one build (release | asan | clang | debug | fuzz), no tidy
set -euo pipefail
cd "$(dirname "$0")/.."

browser_tests=${KEPRSH_BROWSER_TESTS:-1}
if [ "$browser_tests" != 0 ]; then
  scripts/install-deps.sh --browser
else
  scripts/install-deps.sh
fi
scripts/check-format.sh

presets=("$@")
full=0
if [ ${#presets[@]} -eq 0 ]; then
  presets=(release asan)
  full=1
fi
jobs=$(nproc 2>/dev/null || echo 2)
# Wall-clock and CPU seconds of each phase, so a slow phase shows in the CI log.
phase_start=$SECONDS
phase_times=$(mktemp)
trap 'rm -f "$phase_times"' EXIT
# `times` must run in this shell: in a command substitution it would report that subshell's.
children_cpu() {
  awk 'NR==2 { split($1, u, "m"); split($2, s, "m"); printf "%d", u[1] * 60 + u[2] + s[1] * 60 + s[2] }' "$phase_times"
}
times >"$phase_times"
phase_cpu_start=$(children_cpu)
phase_done() {
  local cpu
  times >"$phase_times"
  cpu=$(children_cpu)
  echo "--- $1: $((SECONDS - phase_start)) s wall, $((cpu - phase_cpu_start)) s CPU"
  phase_start=$SECONDS
  phase_cpu_start=$cpu
}
fuzz_seconds=${KEPRSH_FUZZ_SECONDS:-20}
for preset in "${presets[@]}"; do
  if [ "$preset" = fuzz ]; then
    KEPRSH_WERROR=ON scripts/fuzz.sh "$fuzz_seconds"
    phase_done "fuzz"
    continue
  fi
  echo "=== ${preset}: configure"
  cmake --preset "$preset" -DKEPRSH_WERROR=ON >/dev/null
  echo "=== ${preset}: build"
  cmake --build --preset "$preset" -j "$jobs"
  phase_done "${preset} build"
  echo "=== ${preset}: test"
  ctest --preset "$preset" -j "$jobs"
  phase_done "${preset} test"
  if [ "$preset" = release ] && [ "$browser_tests" != 0 ]; then
    echo "=== ${preset}: browser tests"
    scripts/build-web.sh
    (cd apps/rshview/web && RSHVIEW_BIN="$PWD/../../../build/release/bin/rshview" npm test)
    phase_done "browser tests"
  fi
done
if [ "$full" = 1 ]; then
  echo "=== clang-tidy"
  scripts/check-tidy.sh build/release
  phase_done "clang-tidy"
  # The sanitizer build has the fuzz targets already.
  KEPRSH_FUZZ_PRESET=asan KEPRSH_WERROR=ON scripts/fuzz.sh "$fuzz_seconds"
  phase_done "fuzz"
fi
echo "All tests passed (${presets[*]})."
