#!/usr/bin/env bash
# Builds and runs the whole test suite: a normal build, a build with
# AddressSanitizer + UndefinedBehaviorSanitizer, and short libFuzzer runs of
# the fuzz targets (clang).  The last thing printed is CTest's summary of the
# sanitizer build; the exit status is non-zero if anything failed.
#
# Environment: JOBS (parallel build jobs, default: number of cores),
# BUILD_ROOT (where build*/ go, default: the repository root),
# FUZZ_SECONDS (length of each fuzz smoke run, default 15).
set -euo pipefail

repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_root=${BUILD_ROOT:-$repo}
jobs=${JOBS:-$(nproc)}
fuzz_seconds=${FUZZ_SECONDS:-15}
ctest_jobs=${CTEST_PARALLEL_LEVEL:-2}
. "$repo/scripts/lib.sh"

"$repo/scripts/deps.sh" test

# Every sanitizer finding stops the process with a failure.
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

# configure_and_build DIR [cmake options...] [-- build options...]
configure_and_build() {
  local dir=$1; shift
  local opts=() build_opts=()
  while (($#)) && [[ $1 != -- ]]; do opts+=("$1"); shift; done
  (($#)) && shift
  build_opts=("$@")
  echo "==> configure and build $dir"
  cmake -S "$repo" -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo "${opts[@]}"
  cmake --build "$dir" -j "$jobs" "${build_opts[@]}"
}

failures=()

# The normal build is configured for the system's folders, as a package is,
# so that the package test runs there; nothing is installed outside the tests.
# A build directory the demo made has its tests switched off: switch them on.
configure_and_build "$build_root/build" -DZENTARO_TESTS=ON -DCMAKE_INSTALL_PREFIX=/usr
configure_and_build "$build_root/build-asan" -DZENTARO_TESTS=ON -DZENTARO_SANITIZE=ON
# The fuzz build instruments everything for libFuzzer, so only the fuzz
# targets are built there; the unit tests run in the two builds above.
CC=clang CXX=clang++ configure_and_build "$build_root/build-fuzz" -DZENTARO_FUZZ=ON \
  -- --target fuzz_targets zentaro-print

# fuzz_smoke TARGET SEED...: a short run from the seeds and the target's
# regression inputs (tests/fuzz/regressions/TARGET/, where it has any); a
# crash, leak, hang or sanitizer report fails it and leaves the input in
# build-fuzz/artifacts/.
fuzz_smoke() {
  local target=$1; shift
  local bin=$build_root/build-fuzz/tests/fuzz/$target
  local artifacts=$build_root/build-fuzz/artifacts
  local corpus log i=0 seed
  corpus=$(mktemp -d)
  log=$build_root/build-fuzz/$target-smoke.log
  mkdir -p "$artifacts"
  for seed in "$repo/tests/fuzz/regressions/$target"/* "$@"; do
    [[ -f $seed ]] || continue
    cp -- "$seed" "$corpus/seed-$((i++))-$(basename -- "$seed")"
  done
  echo "==> fuzz $target for ${fuzz_seconds}s ($i seeds)"
  if "$bin" -max_total_time="$fuzz_seconds" -timeout=10 -max_len=65536 \
      -artifact_prefix="$artifacts/$target-" "$corpus" >"$log" 2>&1; then
    grep -E '^Done [0-9]+ runs' "$log" || true
  else
    tail -n 60 "$log"
    echo "FAILED: fuzz $target (full log: $log, inputs: $artifacts/)"
    failures+=("fuzz $target")
  fi
  rm -rf -- "$corpus"
}

shopt -s nullglob
fuzz_smoke fuzz_config "$repo"/examples/home*/.zentaro/conf/zentaro.conf
fuzz_smoke fuzz_config_xml "$repo"/tests/config/data/*.xml
fuzz_smoke fuzz_print \
  "$repo"/examples/requests/*.xml "$repo"/tests/golden/cases/*/request.xml
fuzz_smoke fuzz_preview \
  "$repo"/examples/requests/*.xml "$repo"/tests/preview/golden/*/request.xml \
  "$repo"/tests/golden/cases/*/expected.txt
fuzz_smoke fuzz_catalogue "$build_root"/build-fuzz/translations/*.qm
shopt -u nullglob

# Inputs that once crashed a fuzz target are replayed by CTest in the fuzz
# build (the only tests built there).
echo "==> replay fuzz regressions"
ctest --test-dir "$build_root/build-fuzz" -R '^fuzz_.*_regressions$' --output-on-failure \
  || failures+=("fuzz regressions")

echo "==> unit tests, normal build"
ctest --test-dir "$build_root/build" --output-on-failure -j "$ctest_jobs" --timeout 600 \
  || failures+=("ctest build")

echo "==> unit tests, ASan/UBSan build"
ctest --test-dir "$build_root/build-asan" --output-on-failure -j "$ctest_jobs" --timeout 600 \
  || failures+=("ctest build-asan")

# Failures were reported where they happened; CTest's summary stays last.
((${#failures[@]} == 0))
