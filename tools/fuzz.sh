#!/usr/bin/env bash
# Fuzzes with clang's libFuzzer: installs what that needs, builds the targets (preset "fuzz"), and lets them take turns
# for a given time, the drawings most often. Sums of inputs and processor time are printed at the end.
#
#   tools/fuzz.sh [--seconds N] [--turn N] [--longest BYTES] [--into FOLDER] [--built] [TARGET...]
#                                           e.g. tools/fuzz.sh --seconds 3600 drawing; --built builds nothing; inputs
#                                           have 800 bytes at most: those reach 98 % of what 2,000 bytes reach, and
#                                           take a third of the time
#   tools/fuzz.sh --sums [--into FOLDER]    the sums so far, while it runs or later
#
# FOLDER (build/fuzzing) keeps what a later run goes on with: bin/ a copy of the programs, which building does not
# disturb; corpus/ what was found worth keeping; finds/ each input that broke something, with what was said of it;
# turns.tsv a line per turn. Inputs that broke something stop nothing: they are counted, and the target goes on.
set -euo pipefail

seconds=3600 turn=300 longest=800 into=build/fuzzing only_sums=no builds=yes
targets=()

usage() {
  sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//;p}' "$0" >&2
  exit 2
}

read_arguments() {
  while [ $# -gt 0 ]; do
    case $1 in
      --seconds | --turn | --longest | --into)
        [ $# -gt 1 ] || usage
        printf -v "${1#--}" %s "$2"
        shift
        ;;
      --sums) only_sums=yes ;;
      --built) builds=no ;;
      drawing | illustration | script | linetype | pattern | scheme) targets+=("$1") ;;
      *) usage ;;
    esac
    shift
  done
  # The more there is behind a target, the more turns it gets.
  [ ${#targets[@]} -gt 0 ] ||
    targets=(drawing illustration drawing script drawing illustration drawing pattern drawing illustration drawing
      script drawing linetype drawing illustration drawing scheme)
}

# Adds up turns.tsv: when, target, inputs, processor seconds, finds.
sums() {
  [ -s "$into/turns.tsv" ] || { echo "No turn has ended yet." && return; }
  awk -F'\t' '
    function row(name, n, s, f) {
      printf "%-14s %12d %10.2f %9d %6d\n", name, n, s / 3600, (s > 0 ? n / s : 0), f
    }
    { inputs[$2] += $3; time[$2] += $4; finds[$2] += $5; inputs["all"] += $3; time["all"] += $4; finds["all"] += $5 }
    END {
      printf "%-14s %12s %10s %9s %6s\n", "target", "inputs", "cpu hours", "a second", "finds"
      count = split("drawing illustration script pattern linetype scheme all", names, " ")
      for (i = 1; i <= count; ++i)
        if (names[i] in inputs) row(names[i], inputs[names[i]], time[names[i]], finds[names[i]])
    }' "$into/turns.tsv"
}

build() {
  [ "$builds" = yes ] || return 0
  tools/install-deps.sh clang libclang-rt-14-dev
  # The preset holds the compiler's options: a folder made from an older one is configured anew.
  [ build/fuzz/build.ninja -nt CMakePresets.json ] || cmake --preset fuzz >/dev/null
  local programs
  mapfile -t programs < <(printf 'fuzz_%s\n' "${targets[@]}" | sort -u)
  cmake --build build/fuzz --target "${programs[@]}"
}

prepare() {
  mkdir -p "$into/corpus" "$into/finds"
  into=$(cd "$into" && pwd)
  rm -rf "${into:?}/bin" "$into/seeds"
  cp -a build/fuzz/bin "$into/bin"
  cp -a Tests/fuzz/corpus "$into/seeds"
}

# seeds_of TARGET SEEDS: the folders of the first inputs, those of the corpus in the repository.
seeds_of() {
  case $1 in
    drawing) printf '%s\n' "$2/"{drawing,binary} ;;
    illustration) printf '%s\n' "$2/"{plan,drawing,binary} ;;
    *) printf '%s\n' "$2/$1" ;;
  esac
}

# Every turn begins with all of a target's inputs: what adds nothing to the others has no place among them. A corpus
# that has not doubled since the last time stays as it is. libFuzzer calls itself through a shell that splits paths at
# blanks, so it gets relative ones.
shrink_corpus() (
  cd "$into"
  old=corpus/$1 new=corpus/$1.small
  mkdir -p "$old"
  count=$(find "$old" -type f | wc -l)
  [ "$count" -gt $((2 * $(cat "$old.count" 2>/dev/null || echo 500))) ] || return 0
  mapfile -t seeds < <(seeds_of "$1" seeds)
  rm -rf "$new"
  mkdir "$new"
  "bin/fuzz_$1" -merge=1 -timeout=100 -rss_limit_mb=3000 -detect_leaks=0 -max_len="$longest" "$new" "${seeds[@]}" "$old" \
    </dev/null >"log-$1.small" 2>&1 || return 0
  left=$(find "$new" -type f | wc -l)
  [ "$left" -gt 0 ] || return 0
  echo "$left" >"$old.count"
  rm -rf "$old"
  mv "$new" "$old"
)

# one_process TARGET SECONDS: ends early when an input breaks something. Inputs are chosen without entropic weights, for
# reckoning these takes longer than such small inputs do.
one_process() {
  local target=$1 log=$into/log-$1 seeds status=0 found=0 kept
  mapfile -t seeds < <(seeds_of "$target" "$into/seeds")
  mkdir -p "$into/finds/$target"
  local TIMEFORMAT='%U %S'
  { time "$into/bin/fuzz_$target" -max_total_time="$2" -print_final_stats=1 -timeout=100 -rss_limit_mb=3000 \
    -entropic=0 -reload=0 -detect_leaks=0 -max_len="$longest" -artifact_prefix="$into/finds/$target/" \
    "$into/corpus/$target" "${seeds[@]}" \
    </dev/null >"$log" 2>&1 || status=$?; } 2>"$log.time"
  if [ "$status" -eq 126 ] || [ "$status" -eq 127 ]; then
    cat "$log" >&2
    echo "fuzz: $into/bin/fuzz_$target does not start" >&2
    exit 1
  fi
  if [ "$status" -ne 0 ]; then
    found=1
    kept=$(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)
    tail -n 200 "$log" >"${kept:-$into/finds/$target/status-$status-$(date +%s)}.log"
  fi
  local inputs
  inputs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  printf '%s\t%s\t%s\t%s\t%s\n' "$(date -u +%FT%TZ)" "$target" "${inputs:-0}" \
    "$(awk 'END { print $1 + $2 }' "$log.time")" "$found" >>"$into/turns.tsv"
}

take_turns() {
  local end=$((SECONDS + seconds)) turn_end target tries
  while :; do
    for target in "${targets[@]}"; do
      shrink_corpus "$target"
      turn_end=$((SECONDS + turn < end ? SECONDS + turn : end))
      for ((tries = 0; tries < 20 && SECONDS < turn_end; ++tries)); do
        one_process "$target" $((turn_end - SECONDS))
      done
      [ "$SECONDS" -lt "$end" ] || return 0
    done
  done
}

main() {
  read_arguments "$@"
  cd "$(dirname "$0")/.."
  if [ "$only_sums" = no ]; then
    build
    prepare
    export QT_QPA_PLATFORM=offscreen
    [ ! -w /dev/shm ] || export TMPDIR=/dev/shm  # plans under commands are files
    take_turns
  fi
  sums
}

main "$@"
exit  # the shell reads no further, should somebody edit this file meanwhile
