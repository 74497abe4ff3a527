#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need; quiet and quick when all are there.
set -euo pipefail
packages=(
  cmake ninja-build g++ pkg-config
  qt6-base-dev libgl-dev
  qt6-multimedia-dev
  libliquid-dev libfftw3-dev libsimpleini-dev
  libx11-dev fonts-dejavu-core
  libgtest-dev libgmock-dev libbenchmark-dev
  python3-numpy python3-scipy
  python3-pandas
  qt6-httpserver-dev qt6-websockets-dev qt6-webengine-dev
  clang-14 libclang-rt-14-dev
  python3-opencv
  lua5.4  # benchmark only: the interpreter's reference
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
