#!/usr/bin/env bash
# Fails when a C++ source differs from the project's .clang-format; lists the files.
#   scripts/check-format.sh         check
#   scripts/check-format.sh --fix   reformat them in place
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files '*.h' '*.cpp')
if [ "${1:-}" = "--fix" ]; then
  clang-format -i "${files[@]}"
  exit 0
fi
bad=()
for f in "${files[@]}"; do
  clang-format --dry-run -Werror "$f" >/dev/null 2>&1 || bad+=("$f")
done
if [ ${#bad[@]} -gt 0 ]; then
  echo "Not formatted with .clang-format (run scripts/check-format.sh --fix):"
  printf '  %s\n' "${bad[@]}"
  exit 1
fi
echo "Formatting: ${#files[@]} files follow .clang-format."
