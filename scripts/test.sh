#!/usr/bin/env bash
# Installs what is missing, then builds and runs every test twice: in the normal build and in the
# AddressSanitizer + UndefinedBehaviorSanitizer build. Also checks the formatting of the sources, and
# fuzzes the parsers of outside text for 20 seconds each.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

echo "== formatting"
if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
    mapfile -t sources < <(git ls-files '*.cpp' '*.h')
else
    mapfile -t sources < <(find src tests bench -name '*.cpp' -o -name '*.h')
fi
clang-format --dry-run --Werror "${sources[@]}"

jobs=$(nproc)
echo "== build"
scripts/build.sh
echo "== tests"
(cd build && ctest --output-on-failure -j "$jobs")

echo "== sanitizer build"
scripts/build.sh sanitize
echo "== tests under AddressSanitizer and UndefinedBehaviorSanitizer"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:detect_stack_use_after_return=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
export LSAN_OPTIONS=suppressions=$PWD/tests/lsan.supp:print_suppressions=0
(cd build-asan && ctest --output-on-failure -j "$jobs")

echo "== fuzzing (20 s per target)"
scripts/fuzz.sh 20
