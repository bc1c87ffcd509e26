#!/usr/bin/env bash
# Fuzzes the parsers of outside text with libFuzzer: `scripts/fuzz.sh [seconds [target...]]` builds the
# targets of tests/fuzz with clang into build-fuzz/ and runs each for the given time (default 600 s) on a
# scratch copy of its corpus in tests/fuzz/corpus/ (so that runs never grow the committed one), with the
# words of tests/fuzz/<target>.dict. Fails on any crash, sanitizer report, leak or hang; the input that
# caused it stays in build-fuzz/run/<target>/. `scripts/fuzz.sh 600 mcicommand` runs only the targets
# named after the time.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-600}
targets=("${@:2}")
((${#targets[@]})) || targets=(regfile vbconvert mcicommand)
dir=build-fuzz

[ -f "$dir/build.ninja" ] ||
    CC=clang CXX=clang++ cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTARVO_FUZZ=ON >/dev/null
cmake --build "$dir" -j "$(nproc)"

export ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
failed=()
for target in "${targets[@]}"; do
    work=$dir/run/$target
    rm -rf "$work"
    mkdir -p "$work/corpus"
    cp tests/fuzz/corpus/$target/* "$work/corpus/"
    echo "== fuzzing $target for $seconds s"
    # The words of the input's language and the edges of its numbers, which the fuzzer would be slow
    # to guess: the parsers compare them in Qt, whose code it does not see.
    options=(-max_total_time="$seconds" -timeout=10 -print_final_stats=1 -dict="$PWD/tests/fuzz/$target.dict")
    if (cd "$work" && "../../fuzz_$target" "${options[@]}" corpus) >"$work/log" 2>&1; then
        # The last status line (executions, coverage, features, corpus) and the totals.
        grep -E '^#[0-9]+.*DONE' "$work/log" | tail -1
        grep -E '^stat::(number_of_executed_units|average_exec_per_sec|peak_rss_mb)' "$work/log"
    else
        tail -n 60 "$work/log"
        failed+=("$target")
    fi
done
if ((${#failed[@]})); then
    echo "fuzzing found faults in: ${failed[*]} (inputs and logs in $dir/run/)" >&2
    exit 1
fi
