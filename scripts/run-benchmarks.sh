#!/usr/bin/env bash
# Runs every benchmark executable of a build directory and prints its figures.
set -euo pipefail
build_dir=${1:-build/default}
found=0
for bench in "$build_dir"/bench/bench_*; do
  [[ -f $bench && -x $bench ]] || continue
  found=1
  echo "== $(basename "$bench")"
  "$bench"
done
[ "$found" -eq 1 ] || echo "no benchmarks built in $build_dir"
