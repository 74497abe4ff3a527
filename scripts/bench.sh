#!/usr/bin/env bash
# Builds the release preset and runs every benchmark registered in bench/CMakeLists.txt.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release
while read -r name; do
  [ -n "$name" ] || continue
  echo "== $name"
  "build/release/bench/$name"
done < build/release/bench/benchmarks.txt
