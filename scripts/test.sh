#!/usr/bin/env bash
# Builds the library, its tests, tool and benchmarks with a preset (default: release, what users
# ship) and runs the whole suite.
#   scripts/test.sh [release|debug|asan|tsan] [ctest arguments...]
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-release}"
shift || true
bash scripts/install-deps.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset" "$@"
