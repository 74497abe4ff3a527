#!/usr/bin/env bash
# Runs every test: unit and dialog tests (offscreen) in the debug build, then all of them again
# under AddressSanitizer and UndefinedBehaviorSanitizer, then every fuzz corpus file through its
# libFuzzer target.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
export QT_QPA_PLATFORM=offscreen
for preset in debug asan; do
  echo "== $preset"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
  ctest --preset "$preset" -j 2
done
echo "== fuzz corpus"
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
bash scripts/fuzz.sh --replay
