#!/usr/bin/env bash
# Installs what a fresh Debian 12 machine lacks to build, test and run Orvane. Idempotent:
# it asks apt only for packages that are not installed yet.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config python3
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  clang libclang-rt-14-dev
  libgl-dev libopengl-dev libegl-dev libgl1-mesa-dri libegl-mesa0 libglu1-mesa-dev khronos-api
  libfreetype-dev libfontconfig-dev fonts-dejavu-core
  libpugixml-dev libcli11-dev nlohmann-json3-dev libpng-dev libtinygltf-dev libmeshoptimizer-dev
  libocct-data-exchange-dev libocct-modeling-algorithms-dev libocct-modeling-data-dev
  libocct-foundation-dev
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  sudo_cmd=()
  [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
