#!/usr/bin/env bash
# clang-tidy over every source of the program; takes a build folder configured with clang.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
git ls-files 'model/*.cpp' 'viewer/*.cpp' 'components/*.cpp' |
  xargs -P "$(nproc)" -n 4 clang-tidy -p "${1:?build folder}" --quiet
