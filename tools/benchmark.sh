#!/usr/bin/env bash
# Builds the release benchmarks, makes the plans they need (kept under build/) and prints one table of all steps.
# Arguments: numbers of buildings; 100 1000 10000 100000 without any. With --shadows first the table is one of shadow
# updates only, which judges growth, memory and the third update of a session; 100000 buildings want 3 GB of memory.
# With --canvas first the table is one of the window's canvas only, which judges every step.
# With --page first the table goes to docs/performance.md too.
# With --once first every step is measured once, which is quick and good enough to see a ratio that went astray.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install-deps.sh
cmake --preset release -DTOLMEX_BUILD_BENCHMARKS=ON >/dev/null
cmake --build --preset release --target tolmex_benchmarks

general=yes
canvas=no
tries=3
page=()
if [ "${1:-}" = --once ]; then
  tries=1
  shift
elif [ "${1:-}" = --page ]; then
  page=(--page docs/performance.md)
  shift
elif [ "${1:-}" = --shadows ]; then
  general=no
  tries=7  # what is judged must not depend on a busy moment
  shift
elif [ "${1:-}" = --canvas ]; then
  canvas=yes
  shift
fi
[ $# -gt 0 ] || set -- 100 1000 10000 100000

# make_plan FILE ARGUMENTS...: a plan older than its generator is made again; an interrupted one leaves no plan.
make_plan() {
  local plan=$1
  shift
  if [ ! -f "$plan" ] || [ -n "$(find Benchmarks/generate examples/dxf_writer.py -newer "$plan" -name '*.py')" ]; then
    python3 Benchmarks/generate/make_plan.py "$@" "$plan.part"
    mv "$plan.part" "$plan"
  fi
}

mkdir -p build/plans
plans=()
shadow_plans=()
for count in "$@"; do
  if [ "$general" = yes ]; then
    make_plan "build/plans/plan-$count.dxf" "$count"
    plans+=("build/plans/plan-$count.dxf")
  fi
  make_plan "build/plans/buildings-$count.dxf" --records "$count"
  shadow_plans+=("build/plans/buildings-$count.dxf")
done
if [ "$canvas" = yes ]; then
  exec build/release/bin/tolmex_benchmarks --tries "$tries" --canvas "${plans[@]}"
fi
build/release/bin/tolmex_benchmarks --tries "$tries" "${page[@]}" "${plans[@]}" --shadows "${shadow_plans[@]}"
