#!/usr/bin/env bash
# Builds everything with sanitizers, runs all tests, checks the sources' form.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install-deps.sh
tools/install-dwg-reader.sh || echo "Going on without DWG drawings."
[ -f build/debug/build.ninja ] || cmake --preset debug >/dev/null
cmake --build --preset debug
tools/lint.sh
ctest --preset debug -j "$(nproc)"
