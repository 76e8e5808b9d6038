#!/usr/bin/env bash
# Builds the programs and renders every example request in examples/requests/
# with the example configuration (examples/home as the home directory): the
# print file (out/NAME.txt) and its picture (out/NAME.png, drawn by
# zentaro-preview), with what the preview flags; then the requests in
# examples/faulty/, which are kept to show the flags.  When examples/home-it/
# exists, the requests listed in its requests.txt (default: the receipts) are
# rendered again with it (out/NAME.it.*).  out/index.html shows every picture
# beside its request and print file.
#
# Environment: JOBS (parallel build jobs, default: number of cores),
# BUILD_ROOT (where build/ goes, default: the repository root).
set -euo pipefail

repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_root=${BUILD_ROOT:-$repo}
jobs=${JOBS:-$(nproc)}
build=$build_root/build
. "$repo/scripts/lib.sh"

"$repo/scripts/deps.sh"

if [[ ! -f $build/CMakeCache.txt ]]; then
  # The demo needs the programs only: no test framework on a fresh machine.
  # A build directory the test command made keeps its tests.
  cmake -S "$repo" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DZENTARO_TESTS=OFF
fi
cmake --build "$build" -j "$jobs"

# The example configuration names files (translations, logs) relative to the
# repository root.
cd "$repo"
mkdir -p out
# Byte order for the requests, and UTF-8 print files unless a document names
# its code page (a fresh machine's locale is often plain ASCII).
export LC_ALL=C.UTF-8
failed=0

html_escape() {
  sed -e 's/&/\&amp;/g' -e 's/</\&lt;/g' -e 's/>/\&gt;/g' -- "$@"
}

index=out/index.html
cat >"$index" <<'HTML'
<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>zentaro: the example requests</title>
<style>
body { font-family: sans-serif; background: #f6f5f2; margin: 1.5em; }
section { margin-bottom: 3em; }
/* One row per request: the picture (shrunk only when the row is too
   narrow), the request, which takes what is left and wraps its long lines,
   and the print file, as wide as its lines up to a limit.  Nothing overlaps
   and the page never scrolls sideways. */
.row { display: grid; grid-template-columns: minmax(0, max-content) minmax(14em, 1fr) fit-content(26em);
       gap: 1em; align-items: start; }
h3 { margin-top: 0; }
pre { background: #fff; border: 1px solid #ddd; padding: .5em; font-size: 11px; margin: 0;
      white-space: pre-wrap; overflow-wrap: anywhere; }
img { border: 1px solid #ddd; display: block; margin-bottom: .5em; max-width: 100%; height: auto; }
ul.flags { color: #b0201c; font-family: monospace; font-size: 12px; overflow-wrap: anywhere; }
</style>
</head>
<body>
<h1>The example requests</h1>
<p>Each request as zentaro-print renders it: the picture zentaro-preview draws (flagged lines are marked
in its margin and listed under the row) beside the request and the print file.</p>
HTML

# render NAME-SHOWN HOME REQUEST BASE: writes BASE.txt and BASE.png
render() {
  local shown=$1 home=$2 req=$3 base=$4 diag findings page status=0
  local out=$base.txt
  rm -f -- "$out" "$base".png "$base"-[0-9]*.png
  diag=$(HOME="$home" "$build/tools/zentaro-print/zentaro-print" "$req" "$out") || status=$?
  echo "==> $shown: $out"
  if [[ -n $diag ]]; then
    echo "--- diagnostics:"
    printf '%s\n' "$diag"
  fi
  if ((status != 0)); then
    echo "FAILED: zentaro-print exited with status $status"
    failed=1
  fi
  # Status 1 only says that something was flagged.
  status=0
  findings=$(HOME="$home" "$build/tools/zentaro-preview/zentaro-preview" "$req" "$base.png") || status=$?
  if ((status > 1)); then
    echo "FAILED: zentaro-preview exited with status $status"
    failed=1
  fi
  echo "    picture: $base.png"
  if [[ -n $findings ]]; then
    sed -e 's/^/    /' <<<"$findings"
  fi

  {
    printf '<section id="%s">\n<h2>%s</h2>\n<div class="row">\n<div><h3>Picture</h3>\n' "${base#out/}" "$shown"
    for page in "$base".png "$base"-[0-9]*.png; do
      if [[ -f $page ]]; then
        printf '<img src="%s" alt="%s">\n' "${page#out/}" "$shown"
      fi
    done
    printf '</div>\n<div><h3>Request</h3>\n<pre>'
    html_escape "$req"
    printf '</pre></div>\n<div><h3>Print file</h3>\n<pre>'
    if [[ -f $out ]]; then html_escape "$out"; fi
    printf '</pre></div>\n</div>\n'
    # Under the row, where their long lines cannot widen the picture's column.
    if [[ -n $findings ]]; then
      echo '<ul class="flags">'
      printf '%s\n' "$findings" | html_escape | sed -e 's/^/<li>/' -e 's/$/<\/li>/'
      echo '</ul>'
    fi
    printf '</section>\n'
  } >>"$index"
}

shopt -s nullglob
requests=(examples/requests/*.xml)
if ((${#requests[@]} == 0)); then
  echo "no example requests in examples/requests/" >&2
  exit 1
fi
for req in "${requests[@]}"; do
  name=$(basename -- "$req" .xml)
  render "$name" "$repo/examples/home" "$req" "out/$name"
done

# Requests kept to show what the preview flags (their findings are beside
# them, in NAME.findings).
for req in examples/faulty/*.xml; do
  name=$(basename -- "$req" .xml)
  render "$name (faulty)" "$repo/examples/home" "$req" "out/faulty-$name"
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
    render "$name (Italian)" "$repo/examples/home-it" "$req" "out/$name.it"
  done
fi

printf '</body>\n</html>\n' >>"$index"
echo
echo "The pictures, beside their requests and print files: $repo/$index"
exit "$failed"
