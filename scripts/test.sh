#!/usr/bin/env bash
# Installs what is needed, builds with AddressSanitizer, UndefinedBehaviorSanitizer and
# libFuzzer instrumentation (clang), and runs every test, the command line checks and a
# short fuzz run of each parser.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
export CC=clang CXX=clang++
cmake -S . -B build/test -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-g -O1" \
  -DZOL_SANITIZE=ON -DZOL_BUILD_FUZZ=ON -DZOL_BUILD_BENCH=ON -DZOL_WERROR=ON \
  -DZOL_FUZZ_SECONDS="${ZOL_FUZZ_SECONDS:-60}" >/dev/null
ninja -C build/test
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
export QT_QPA_PLATFORM=offscreen
ctest --test-dir build/test --output-on-failure -j2
