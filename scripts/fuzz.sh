#!/usr/bin/env bash
# Fuzzing with libFuzzer on the targets of the `fuzz` preset (tests/fuzz/fuzz_TARGET.cpp).
#   scripts/fuzz.sh --replay            runs every corpus file through its target once (the test
#                                       command does this); fails on the first crash
#   scripts/fuzz.sh [TARGET] [SECONDS]  a campaign of SECONDS (default 60), or of FUZZ_RUNS executions
#                                       if that comes first, on TARGET (default: every
#                                       target, one after another), on one core, inputs of at most
#                                       FUZZ_MAX_LEN bytes (512). The corpus tests/fuzz/corpus/TARGET
#                                       is replaced by the smallest set of inputs that reaches all the
#                                       code it and the campaign reached (files named regress-*, the
#                                       reproducers of fixed faults, stay); a crash is kept
#                                       in tests/fuzz/crashes/TARGET and ends the script with status 1.
#                                       Each campaign adds a line to build/fuzz/campaigns.log.
set -euo pipefail
cd "$(dirname "$0")/.."
bin=build/fuzz/tests/fuzz
corpus=tests/fuzz/corpus
all_targets() { for f in tests/fuzz/fuzz_*.cpp; do f=${f##*/fuzz_}; echo "${f%.cpp}"; done; }
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1} UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}
export QT_QPA_PLATFORM=offscreen

if [[ ${1:-} == --replay ]]; then
  for target in $(all_targets); do
    files=("$corpus/$target"/*)
    [[ -e ${files[0]} ]] || continue
    "$bin/fuzz_$target" -rss_limit_mb=2048 -timeout=20 "${files[@]}" >"build/fuzz/replay-$target.log" 2>&1 ||
      { tail -n 40 "build/fuzz/replay-$target.log"; echo "fuzz replay: $target failed" >&2; exit 1; }
    echo "fuzz replay: $target ${#files[@]} inputs"
  done
  exit 0
fi

targets=${1:-$(all_targets)}
seconds=${2:-60}
status=0
for target in $targets; do
  [[ -x $bin/fuzz_$target ]] || { echo "no fuzz target $target (build the fuzz preset)" >&2; exit 2; }
  work=build/fuzz/campaign/$target
  crashes=tests/fuzz/crashes/$target
  rm -rf "$work" && mkdir -p "$work" "$corpus/$target" "$crashes"
  log=build/fuzz/campaign-$target.log
  rc=0
  started=$(date +%s)
  "$bin/fuzz_$target" "$work" "$corpus/$target" -max_total_time="$seconds" -runs="${FUZZ_RUNS:--1}" -timeout=10 \
    -rss_limit_mb=2048 -malloc_limit_mb=256 -max_len="${FUZZ_MAX_LEN:-512}" -print_final_stats=1 \
    -artifact_prefix="$crashes/" >"$log" 2>&1 || rc=$?
  ran=$(( $(date +%s) - started ))
  execs=$(grep -o 'number_of_executed_units: [0-9]*' "$log" | tail -n 1 | grep -o '[0-9]*$' || echo 0)
  # The smallest set of inputs that reaches every edge the old corpus and the campaign reached
  # (edges only, not hit counts, which would keep ten times the files).
  rm -rf "$work.min" && mkdir -p "$work.min"
  # Reproducers of fixed faults (regress-*) stay whether or not they add coverage.
  if "$bin/fuzz_$target" -merge=1 -use_counters=0 "$work.min" "$corpus/$target" "$work" >>"$log" 2>&1; then
    find "$corpus/$target" -type f ! -name 'regress-*' -delete
    cp "$work.min"/* "$corpus/$target"/
  fi
  result=$([[ $rc == 0 ]] && echo "no finding" || echo "FINDING (exit $rc, see $log)")
  line="$(date -u +%FT%TZ) $target ${ran}s of ${seconds}s $execs executions: $result"
  echo "$line" | tee -a build/fuzz/campaigns.log
  [[ $rc == 0 ]] || status=1
  rmdir "$crashes" 2>/dev/null || true
done
exit $status
