#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs clang-tidy over every source file of the release build. Arguments: files to look at instead.
set -euo pipefail
. "$(dirname "$0")/common.sh"
cd "$root"

database="$root/build/release/compile_commands.json"
[ -f "$database" ] || build release
if [ $# -gt 0 ]; then
    sources=("$@")
else
    mapfile -t sources < <(git ls-files '*.cpp' | grep -F -x -f <(sed -n "s|.*\"file\": \"$root/\(.*\)\".*|\1|p" "$database"))
fi
[ ${#sources[@]} -gt 0 ] || fail 'no source files found'
# clang-tidy stops at options that only g++ knows.
mkdir -p "$root/build/lint"
sed 's/ -fno-gnu-unique / /g' "$database" >"$root/build/lint/compile_commands.json"
printf '%s\0' "${sources[@]}" |
    xargs -0 -n 4 -P "$(nproc)" clang-tidy-14 --quiet -p "$root/build/lint" 2>/dev/null
printf '%d files are free of lint\n' ${#sources[@]}
