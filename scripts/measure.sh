#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds and runs the benchmarks, one after the other. Arguments go to each of them, for instance
# --benchmark_filter=Exchange. Compare ratios within one run: machines are noisy.
set -euo pipefail
. "$(dirname "$0")/common.sh"

need_packages build test
build release
mapfile -t programs < <(find "$root/build/release/bin" -maxdepth 1 -type f \
    -perm -u+x -name '*_benchmark' | sort)
[ ${#programs[@]} -gt 0 ] || fail 'no benchmark was built'
for program in "${programs[@]}"; do
    printf '\n== %s\n' "$(basename "$program")"
    "$program" "$@"
done
