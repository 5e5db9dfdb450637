#!/usr/bin/env bash
# Installs what is missing, checks formatting, builds and runs every test: in the optimised GCC
# build and in the Clang build with the address and undefined-behaviour sanitizers, warnings
# being errors in both; then clang-tidy over the sources, and each fuzz target for a short while
# ($KEPRSH_FUZZ_SECONDS, default 20 s; any crash, leak or sanitizer report fails).
#   scripts/test.sh                both builds and every check
#   scripts/test.sh release        only one build (release | asan | clang | debug | fuzz), no tidy
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
scripts/check-format.sh

presets=("$@")
full=0
if [ ${#presets[@]} -eq 0 ]; then
  presets=(release asan)
  full=1
fi
jobs=$(nproc 2>/dev/null || echo 2)
fuzz_seconds=${KEPRSH_FUZZ_SECONDS:-20}
for preset in "${presets[@]}"; do
  if [ "$preset" = fuzz ]; then
    KEPRSH_WERROR=ON scripts/fuzz.sh "$fuzz_seconds"
    continue
  fi
  echo "=== ${preset}: configure"
  cmake --preset "$preset" -DKEPRSH_WERROR=ON >/dev/null
  echo "=== ${preset}: build"
  cmake --build --preset "$preset" -j "$jobs"
  echo "=== ${preset}: test"
  ctest --preset "$preset" -j "$jobs"
done
if [ "$full" = 1 ]; then
  echo "=== clang-tidy"
  scripts/check-tidy.sh build/release
  KEPRSH_WERROR=ON scripts/fuzz.sh "$fuzz_seconds"
fi
echo "All tests passed (${presets[*]})."
