#!/usr/bin/env bash
# Fails when a C++ file of the repository differs from what clang-format makes of it with the
# repository's .clang-format. Fix with: git ls-files '*.h' '*.cpp' | xargs clang-format -i
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files -z '*.h' '*.cpp' | xargs -0 clang-format --dry-run -Werror
