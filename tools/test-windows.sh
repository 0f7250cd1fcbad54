#!/usr/bin/env bash
# Builds the program for Windows and compares it under wine with the program for Linux, which must have been built
# (build/release or build/debug). With the window only where tools/windows.sh has built Qt before: that takes an hour.
# Arguments: --linux PROGRAM; the rest goes to tools/compare-windows.py (--drawings DIR, --buildings N).
# Exit status 3 where wine, the compiler or the sources of libraries cannot be had or wine does not start, 1 when the
# comparison fails.
set -euo pipefail
cd "$(dirname "$0")/.."

linux=
if [[ ${1:-} == --linux ]]; then
  linux=$2
  shift 2
fi
for build in release debug; do
  [[ -n $linux || ! -x build/$build/bin/tolmex ]] || linux=build/$build/bin/tolmex
done
[[ -n $linux ]] || { echo "test-windows: build the program for Linux first: tools/test.sh" >&2; exit 2; }

if ! tools/install-deps.sh g++-mingw-w64-x86-64-posix wine64 wine googletest dpkg-dev xz-utils; then
  echo "test-windows: wine and the compiler for Windows cannot be had here" >&2
  exit 3
fi
out=build/windows-plain
options=(--no-window)
compare=()
if [[ -e build/windows-qt/installed/.built ]]; then
  out=build/windows
  options=()
  compare=(--pictures)
fi
tools/windows.sh "${options[@]}" --no-package all windows_tests

# A prefix of our own, without boxes about what wine would like to install.
export WINEPREFIX=$PWD/build/wine WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=' QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8
unset DISPLAY WAYLAND_DISPLAY
wine=$(command -v wine64 || ls /usr/lib/wine/wine64)
export WINELOADER=$wine
if [[ ! -e $WINEPREFIX/system.reg ]]; then
  timeout 300 "$wine" wineboot --init > /dev/null 2>&1 || true
  timeout 60 "$wine" reg add 'HKCU\Software\Wine' /v Version /d win10 /f > /dev/null 2>&1 || true
fi
if ! timeout 120 "$wine" cmd /c exit 0 > /dev/null 2>&1; then
  echo "test-windows: wine does not start here" >&2
  exit 3
fi
# One server for all runs: each start of it takes a second.
server=$(command -v wineserver || ls /usr/lib/wine/wineserver64 /usr/lib/wine/wineserver 2> /dev/null | head -1)
"$server" -p60 || true
trap '"$server" -k || true' EXIT

status=0
for test in "$out"/bin/test_*.exe; do
  echo "$(basename "$test" .exe):"
  timeout 600 "$wine" "$test" --gtest_brief=1 || status=1
done
/usr/bin/python3 tools/compare-windows.py "$linux" "$out/bin/tolmex.exe" build/windows-compared "${compare[@]}" "$@" || status=1
[[ $status == 0 ]] || echo "test-windows: the program for Windows fails its tests or differs from the one for Linux" >&2
exit "$status"
