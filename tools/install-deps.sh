#!/usr/bin/env bash
# Installs what building, testing and the demo need, from Debian's packages; packages named as arguments too. Quiet and
# quick when all is there.
set -euo pipefail

packages=(
  g++ cmake ninja-build ccache
  qt6-base-dev qt6-l10n-tools qt6-translations-l10n qt6-svg-dev qt6-image-formats-plugins libfreetype-dev libcli11-dev
  libharfbuzz-dev libfribidi-dev libfontconfig-dev
  libedit-dev nlohmann-json3-dev libjemalloc-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  clang-format-14 clang-tidy-14
  binutils-mingw-w64-x86-64 fonts-dejavu-core fonts-liberation
  python3 python3-ezdxf librecad-data
  "$@"
)

installed() { dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q 'install ok installed'; }

missing=()
for package in "${packages[@]}"; do
  installed "$package" || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    echo "install-deps: these packages are missing and only root can install them: ${missing[*]}" >&2
    exit 1
  fi
}

echo "Installing: ${missing[*]}"
as_root apt-get update -qq
as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
