#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test: in the optimised build (warnings are
# errors) and in the address+undefined sanitizer build.
#   scripts/test.sh            both builds
#   scripts/test.sh release    only one of them (release | asan | debug)
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh

presets=("${@:-release asan}")
# shellcheck disable=SC2206
presets=(${presets[*]})
jobs=$(nproc 2>/dev/null || echo 2)
for preset in "${presets[@]}"; do
  echo "=== ${preset}: configure"
  cmake --preset "$preset" -DKEPRSH_WERROR=ON >/dev/null
  echo "=== ${preset}: build"
  cmake --build --preset "$preset" -j "$jobs"
  echo "=== ${preset}: test"
  ctest --preset "$preset" -j "$jobs"
done
echo "All tests passed (${presets[*]})."
