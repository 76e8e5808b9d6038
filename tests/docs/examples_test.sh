#!/usr/bin/env bash
# The shipped examples pass their own checks: every request in
# examples/requests/ previews without a finding under the example
# configuration, and every request in examples/faulty/ gives exactly the
# findings kept beside it (NAME.findings).  GOLDEN_UPDATE=1 rewrites those.
#   examples_test.sh ZENTARO_PREVIEW SOURCE_DIR
set -uo pipefail
preview=$1
cd "$2" || exit 2
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
cp -r examples/home/. "$home/"
export HOME=$home LC_ALL=C.UTF-8
failed=0

for request in examples/requests/*.xml; do
  findings=$("$preview" "$request" "$home/picture.svg")
  status=$?
  if ((status != 0)) || [[ -n $findings ]]; then
    echo "$request: status $status"
    [[ -z $findings ]] || printf '%s\n' "$findings"
    failed=1
  fi
done

for request in examples/faulty/*.xml; do
  expected=${request%.xml}.findings
  findings=$("$preview" "$request" "$home/picture.svg")
  status=$?
  if [[ ${GOLDEN_UPDATE:-} == 1 ]]; then
    printf '%s\n' "$findings" >"$expected"
  fi
  if ((status != 1)) || ! diff -u "$expected" - <<<"$findings"; then
    echo "$request: status $status, findings differ from $expected"
    failed=1
  fi
done
exit "$failed"
