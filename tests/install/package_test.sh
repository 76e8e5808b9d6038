#!/usr/bin/env bash
# Builds the Debian packages from the build folder and checks them: what
# each holds, what each depends on, and that lintian finds neither an error
# nor a warning (a first upload closes no bug report: that one is expected).
# Whatever the build's prefix, the packages install into /usr.
#   package_test.sh BUILD_DIR
set -euo pipefail
build=$1
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT

(cd "$build" && cpack -G DEB -B "$out" >/dev/null)
print=$(ls "$out"/zentaro_*.deb)
tools=$(ls "$out"/zentaro-tools_*.deb)

contains() {
  local deb=$1; shift
  local listing path
  listing=$(dpkg-deb -c "$deb")
  for path in "$@"; do
    grep -q " \./usr/$path\$" <<<"$listing" || { echo "$(basename "$deb") lacks /usr/$path"; exit 1; }
  done
}
contains "$print" bin/zentaro-print share/zentaro/translations/zentaro_it.qm \
  share/doc/zentaro/copyright share/doc/zentaro/changelog.Debian.gz \
  share/doc/zentaro/examples/restaurant.conf share/doc/zentaro/examples/requests/receipt.xml \
  share/man/man1/zentaro-print.1.gz share/man/man5/zentaro.conf.5.gz
contains "$tools" bin/zentaro-config bin/zentaro-send bin/zentaro-preview \
  share/doc/zentaro-tools/copyright share/man/man1/zentaro-config.1.gz \
  share/man/man1/zentaro-send.1.gz share/man/man1/zentaro-preview.1.gz

# A print-only box installs QtCore and nothing of the GUI or SQL modules.
depends=$(dpkg-deb -f "$print" Depends)
grep -q libqt6core6 <<<"$depends" || { echo "zentaro does not depend on QtCore: $depends"; exit 1; }
if grep -qE 'libqt6(gui|widgets|sql)' <<<"$depends"; then
  echo "zentaro depends on more than QtCore: $depends"; exit 1
fi
grep -q 'zentaro (=' <<<"$(dpkg-deb -f "$tools" Depends)" || { echo "zentaro-tools does not depend on zentaro"; exit 1; }
[[ $(dpkg-deb -f "$print" Section) == text ]] || { echo "unexpected section"; exit 1; }

# The packaged example configuration names the packaged catalogues.
dpkg-deb -x "$print" "$out/root"
grep -q 'basedir = "/usr/share/zentaro/translations/";' "$out/root/usr/share/doc/zentaro/examples/restaurant.conf" \
  || { echo "packaged restaurant.conf does not name /usr/share/zentaro/translations/"; exit 1; }
zgrep -qF '/usr/share/zentaro/translations/' "$out/root/usr/share/man/man1/zentaro-print.1.gz" \
  || { echo "packaged zentaro-print.1 does not name /usr/share/zentaro/translations/"; exit 1; }

lintian --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs "$print" "$tools"
