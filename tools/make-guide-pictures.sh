#!/usr/bin/env bash
# Makes the pictures of docs/kayttoohje.md anew by running everything the guide tells the reader to run. Fails when a step
# fails or the guide and the program disagree.
#
#   tools/make-guide-pictures.sh [PROGRAM] [--check]
#
# PROGRAM is the built program; without it the release build is used, and made when there is none. --check changes nothing.
set -euo pipefail
cd "$(dirname "$0")/.."

program=build/release/bin/tolmex
mode=()
for argument in "$@"; do
  case "$argument" in
    --check) mode=(--check) ;;
    -*)
      echo "usage: tools/make-guide-pictures.sh [PROGRAM] [--check]" >&2
      exit 1
      ;;
    *) program=$argument ;;
  esac
done

if [ ! -x "$program" ]; then
  [ "$program" = build/release/bin/tolmex ] || { echo "make-guide-pictures: $program is no program" >&2 && exit 1; }
  tools/install-deps.sh
  [ -f build/release/build.ninja ] || cmake --preset release -DTOLMEX_BUILD_TESTS=OFF -DTOLMEX_BUILD_BENCHMARKS=OFF >/dev/null
  cmake --build --preset release --target tolmex
fi
exec python3 docs/guide/run-guide.py "$program" "${mode[@]}"
