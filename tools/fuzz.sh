#!/usr/bin/env bash
# Builds the readers' libFuzzer harnesses (build-fuzz/, clang with Address
# and Undefined Behaviour sanitizers) and runs each for SECONDS (default 60),
# one after the other, one process at a time:
#   tools/fuzz.sh [SECONDS] [CORPUS...]
# CORPUS names one run: projectfile largeproject luachunks luaroute evt gpx
# nmea csv gtfsfeed (default: all). Each run resumes from and grows
# build-fuzz/corpus/<CORPUS>; inputs that crash, leak or take more than 5 s
# land in build-fuzz/artifacts/<CORPUS>/. Executions add up over runs in
# build-fuzz/totals.txt. Exits non-zero when any run found something.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
shift || true
corpora=("$@")
[ ${#corpora[@]} -gt 0 ] || corpora=(projectfile largeproject luachunks luaroute evt gpx nmea csv gtfsfeed)

tools/install-deps.sh fuzz

build=build-fuzz
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
cmake -S . -B "$build" -DVOSK_FUZZ=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ "${launcher[@]}" >/dev/null
cmake --build "$build" -j "$(nproc)"

shared=../shared
# The readers decode files in the local 8-bit encoding, as in the tests.
export LC_ALL=C.UTF-8 LANG=C.UTF-8
export ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

# Seeds of a run beyond fuzz/corpus/<CORPUS>: the small recorded tracks the
# tests read from the shared folder.
extra_seeds() {
  local corpus=$1 dir=$build/seeds/$1
  case $corpus in
    gpx | nmea)
      mkdir -p "$dir"
      find "$shared/tracks" -name "*.$corpus" -size -16k -exec cp -f {} "$dir" \;
      echo "$dir"
      ;;
  esac
}

status=0
totals=$build/totals.txt
touch "$totals"
for corpus in "${corpora[@]}"; do
  harness=fuzz_$corpus dict=fuzz/lua.dict maxlen=()
  case $corpus in
    projectfile | luaroute) ;;
    largeproject) dict= ;;
    luachunks) maxlen=(-max_len=8192) ;;
    evt) dict=fuzz/evt.dict ;;
    gpx | nmea) harness=fuzz_track dict=fuzz/$corpus.dict maxlen=(-max_len=4096) ;;
    csv) dict=fuzz/csv.dict ;;
    gtfsfeed) dict=fuzz/csv.dict maxlen=(-max_len=8192) ;;
    *) echo "unknown corpus $corpus" >&2; exit 2 ;;
  esac
  mkdir -p "$build/corpus/$corpus" "$build/artifacts/$corpus" "$build/logs"
  log=$build/logs/$corpus.log
  seeds=()
  [ -d "fuzz/corpus/$corpus" ] && seeds+=("fuzz/corpus/$corpus")
  extra=$(extra_seeds "$corpus")
  [ -n "$extra" ] && seeds+=("$extra")
  echo "== $corpus ($harness, $seconds s)"
  set +e
  "$build/fuzz/$harness" -max_total_time="$seconds" -timeout=5 -rss_limit_mb=4096 -print_final_stats=1 \
    -artifact_prefix="$build/artifacts/$corpus/" ${dict:+-dict=$dict} "${maxlen[@]}" \
    "$build/corpus/$corpus" "${seeds[@]}" >"$log" 2>&1
  result=$?
  set -e
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -1)
  last=$(grep -E '^#[0-9]+' "$log" | tail -1 || true)
  cov=$(sed -n 's/.* cov: \([0-9]*\).*/\1/p' <<<"$last")
  ft=$(sed -n 's/.* ft: \([0-9]*\).*/\1/p' <<<"$last")
  before=$(awk -v c="$corpus" '$1 == c { print $2 }' "$totals")
  total=$(( ${before:-0} + ${runs:-0} ))
  { grep -v "^$corpus " "$totals" || true; echo "$corpus $total"; } >"$totals.new" && mv "$totals.new" "$totals"
  files=$(find "$build/corpus/$corpus" -type f | wc -l)
  bytes=$(du -sb "$build/corpus/$corpus" | cut -f1)
  echo "   executions ${runs:-0} (total $total), ${rate:-0} exec/s, coverage $cov edges, $ft features, corpus $files files / $bytes bytes"
  if [ $result -ne 0 ]; then
    echo "   FOUND SOMETHING (exit $result): see $log and $build/artifacts/$corpus/"
    status=1
  fi
done
exit $status
