#!/usr/bin/env bash
# Installs what the build and the tests need and the machine lacks (Debian packages).
#   scripts/install-deps.sh            the C++ build and its tests
#   scripts/install-deps.sh --web      also Node.js and npm, which build the browser front-end
#   scripts/install-deps.sh --browser  also those and Chromium, for the browser tests
set -euo pipefail

packages=(cmake ninja-build g++ clang libclang-rt-dev clang-format clang-tidy googletest libgtest-dev
          libbenchmark-dev nlohmann-json3-dev libpng-dev libutfcpp-dev pkg-config libcpp-httplib-dev)
case "${1:-}" in
  --browser) packages+=(chromium) ;&
  --web)
    # A machine that has Node.js and npm from elsewhere keeps its own.
    command -v npm >/dev/null 2>&1 || packages+=(nodejs npm) ;;
esac
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  SUDO=""
  [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}"
else
  echo "All build dependencies are installed."
fi
