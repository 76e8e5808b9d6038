#!/usr/bin/env bash
# Builds the program and renders every example request in examples/requests/
# with the example configuration (examples/home as the home directory),
# showing each result.  When examples/home-it/ exists, the requests listed in
# its requests.txt (default: the receipts) are rendered again with it.
# Results are written to out/.
#
# Environment: JOBS (parallel build jobs, default: number of cores),
# BUILD_ROOT (where build/ goes, default: the repository root).
set -euo pipefail

repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_root=${BUILD_ROOT:-$repo}
jobs=${JOBS:-$(nproc)}
build=$build_root/build

"$repo/scripts/deps.sh"

if [[ ! -f $build/CMakeCache.txt ]]; then
  generator=()
  if command -v ninja >/dev/null; then generator=(-G Ninja); fi
  cmake -S "$repo" -B "$build" "${generator[@]}" -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
cmake --build "$build" -j "$jobs"

# The example configuration names files (translations, logs) relative to the
# repository root.
cd "$repo"
mkdir -p out
export LC_ALL=C   # stable order of the requests
failed=0

# render NAME-SHOWN HOME REQUEST OUTPUT
render() {
  local shown=$1 home=$2 req=$3 out=$4 diag status=0
  rm -f -- "$out"
  diag=$(HOME="$home" "$build/tools/zentaro-print/zentaro-print" "$req" "$out") || status=$?
  echo "==> $shown"
  if [[ -f $out ]]; then
    cat -- "$out"
    # keep the next header on its own line
    if [[ -s $out && -n $(tail -c 1 -- "$out") ]]; then echo; fi
  else
    echo "(no output file)"
  fi
  if [[ -n $diag ]]; then
    echo "--- diagnostics:"
    printf '%s\n' "$diag"
  fi
  if ((status != 0)); then
    echo "FAILED: zentaro-print exited with status $status"
    failed=1
  fi
  echo
}

shopt -s nullglob
requests=(examples/requests/*.xml)
if ((${#requests[@]} == 0)); then
  echo "no example requests in examples/requests/" >&2
  exit 1
fi
for req in "${requests[@]}"; do
  name=$(basename -- "$req" .xml)
  render "$name" "$repo/examples/home" "$req" "out/$name.txt"
done

if [[ -d examples/home-it ]]; then
  if [[ -f examples/home-it/requests.txt ]]; then
    # one request a line: a path from the repository root or a file name in
    # examples/requests/; blank lines and '#' comments are skipped
    italian=()
    while IFS= read -r line || [[ -n $line ]]; do
      line=${line%%#*}
      line=${line#"${line%%[![:space:]]*}"}
      line=${line%"${line##*[![:space:]]}"}
      [[ -z $line ]] && continue
      [[ $line == */* ]] || line=examples/requests/$line
      italian+=("$line")
    done <examples/home-it/requests.txt
  else
    italian=(examples/requests/*receipt*.xml)
  fi
  for req in "${italian[@]}"; do
    name=$(basename -- "$req" .xml)
    render "$name (Italian)" "$repo/examples/home-it" "$req" "out/$name.it.txt"
  done
fi

exit "$failed"
