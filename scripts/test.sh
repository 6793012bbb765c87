#!/usr/bin/env bash
# Builds and runs every test:
#   1. a GCC build (benchmarks compiled too) and its tests, against SQLite and against a
#      throwaway PostgreSQL cluster on 127.0.0.1; a host built against the installed package;
#      the run command of the README (release build, main job on a fresh demo database);
#   2. a clang build under AddressSanitizer + UndefinedBehaviorSanitizer, the same tests, and
#      each libFuzzer target for FUZZ_SECONDS (default 60) seconds.
# Stops at the first failing step; the cluster is stopped and removed on every exit.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
jobs=$(nproc)
fuzz_seconds=${FUZZ_SECONDS:-60}
export QT_QPA_PLATFORM=offscreen

pg_dir=""
cleanup() {
  if [ -n "$pg_dir" ]; then bash scripts/pg.sh stop "$pg_dir" >/dev/null 2>&1 || true; fi
}
trap cleanup EXIT

echo "== PostgreSQL: throwaway cluster"
{ read -r KMF_TEST_PG; read -r pg_dir; } < <(bash scripts/pg.sh start)
export KMF_TEST_PG
echo "   $KMF_TEST_PG"

echo "== GCC build"
cmake -S . -B build/gcc -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=g++ \
  -DCMAKE_C_COMPILER=gcc -DKMF_BUILD_BENCH=ON >/dev/null
cmake --build build/gcc -j "$jobs"
ctest --test-dir build/gcc --output-on-failure -j "$jobs"

echo "== installed package: a host links the shared and the static library"
rm -rf build/package-prefix build/package-host
cmake --install build/gcc --prefix build/package-prefix >/dev/null
cmake -S tests/package -B build/package-host -G Ninja \
  -DCMAKE_PREFIX_PATH="$PWD/build/package-prefix" >/dev/null
cmake --build build/package-host
LD_LIBRARY_PATH="$PWD/build/package-prefix/lib" build/package-host/host_shared
build/package-host/host_static

echo "== the run command: release build of movfrec and the main job on a fresh demo database"
run_dir=$(mktemp -d)
MOVFREC_DB="sqlite:$run_dir/movfrec.db" bash scripts/run.sh
rm -rf "$run_dir"

echo "== clang build with AddressSanitizer + UndefinedBehaviorSanitizer (and fuzz targets)"
cmake -S . -B build/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ \
  -DCMAKE_C_COMPILER=clang -DKMF_SANITIZE=ON -DKMF_BUILD_FUZZ=ON >/dev/null
cmake --build build/asan -j "$jobs"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
ctest --test-dir build/asan --output-on-failure -j "$jobs"

echo "== fuzzing, ${fuzz_seconds} s per target"
for target in build/asan/fuzz/fuzz_*; do
  [ -x "$target" ] || continue
  name=$(basename "$target")
  name=${name#fuzz_}
  work=$(mktemp -d)
  [ -d "fuzz/corpus/$name" ] && cp -r "fuzz/corpus/$name/." "$work/"
  dict=()
  [ -f "fuzz/$name.dict" ] && dict=(-dict="fuzz/$name.dict")
  echo "-- $name"
  status=0
  "$target" "${dict[@]}" -max_total_time="$fuzz_seconds" -print_final_stats=1 \
    -artifact_prefix="$work/" "$work" >"$work.log" 2>&1 || status=$?
  grep -E '^(#[0-9]+ +DONE|stat::number_of_executed_units|stat::new_units_added|==[0-9]+==ERROR|SUMMARY)' \
    "$work.log" || true
  corpus=$(find "$work" -maxdepth 1 -type f ! -name 'crash-*' ! -name 'leak-*' ! -name 'timeout-*' | wc -l)
  echo "   corpus: $corpus inputs"
  if [ "$status" -ne 0 ]; then
    tail -n 60 "$work.log" >&2
    echo "fuzz target $name failed (exit $status); artifacts in $work" >&2
    exit 1
  fi
  rm -rf "$work" "$work.log"
done
echo "== all tests passed"
