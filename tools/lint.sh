#!/usr/bin/env bash
# Checks the form of the sources: formatting and plain-text rules; with --tidy also clang-tidy on every source that
# changed, or a header of which changed, since it last passed.
set -uo pipefail
cd "$(dirname "$0")/.."

failures=0
check() {  # check <name> <output of the check: empty is good>
  if [ -z "$2" ]; then
    echo "OK    $1"
  else
    printf 'FAIL  %s\n%s\n' "$1" "$2"
    failures=$((failures + 1))
  fi
}

mapfile -t sources < <(git ls-files --cached --others --exclude-standard -- '*.cpp' '*.h')
mapfile -t texts < <(git ls-files --cached --others --exclude-standard -- '*.cpp' '*.h' '*.txt' '*.cmake' '*.sh' '*.py' '*.md' \
  '*.scr' '*.lin' '*.pat')

[ ${#sources[@]} -gt 0 ] || { echo "lint: this is no checkout: git names no sources" >&2 && exit 1; }

# A check whose tool is missing or breaks down is a failed check.
formatting() {
  clang-format-14 --dry-run --Werror "${sources[@]}" >"$1" 2>&1 && return
  grep -E 'error:' "$1" | cut -d: -f1 | sort -u | grep . || cat "$1"
}
output=$(mktemp)
trap 'rm -f "$output"' EXIT
check "formatting (clang-format 14)" "$(formatting "$output")"
check "no trailing blanks or tabs" "$(grep -nE '[[:blank:]]+$' -- "${texts[@]}" | head -n 20)"
check "line ends are LF" "$(grep -lU $'\r' -- "${texts[@]}" | head -n 20)"
check "scripts can be run" "$(for f in tools/*.sh .ci/run; do [ -x "$f" ] || echo "$f"; done)"

if [ "${1:-}" = "--tidy" ]; then
  passed=build/debug/tidy-passed
  mkdir -p "$passed"
  # clang-tidy is clang: it does not know all of GCC's options.
  sed -E 's/ -(fno-gnu-unique|Wno-restrict|fsanitize=[a-z,]*|fno-sanitize-recover=[a-z,]*)//g' \
    build/debug/compile_commands.json >"$passed/compile_commands.json"
  tidy() {
    local source=$1 key=$2
    [ -e "$passed/$key" ] && return 0
    if clang-tidy-14 -p "$passed" --quiet "$source" >"$passed/$key.out" 2>&1; then
      mv "$passed/$key.out" "$passed/$key"
    else
      grep -E 'error|warning:' "$passed/$key.out" || { echo "$source:" && cat "$passed/$key.out"; }
      rm -f "$passed/$key.out"
    fi
  }
  export -f tidy
  export passed
  # What only the build for Windows compiles, its compiler alone can check.
  keys=$(git ls-files --cached --others --exclude-standard -- 'Host/*.cpp' 'OrvLib/*.cpp' 'Projects/*.cpp' \
    'Programs/*.cpp' ':!*/windows/*' ':!*/plain/*' | tools/tidy-keys.py build/debug) || check "sums of what the checker reads" "tools/tidy-keys.py failed"
  check "clang-tidy 14" "$(xargs -P "$(nproc)" -L1 bash -c 'tidy "$@"' _ <<<"$keys" 2>&1)"
fi

[ "$failures" -eq 0 ]
