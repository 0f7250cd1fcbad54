#!/usr/bin/env bash
# Builds everything with sanitizers, runs all tests, checks the sources' form. `tools/test.sh release` does the same with
# the optimised build that users get, which has no sanitizers.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-debug}
# Windows' headers, which the plug-in is checked against, and what import and sun are built with.
tools/install-deps.sh g++-mingw-w64-x86-64-posix libgdal-dev libproj-dev libnova-dev tzdata
tools/install-dwg-reader.sh || echo "Going on without DWG drawings."
cmake --preset "$preset" -DTOLMEX_BUILD_TESTS=ON -DTOLMEX_BUILD_BENCHMARKS=ON >/dev/null
cmake --build --preset "$preset"
[ "$preset" = release ] || tools/lint.sh
results=$PWD/build/$preset/tests.xml
rm -f "$results"
status=0
ctest --preset "$preset" -j "$(nproc)" --output-junit "$results" || status=$?
tools/check-skips.py "$results" || status=1
exit "$status"
