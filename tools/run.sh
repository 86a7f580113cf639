#!/usr/bin/env bash
# Installs what is missing, builds the editor and starts it. Without a
# display the editor is started under a virtual X server for a few seconds,
# so that its log shows a clean start, and the log is printed.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install-deps.sh

cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j "$(nproc)" --target voskantor

if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
  exec build/app/voskantor "$@"
fi

echo "No display is available (DISPLAY is not set)."
echo "Starting the editor under Xvfb for 10 seconds so that its log shows a clean start."
status=0
xvfb-run -a -s "-screen 0 1280x800x24" timeout --signal=INT 10 build/app/voskantor "$@" || status=$?
log_dir="${XDG_DATA_HOME:-$HOME/.local/share}/Norvalis/Voskantor/logs"
log=$(ls -t "$log_dir"/*/*.log 2>/dev/null | head -n 1 || true)
if [ -n "$log" ]; then
  echo "The editor ran; its log is $log:"
  cat "$log"
fi
# The editor was stopped on purpose; only a failure before that counts.
if [ "$status" -ne 0 ] && [ "$status" -ne 124 ] && [ "$status" -ne 130 ]; then
  exit "$status"
fi
