#!/usr/bin/env bash
# Runs clang-tidy (.clang-tidy, warnings are errors) over the module, the host and the
# application, with the compile commands of a configured build (default: build/release).
#   scripts/check-tidy.sh [BUILD_DIR]
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build/release}"
[ -f "$build/compile_commands.json" ] || { echo "no $build/compile_commands.json: configure first" >&2; exit 2; }
mapfile -t files < <(git ls-files 'RenderingShader/*.cpp' 'apps/*.cpp' | grep -v -E '/tests/')
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if printf '%s\0' "${files[@]}" | xargs -0 -P "$(nproc)" -n 4 clang-tidy -p "$build" --quiet \
    --extra-arg=-Wno-unknown-warning-option >"$log" 2>&1; then
  echo "clang-tidy: ${#files[@]} files clean."
else
  grep -E 'error:|warning:' "$log" | sort -u
  echo "clang-tidy found problems (above)." >&2
  exit 1
fi
