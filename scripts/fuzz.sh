#!/usr/bin/env bash
# Builds the fuzz targets of tests/fuzz with clang and libFuzzer in build-fuzz/
# and runs each for FUZZ_SECONDS (default 60) in one process on one core.
# Inputs found to add coverage collect in build-fuzz/corpus/<target>/; an
# input that crashes, hangs or breaks a target's property is saved to
# build-fuzz/findings/<target>/ and makes the script fail. FUZZ_TARGETS
# (names separated by blanks) runs only those.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${FUZZ_SECONDS:-60}"
build=build-fuzz
bash scripts/install-deps.sh --fuzz

launcher=()
if command -v ccache >/dev/null; then
  launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
CXX=clang++ CC=clang cmake -S . -B "$build" -DTARVO_FUZZ=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DTARVO_BUILD_BENCH=OFF "${launcher[@]}" >/dev/null
cmake --build "$build" --target fuzz_targets -j "$(nproc 2>/dev/null || echo 2)"

export ASAN_OPTIONS="detect_leaks=1:allocator_may_return_null=1"
export LSAN_OPTIONS="suppressions=$PWD/tests/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
export QT_QPA_PLATFORM=offscreen

failed=()
for binary in "$build"/fuzz/fuzz_*; do
  name="${binary##*/fuzz_}"
  if [ -n "${FUZZ_TARGETS:-}" ] && [[ " $FUZZ_TARGETS " != *" $name "* ]]; then
    continue
  fi
  corpus="$build/corpus/$name"
  findings="$build/findings/$name"
  mkdir -p "$corpus" "$findings"
  dict=()
  [ -f "tests/fuzz/dict/$name.dict" ] && dict=(-dict="tests/fuzz/dict/$name.dict")
  seeds=()
  for d in "tests/fuzz/corpus/$name" "tests/fuzz/regressions/$name"; do
    [ -d "$d" ] && seeds+=("$d")
  done
  echo "== fuzz_$name for ${seconds}s"
  log="$findings/last-run.log"
  if ! "$binary" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=65536 \
      -print_final_stats=1 -artifact_prefix="$findings/" "${dict[@]}" \
      "$corpus" "${seeds[@]}" >"$log" 2>&1; then
    tail -n 60 "$log"
    failed+=("$name")
  fi
  grep -E '^(stat::number_of_executed_units|stat::peak_rss_mb)|^#[0-9]+ +DONE' "$log" || true
done

if [ ${#failed[@]} -gt 0 ]; then
  echo "Fuzzing found faults in: ${failed[*]} (inputs in $build/findings/)" >&2
  exit 1
fi
echo "Fuzzing found nothing."
