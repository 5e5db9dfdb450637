#!/usr/bin/env bash
# Builds the libFuzzer targets (the `fuzz` preset: optimised Clang with the address and
# undefined-behaviour sanitizers) and runs each for a while, one after the other; prints the
# executions and any crash, leak or sanitizer report per target, and fails when there was one.
#   scripts/fuzz.sh [SECONDS-PER-TARGET] [TARGET...]    default 60 s and every target
# KEPRSH_FUZZ_PRESET=asan builds and runs them in the sanitizer build instead (it has them too), so
# that a full test run does not compile the host a third time; the paths below then start with
# build/asan instead of build/fuzz.
# Targets: json_reader configuration library document style_sheet. Each runs on its seeds
# (build/fuzz/fuzz/seeds/TARGET) and its growing corpus (build/fuzz/corpus/TARGET); crash inputs
# go to build/fuzz/artifacts/TARGET/ (replay one: build/fuzz/bin/fuzz_TARGET FILE).
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
[ $# -gt 0 ] && shift
targets=("$@")
[ ${#targets[@]} -eq 0 ] && targets=(json_reader configuration library document style_sheet)
[[ "$seconds" =~ ^[0-9]+$ ]] || { echo "seconds must be a number: $seconds" >&2; exit 2; }

preset=${KEPRSH_FUZZ_PRESET:-fuzz}
echo "=== fuzz: configure and build (${preset})"
cmake --preset "$preset" ${KEPRSH_WERROR:+-DKEPRSH_WERROR=$KEPRSH_WERROR} >/dev/null
cmake --build --preset "$preset" --target keprsh_fuzzers -j "$(nproc 2>/dev/null || echo 2)"

out=build/$preset
scratch=$out/tmp
rm -rf "$scratch"
mkdir -p "$scratch"
export TMPDIR="$PWD/$scratch"  # the targets' scratch files, removed below even after a crash
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:symbolize=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
summary=()
failed=0
for target in "${targets[@]}"; do
  binary=$out/bin/fuzz_$target
  [ -x "$binary" ] || { echo "no fuzz target '$target'" >&2; exit 2; }
  corpus=$out/corpus/$target
  artifacts=$out/artifacts/$target
  log=$out/logs/$target.log
  mkdir -p "$corpus" "$artifacts" "$(dirname "$log")"
  echo "=== fuzz: $target for ${seconds} s"
  options=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1
           -artifact_prefix="$artifacts/")
  [ -f "$out/fuzz/$target.dict" ] && options+=(-dict="$out/fuzz/$target.dict")
  inputs=("$corpus")
  [ -d "$out/fuzz/seeds/$target" ] && inputs+=("$out/fuzz/seeds/$target")
  status=0
  "$binary" "${options[@]}" "${inputs[@]}" >"$log" 2>&1 || status=$?
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  if [ -z "$runs" ]; then  # no final statistics after a crash: the last progress line has them
    runs=$(grep -oE '^#[0-9]+' "$log" | tail -1 | tr -d '#')
  fi
  if [ "$status" -eq 0 ]; then
    result="no crash"
  else
    failed=1
    report=$(grep -m1 -E 'ERROR: (AddressSanitizer|LeakSanitizer|libFuzzer)|runtime error:|SUMMARY:|^[a-z ]+: .+' "$log" || true)
    artifact=$(sed -n 's/.*Test unit written to //p' "$log" | tail -1)
    result="FAILED (exit $status): ${report:-see $log}${artifact:+; input: $artifact}"
    tail -n 60 "$log"
  fi
  summary+=("$(printf '%-14s %12s executions  %s' "$target" "${runs:-0}" "$result")")
done
rm -rf "$scratch"

echo "=== fuzz: summary (${seconds} s per target; logs in $out/logs)"
printf '%s\n' "${summary[@]}"
exit "$failed"
