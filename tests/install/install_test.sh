#!/usr/bin/env bash
# Installs the build into a staging root under a prefix other than /usr and
# uses what was installed: every file in its place, the manual pages render
# without a warning and name the prefix's folders and the version, and an
# installed program run from another folder prints Italian with the
# installed example configuration.
#   install_test.sh BUILD_DIR VERSION
set -euo pipefail
build=$1 version=$2
prefix=/opt/zentaro
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
root=$stage/root

DESTDIR=$root cmake --install "$build" --prefix "$prefix" >/dev/null
installed=$root$prefix

for file in bin/zentaro-print bin/zentaro-config bin/zentaro-send bin/zentaro-preview \
    share/zentaro/translations/zentaro_it.qm share/zentaro/translations/zentaro_de.qm \
    share/doc/zentaro/requests.md share/doc/zentaro/examples/restaurant.conf \
    share/doc/zentaro/examples/requests/receipt.xml \
    share/man/man1/zentaro-print.1.gz share/man/man1/zentaro-config.1.gz \
    share/man/man1/zentaro-send.1.gz share/man/man1/zentaro-preview.1.gz \
    share/man/man5/zentaro.conf.5.gz; do
  [[ -e $installed/$file ]] || { echo "not installed: $file"; exit 1; }
done

for page in "$installed"/share/man/man*/*.gz; do
  warnings=$(MANWIDTH=80 man --warnings -l "$page" 2>&1 >/dev/null)
  [[ -z $warnings ]] || { echo "$(basename "$page"): $warnings"; exit 1; }
  head=$(zcat "$page" | head -n 1)
  [[ $head == *"\"zentaro $version\""* ]] || { echo "$(basename "$page") names another version: $head"; exit 1; }
done
page=$installed/share/man/man1/zentaro-print.1.gz
if ! zgrep -qF "$prefix/share/zentaro/translations/" "$page" || zgrep -q /usr/share/zentaro "$page"; then
  echo "zentaro-print.1 does not name the installed catalogues"; exit 1
fi

# The example configuration names the catalogues by their installed path;
# in the staging root that path lies under the root.
conf=$installed/share/doc/zentaro/examples/restaurant.conf
grep -q "basedir = \"$prefix/share/zentaro/translations/\";" "$conf" \
  || { echo "restaurant.conf does not name the installed catalogues"; exit 1; }
mkdir -p "$stage/home/.zentaro/conf"
sed "s#basedir = \"$prefix/#basedir = \"$installed/#" "$conf" >"$stage/home/.zentaro/conf/zentaro.conf"

cd /
HOME=$stage/home LC_ALL=C.UTF-8 "$installed/bin/zentaro-print" \
  "$installed/share/doc/zentaro/examples/requests/kitchen-ticket.xml" "$stage/ticket.txt"
grep -q '" Data: 21/11/2026"@' "$stage/ticket.txt" || { echo "not printed in Italian:"; cat "$stage/ticket.txt"; exit 1; }
echo "installed and used from $(pwd)"
