#!/bin/sh
# The same comparisons as run.sh, counted in instructions by callgrind
# instead of timed: the counts repeat exactly from run to run, whatever else
# the machine is doing, so they show small changes that wall time hides.
# Needs valgrind. Uses the build run.sh made (BUILD_DIR, default build-bench/).
set -eu

repo=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$repo/build-bench}
[ -x "$build/bench/bench_runner" ] || "$repo/bench/run.sh" >/dev/null
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT INT TERM

count() {
    valgrind --tool=callgrind --callgrind-out-file="$work/cg.out" "$@" 2>&1 >/dev/null \
        | sed -n 's/.*Collected : \([0-9]*\).*/\1/p'
}
ratio() {
    awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'
}

"$build/bench/bench_generate" 20 "$work/r20.xml"
"$build/bench/bench_generate" 20000 "$work/r20k.xml"
export HOME="$repo/examples/home"

start=$(count "$build/tools/zentaro-print/zentaro-print" "$work/r20.xml" "$work/out.txt")
qt=$(count "$build/bench/bench_qt_floor")
render=$(count "$build/tools/zentaro-print/zentaro-print" "$work/r20k.xml" "$work/out.txt")
expat=$(count "$build/bench/bench_expat_floor" "$work/r20k.xml")
stream=$(count "$build/bench/bench_parse_floor" "$work/r20k.xml")

echo "startup   receipt 20 items      $start instructions   Qt floor $qt   ratio $(ratio "$start" "$qt") (target <= 1.2)"
echo "render    receipt 20000 items   $render instructions   expat floor $expat   ratio $(ratio "$render" "$expat") (target <= 1.25)"
echo "          against the stream-reader floor $stream: ratio $(ratio "$render" "$stream") (target <= 0.6)"
