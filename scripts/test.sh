#!/usr/bin/env bash
# Builds the library and its tests with a preset (default: debug) and runs the whole suite.
#   scripts/test.sh [debug|release|asan|tsan] [ctest arguments...]
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-debug}"
shift || true
bash scripts/install-deps.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset" "$@"
