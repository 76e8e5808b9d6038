# shellcheck shell=sh
# Sourced by the build scripts (POSIX sh and bash alike).

# New build folders use Ninja when it is installed, unless CMAKE_GENERATOR
# already names a generator; CMake reads the variable itself. A build folder
# keeps the generator it was made with.
if [ -z "${CMAKE_GENERATOR:-}" ] && command -v ninja >/dev/null 2>&1; then
    CMAKE_GENERATOR=Ninja
    export CMAKE_GENERATOR
fi
