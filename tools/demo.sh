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
  --out out/kortteli.dxf --picture out/kortteli.png --picture out/kortteli.svg
build/release/bin/tolmex picture out/kortteli.dxf out/kortteli.pdf --sheet A3-kaava --scale 1:500 \
  --field "OTSIKKO=Kortteli 12, Koivukatu 4–8" --field "KOHDE=Kortteli 12, tontit 1–3" --field "OSOITE=Koivukatu 4–8" \
  --field "SISALTO=Asuinkortteli ja lähikauppa" --field KOORDINAATISTO=ETRS-GK25 --field KORKEUS=N2000
build/release/bin/tolmex info out/kortteli.dxf
echo "The illustrated drawing is out/kortteli.dxf; pictures of it are out/kortteli.png and .svg, its A3 sheet at 1:500 is out/kortteli.pdf."
