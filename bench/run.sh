#!/bin/sh
# Builds zentaro-print, zentaro-preview and the benchmark tools in Release and
# prints the figures with their ratios against floors measured in the same run.
#   BUILD_DIR     build directory (default: build-bench/ at the repository root)
#   STARTUP_REPS  runs of each start-up command (default 50)
#   LARGE_REPS    runs of each large-request command (default 5)
#   BENCH_TMPDIR  where requests and outputs go (default /dev/shm, else $TMPDIR or /tmp)
set -eu

repo=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$repo/build-bench}
. "$repo/scripts/lib.sh"

cmake -S "$repo" -B "$build" -DCMAKE_BUILD_TYPE=Release -DZENTARO_TESTS=OFF \
    -DZENTARO_SANITIZE=OFF -DZENTARO_FUZZ=OFF >/dev/null
cmake --build "$build" --target bench_tools >/dev/null

# Requests and outputs live in memory when the machine has a tmpfs, so that
# the disk's write-back on closing the output file stays out of the figures.
tmp=${BENCH_TMPDIR:-/dev/shm}
[ -d "$tmp" ] && [ -w "$tmp" ] || tmp=${TMPDIR:-/tmp}
work=$(mktemp -d "$tmp/zentaro-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT INT TERM

small=20
short=5000
medium=50000
large=500000
for n in $small $short $medium $large; do
    "$build/bench/bench_generate" "$n" "$work/receipt-$n.xml"
done

# The same configuration with the receipt in one code page, for the receipt
# printer's command text and for a thermal printer, without and with a logo
# as wide as an 80 mm head.
for variant in text escpos escpos-logo; do
    mkdir -p "$work/$variant/.zentaro/conf"
    dialect=escpos logo=false
    [ "$variant" = text ] && dialect=command-text
    [ "$variant" = escpos-logo ] && logo=true
    settings="receiptdoc : { dialect = \"$dialect\"; codePage = \"CP858\"; printLogo = \"$logo\"; logo = \"$repo/bench/logo-576.png\"; };"
    sed "0,/{/s||{\n    $settings|" "$repo/examples/home/.zentaro/conf/zentaro.conf" \
        >"$work/$variant/.zentaro/conf/zentaro.conf"
done

"$build/bench/bench_runner" \
    --text-home "$work/text" --escpos-home "$work/escpos" --escpos-logo-home "$work/escpos-logo" \
    --bin "$build" --home "$repo/examples/home" --out "$work" \
    --small "$work/receipt-$small.xml" --small-items $small \
    --medium "$work/receipt-$medium.xml" --medium-items $medium \
    --large "$work/receipt-$large.xml" --large-items $large \
    --preview-short "$work/receipt-$short.xml" --preview-short-items $short \
    --startup-reps "${STARTUP_REPS:-50}" --large-reps "${LARGE_REPS:-5}"

"$build/bench/bench_send" "$build/tools/zentaro-send/zentaro-send" "$work" "${SEND_REPS:-30}"
