#!/usr/bin/env bash
# Builds Tarvo Micropause: `scripts/build.sh` into build/ (the program folder is build/bin/),
# `scripts/build.sh sanitize` into build-asan/ with AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."

dir=build
options=(-DCMAKE_BUILD_TYPE=RelWithDebInfo)
if [ "${1:-}" = sanitize ]; then
    dir=build-asan
    options=(-DCMAKE_BUILD_TYPE=Debug -DTARVO_SANITIZE=ON -DCMAKE_CXX_FLAGS=-O1)
fi
[ -f "$dir/build.ninja" ] || cmake -S . -B "$dir" -G Ninja "${options[@]}" >/dev/null
cmake --build "$dir" -j "$(nproc)"
