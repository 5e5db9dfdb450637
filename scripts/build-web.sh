#!/usr/bin/env bash
# Builds the browser front-end of `rshview serve` into apps/rshview/web/dist: installs its npm
# packages from the lock file (npm ci) when node_modules is missing or the lock changed since the
# last install, then runs its build. Called by scripts/rshview.sh serve and by scripts/test.sh.
set -euo pipefail
web="$(cd "$(dirname "$0")/../apps/rshview/web" && pwd)"
cd "$web"
if ! command -v npm >/dev/null 2>&1; then
  echo "build-web: npm is missing (install the Debian packages nodejs and npm: scripts/install-deps.sh)" >&2
  exit 1
fi
lock_sum="$(sha256sum package-lock.json | cut -d' ' -f1)"
stamp=node_modules/.rshview-lock.sha256
if [ ! -d node_modules ] || [ ! -f "$stamp" ] || [ "$(cat "$stamp")" != "$lock_sum" ]; then
  echo "build-web: npm ci" >&2
  npm ci --no-audit --no-fund --loglevel=error >&2
  echo "$lock_sum" > "$stamp"
fi
npm run --silent build >&2
