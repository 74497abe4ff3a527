#!/usr/bin/env bash
# Installs what is missing, builds the release preset and runs the example test script with dvrun.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release
if [ -f examples/main.dvs ]; then
  exec build/release/host/dvrun examples/main.dvs
fi
exec build/release/host/dvrun --list
