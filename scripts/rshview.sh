#!/usr/bin/env bash
# Builds rshview (optimised) when needed and runs it with the given arguments.
#   scripts/rshview.sh serve             the editors in a browser (prints the address to open)
#   scripts/rshview.sh dump              the editor of the bundled sample's first material
#   scripts/rshview.sh params            the bundled sample's parameters
#   scripts/rshview.sh material --node all
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
cd "$root"
deps=()
[ "${1:-}" = "serve" ] && deps=(--web)
if [ ! -x build/release/bin/rshview ] || [ -n "$(find RenderingShader apps/rshview/src apps/rshview/main.cpp samples -newer build/release/bin/rshview -name '*.[ch]*' -print -quit 2>/dev/null)" ]; then
  scripts/install-deps.sh "${deps[@]}" >&2
  cmake --preset release >/dev/null
  cmake --build --preset release --target rshview >&2
fi
# serve shows the browser front-end: build it when it is missing or older than its sources.
if [ "${1:-}" = "serve" ]; then
  command -v npm >/dev/null 2>&1 || scripts/install-deps.sh --web >&2
  scripts/build-web.sh >&2
fi
exec build/release/bin/rshview "$@"
