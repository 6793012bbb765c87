#!/usr/bin/env bash
# Builds and runs every test:
#   1. a GCC build (benchmarks compiled too) and its tests, against SQLite and against a
#      throwaway PostgreSQL cluster on 127.0.0.1; a host built against the installed package;
#      the run command of the README (release build, main job on a fresh demo database) and a
#      check of what the main job writes;
#   2. a clang build under AddressSanitizer + UndefinedBehaviorSanitizer, the same tests, and
#      each libFuzzer target (one per fuzz/*.cpp) for FUZZ_SECONDS (default 60) seconds.
# A run that finds no tests, skips a test or misses a fuzz target fails. Stops at the first
# failing step; the cluster is stopped and removed on every exit.
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

# The tests of one build, in two passes: the cases outside the postgres label with KMF_TEST_PG
# unset, then the postgres label with it. A skipped case fails the run: in the first pass it is
# a case that needs the server but is not labelled so, in the second a PostgreSQL case that
# did not run. Neither pass may be empty.
run_tests() {
  local dir=$1 report
  report="$PWD/$dir/junit.xml"
  env -u KMF_TEST_PG ctest --test-dir "$dir" --output-on-failure --no-tests=error -j "$jobs" \
    -LE postgres --output-junit "$report"
  no_skipped_tests "$report" "outside the postgres label (run without KMF_TEST_PG)"
  ctest --test-dir "$dir" --output-on-failure --no-tests=error -j "$jobs" -L postgres \
    --output-junit "$report"
  no_skipped_tests "$report" "of the postgres label"
}

no_skipped_tests() {
  local skipped
  skipped=$(sed -n 's/.*<testcase name="\([^"]*\)".*status="notrun".*/\1/p' "$1")
  if [ -n "$skipped" ]; then
    echo "tests $2 that did not run:" >&2
    echo "$skipped" >&2
    exit 1
  fi
}

# What `movfrec ejecutar` writes, read from the SQLite file with the sqlite3 shell (its text
# output is not relied on): a fresh demo company run up to 31/12/2026. Due by then, worked out
# from schema/demo.sql: movement 1 on 10/11 and 10/12; group 25 + 26 on 10/11 and 10/12 (on
# 10/12, 25 leaves nothing because account 114 was paid on 10/11, while 26, the bank fee, reads
# the transfer of 25 that the same run posted minutes before); 3 on 20/11 and 20/12 (its last);
# 4 on 30/11 (the dollar rate is the same on 30/12: nothing); voucher 6 on 01/12. So 8 entries
# and 1 voucher, each balanced, no entry or voucher left due, and a second run writes nothing.
check_main_job() {
  local db=$1 mf=build/release/cli/movfrec
  local entries="Select AsiID From cceAsientos Where AsiMovFrecuente > 0"
  local vouchers="Select ComID From cceComprobantes Where ComMovFrecuente > 0"
  q() { sqlite3 -batch -noheader "$db" "$1"; }
  expect() {
    if [ "$2" != "$3" ]; then
      echo "main job: $1: expected $3, found $2" >&2
      exit 1
    fi
  }
  run_main_job() {
    local status=0
    "$mf" --db "sqlite:$db" --hoy 2026-12-31 ejecutar --hasta 2026-12-31 >/dev/null || status=$?
    expect "exit status of ejecutar" "$status" 0
  }
  "$mf" --db "sqlite:$db" init --demo >/dev/null
  local entries0 vouchers0
  entries0=$(q "Select Count(*) From ($entries)")
  vouchers0=$(q "Select Count(*) From ($vouchers)")
  run_main_job
  # Worked out from demo.sql: November's rent, social charges with their bank fee, VAT and
  # exchange difference; December's rent and VAT (December's social charges and their fee are
  # 0); the accountants' fees voucher.
  expect "entries written" $(($(q "Select Count(*) From ($entries)") - entries0)) 7
  expect "vouchers written" $(($(q "Select Count(*) From ($vouchers)") - vouchers0)) 1
  expect "documents without two lines or not balanced" "$(q "
    Select (Select Count(*) From ($entries) Where AsiID Not In (Select ACuIDAsiento
              From cceAsientoCuenta Group By ACuIDAsiento Having Count(*) >= 2
              And Abs(Sum(ACuDebe) - Sum(ACuHaber)) < 0.005))
         + (Select Count(*) From ($vouchers) Where ComID Not In (Select CCuIDComprobante
              From cceComprobanteCuenta Group By CCuIDComprobante Having Count(*) >= 2
              And Abs(Sum(CCuDebe) - Sum(CCuHaber)) < 0.005))")" 0
  expect "entries and vouchers still due" "$(q "
    Select Count(*) From genMovimientosFrecuentes, genRecurrencias
    Where MFrRecurrencia = RecID And MFrEstado = 0 And MFrTipo In (1, 2, 4)
    And MFrEmpresa = 1 And RecFechaProxima < '2027-01-01'")" 0
  local before
  before=$(sqlite3 "$db" .dump | md5sum)
  run_main_job
  expect "database after a second run" "$(sqlite3 "$db" .dump | md5sum)" "$before"
  echo "   7 entries and 1 voucher, balanced; a second run wrote nothing"
}

echo "== PostgreSQL: throwaway cluster"
{ read -r KMF_TEST_PG; read -r pg_dir; } < <(bash scripts/pg.sh start)
export KMF_TEST_PG
echo "   $KMF_TEST_PG"

echo "== GCC build"
cmake -S . -B build/gcc -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=g++ \
  -DCMAKE_C_COMPILER=gcc -DKMF_BUILD_TESTS=ON -DKMF_BUILD_BENCH=ON >/dev/null
cmake --build build/gcc -j "$jobs"
run_tests build/gcc

echo "== installed package: a host links the shared and the static library and runs the main job"
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
echo "== the main job's result, read from the database"
check_main_job "$run_dir/check.db"
rm -rf "$run_dir"

echo "== clang build with AddressSanitizer + UndefinedBehaviorSanitizer (and fuzz targets)"
cmake -S . -B build/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ \
  -DCMAKE_C_COMPILER=clang -DKMF_BUILD_TESTS=ON -DKMF_SANITIZE=ON -DKMF_BUILD_FUZZ=ON >/dev/null
cmake --build build/asan -j "$jobs"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
run_tests build/asan

echo "== fuzzing, ${fuzz_seconds} s per target"
# One target per fuzz/*.cpp; each must have been built.
fuzz_names=()
for src in fuzz/*.cpp; do
  [ -e "$src" ] || continue
  name=$(basename "$src" .cpp)
  if [ ! -x "build/asan/fuzz/fuzz_$name" ]; then
    echo "fuzz target fuzz_$name (from $src) was not built" >&2
    exit 1
  fi
  fuzz_names+=("$name")
done
if ((${#fuzz_names[@]} == 0)); then
  echo "no fuzz targets in fuzz/" >&2
  exit 1
fi
for name in "${fuzz_names[@]}"; do
  target="build/asan/fuzz/fuzz_$name"
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
