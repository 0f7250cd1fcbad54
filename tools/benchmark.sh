#!/usr/bin/env bash
# Builds the release benchmarks, makes the plans they need (kept under build/) and prints one table.
# Arguments: numbers of buildings; 1000 10000 100000 without any.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install-deps.sh
cmake --preset release -DTOLMEX_BUILD_BENCHMARKS=ON >/dev/null
cmake --build --preset release --target tolmex_benchmarks

mkdir -p build/plans
plans=()
for buildings in "${@:-1000 10000 100000}"; do
  for count in $buildings; do
    plan=build/plans/plan-$count.dxf
    # A plan older than its generator is made again; an interrupted one leaves no plan.
    if [ ! -f "$plan" ] || [ -n "$(find Benchmarks/generate Tests/data/dxf_writer.py -newer "$plan" -name '*.py')" ]; then
      python3 Benchmarks/generate/make_plan.py "$count" "$plan.part"
      mv "$plan.part" "$plan"
    fi
    plans+=("$plan")
  done
done
build/release/bin/tolmex_benchmarks "${plans[@]}"
