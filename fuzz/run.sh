#!/usr/bin/env bash
# Builds the fuzz targets with Clang (ASan + UBSan + libFuzzer) and runs each for the given
# number of seconds (default 30) from its committed seed corpus, new inputs going to a scratch
# corpus under build/fuzz. Stops at the first finding (the reproducer is written to build/fuzz).
#   fuzz/run.sh            the short run of CI (about 30 s per target)
#   fuzz/run.sh 3600       a longer run: one hour per target
#   fuzz/run.sh 600 fuzz_unit_line   one target
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-30}
shift || true
flags="-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer"
cmake -S . -B build/fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
  -DZEMCALC_WARNINGS_AS_ERRORS=ON -DZEMCALC_BUILD_TESTS=OFF -DZEMCALC_BUILD_EXAMPLES=OFF -DZEMCALC_BUILD_FUZZ=ON \
  "-DCMAKE_CXX_FLAGS=$flags" "-DCMAKE_EXE_LINKER_FLAGS=-fsanitize=address,undefined" \
  "-DCMAKE_SHARED_LINKER_FLAGS=-fsanitize=address,undefined" >/dev/null
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for source in fuzz/fuzz_*.cpp; do targets+=("$(basename "$source" .cpp)"); done
fi
cmake --build build/fuzz -j2 --target "${targets[@]}" >/dev/null
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
total=0
for target in "${targets[@]}"; do
  scratch=build/fuzz/corpus/$target
  mkdir -p "$scratch"
  log=build/fuzz/$target.log
  if ! ./build/fuzz/fuzz/$target -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2560 -print_final_stats=1 \
      -artifact_prefix=build/fuzz/$target- "$scratch" "fuzz/corpus/$target" >"$log" 2>&1; then
    tail -n 60 "$log"
    echo "fuzz: $target found a fault (reproducer under build/fuzz/$target-*)" >&2
    exit 1
  fi
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  total=$((total + ${runs:-0}))
  echo "fuzz: $target ${runs:-0} executions in ${seconds} s"
done
echo "fuzz: $total executions in all"
