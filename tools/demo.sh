#!/usr/bin/env bash
# Builds the program, illustrates the example plan, leaves the drawing and pictures of it in out/.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install-deps.sh
tools/install-dwg-reader.sh || echo "Going on without DWG drawings."
[ -f build/release/build.ninja ] || cmake --preset release -DTOLMEX_BUILD_TESTS=OFF -DTOLMEX_BUILD_BENCHMARKS=OFF >/dev/null
cmake --build --preset release --target tolmex

mkdir -p out
build/release/bin/tolmex run examples/kortteli.dxf --script examples/kortteli.scr --support examples --quiet \
  --out out/kortteli.dxf --picture out/kortteli.png --picture out/kortteli.svg --picture out/kortteli.pdf
build/release/bin/tolmex info out/kortteli.dxf
echo "The illustrated drawing is out/kortteli.dxf; pictures of it are out/kortteli.png, .svg and .pdf."
