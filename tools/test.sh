#!/usr/bin/env bash
# Installs what is missing, then builds and runs every test twice: in the
# ordinary build and in the build with Address and Undefined Behaviour
# sanitizers. "tools/test.sh plain" or "tools/test.sh asan" runs one of them.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install-deps.sh

jobs=$(nproc)
# Each test gets its display, locale and sanitizer settings from CTest.

run_build() {
  local dir=$1 type=$2
  echo "== $type build in $dir"
  cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE="$type" >/dev/null
  cmake --build "$dir" -j "$jobs"
  (cd "$dir" && ctest --output-on-failure -j "$jobs")
}

which=${1:-all}
if [ "$which" = all ] || [ "$which" = plain ]; then
  run_build build RelWithDebInfo
fi
if [ "$which" = all ] || [ "$which" = asan ]; then
  run_build build-asan Asan
fi
