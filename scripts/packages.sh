#!/usr/bin/env bash
# packages.sh: the Debian packages that the project needs, and their installation where one is
# missing. Sourced by ./run, ./test and .ci/run.

# What a build and the tests need.
build_packages=(
  build-essential cmake ninja-build ccache pkg-config python3
  libcli11-dev libgtest-dev libgmock-dev
  qt6-base-dev libgl-dev libvulkan-dev libsdl2-dev libxcb1-dev libserialport-dev
  xvfb xauth xdotool imagemagick fonts-dejavu-core
)
# What the slower checks and the benchmarks need on top.
check_packages=(clang libclang-rt-14-dev libbenchmark-dev)

# Installs those of the named packages that are missing and says which.
install_missing() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
      missing+=("$package")
  done
  [ "${#missing[@]}" -eq 0 ] && return 0
  echo "Installing missing packages: ${missing[*]}"
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
      echo "Please install these packages as root, then start again: ${missing[*]}" >&2
      return 1
    }
    as_root=(sudo)
  fi
  "${as_root[@]}" apt-get update -qq || echo "The package lists could not be refreshed; trying with the old ones." >&2
  DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends \
    "${missing[@]}" >/dev/null || {
    echo "Installation failed. Install by hand: ${missing[*]}" >&2
    return 1
  }
}

# Configures (once) and builds a preset with as many jobs as there are cores.
build_preset() {
  local preset=$1
  shift
  [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >/dev/null || return 1
  cmake --build --preset "$preset" -j "$(nproc)" "$@"
}
