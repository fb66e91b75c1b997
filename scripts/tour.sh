#!/usr/bin/env bash
# Builds the vn tool (release preset) and runs its tour.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake --preset release -DVN_BUILD_TESTS=OFF -DVN_BUILD_BENCHMARKS=OFF >/dev/null
cmake --build --preset release --target vn
./build/release/tools/vn/vn tour
