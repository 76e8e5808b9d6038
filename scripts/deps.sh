#!/usr/bin/env bash
# Installs the Debian packages that building and the demo need ("demo", the
# default) or that the whole test suite needs as well ("test": the test
# framework, a PostgreSQL server, an X display, clang for fuzzing, the
# packaging tools).
# Only missing packages are installed; when everything is present the script
# prints nothing and touches nothing.  Works without a terminal or standard
# input (CI): apt runs non-interactively, through sudo when not root.
#   deps.sh [demo|test]
set -euo pipefail

profile=${1:-demo}
packages=(
  cmake g++
  qt6-base-dev qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools
  libexpat1-dev
  libpng-dev
  libqt6sql6-psql
  # zentaro-send's CUPS queues
  libcups2-dev
  # text drawn on the offscreen platform: the editor window (view tests, the
  # README's picture) and the preview's PNG pictures
  fonts-dejavu-core
)
if [[ $profile == test ]]; then
  packages+=(
    libgtest-dev
    postgresql
    # a private CUPS scheduler and its socket backend, for zentaro-send's
    # queue tests
    cups-daemon cups
    # a private X display and Qt's platform plugin for it, for the paper
    # prompt's message box
    xvfb qt6-qpa-plugins
    clang
    # locales the tests compile (an ISO-8859-15 one), manual pages, packages
    locales man-db dpkg-dev lintian
  )
fi

installed() {
  [[ $(dpkg-query -W -f='${Status}' "$1" 2>/dev/null) == "install ok installed" ]]
}

apt_updated=
apt_install() {
  local sudo=()
  if [[ $(id -u) -ne 0 ]]; then
    if ! command -v sudo >/dev/null; then
      echo "deps.sh: missing packages ($*) and neither root nor sudo available" >&2
      exit 1
    fi
    sudo=(sudo)
  fi
  echo "deps.sh: installing $*"
  if [[ -z $apt_updated ]]; then
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q update </dev/null
    apt_updated=1
  fi
  "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -q --no-install-recommends "$@" </dev/null
}

missing() {
  local p
  for p in "$@"; do
    installed "$p" || printf '%s\n' "$p"
  done
}

# Ninja is used when present; make serves otherwise, and a bare machine
# (cmake without its recommends) may have neither.
need=("${packages[@]}")
if ! command -v ninja >/dev/null && ! command -v make >/dev/null; then
  need+=(ninja-build)
fi
mapfile -t todo < <(missing "${need[@]}")
if ((${#todo[@]})); then
  apt_install "${todo[@]}"
fi

[[ $profile == test ]] || exit 0

# clang's sanitizer and libFuzzer runtime comes in a package named after
# clang's major version, known only once clang is there.
clang_major=$(clang -dumpversion | cut -d. -f1)
mapfile -t todo < <(missing "libclang-rt-$clang_major-dev")
if ((${#todo[@]})); then
  apt_install "${todo[@]}"
fi
