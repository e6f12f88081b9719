#!/usr/bin/env bash
# Builds the fuzz target over the JSON readers with clang and libFuzzer (tests/fuzz, a build of its
# own in build/fuzz) and runs it for a bounded time, from the seed corpus in tests/fuzz/corpus.
# New inputs it finds stay in build/fuzz/corpus; a failing input is written to build/fuzz/ and
# fails the script.
#   scripts/run-fuzz.sh [SECONDS]    (default 60)
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
build=build/fuzz
cmake -S tests/fuzz -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=clang++ \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build"
mkdir -p "$build/corpus"
"$build/fuzz_json_readers" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
  -artifact_prefix="$build/" -print_final_stats=1 "$build/corpus" tests/fuzz/corpus
