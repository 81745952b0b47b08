#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs clang-tidy over every source file of the release build. Arguments: files to look at instead.
# A file that was clean is not read again by this user until something changes that the reading
# depends on (see lint-keys.py).
set -euo pipefail
. "$(dirname "$0")/common.sh"
cd "$root"

need_packages build test gates
made=("${@/#/$root/}") # of named files only what is made of them
build release "${made[@]/%/^}"
database=build/release/compile_commands.json
if [ $# -gt 0 ]; then
    sources=("$@")
else
    mapfile -t sources < <(git ls-files '*.cpp' | grep -F -x -f <(sed -n "s|.*\"file\": \"$root/\(.*\)\".*|\1|p" "$database"))
fi
[ ${#sources[@]} -gt 0 ] || fail 'no source files found'
# clang-tidy stops at options that only g++ knows. It reads tests without the headers compiled for
# them, so it tells which of them a file forgot.
mkdir -p build/lint
sed 's/ -fno-gnu-unique / /g; s| -Winvalid-pch -include [^ ]*/cmake_pch.hxx||' "$database" \
    >build/lint/compile_commands.json

tidy=(clang-tidy-14 --quiet -p build/lint "--extra-arg-before=-I$root/scripts/lint")
kept="$caches/lint"
mkdir -p "$kept"
find "$kept" -type f -mtime +30 -delete
declare -A keys
while read -r key source; do
    keys[$source]=$key
done < <(scripts/lint-keys.py . build/release "${tidy[@]}")
unread=()
for source in "${sources[@]}"; do
    [ -n "${keys[$source]:-}" ] || fail "the release build compiles no file $source"
    result="$kept/${keys[$source]}"
    if [ -f "$result" ]; then
        touch "$result"
    else
        unread+=("$result" "$source")
    fi
done
if [ ${#unread[@]} -gt 0 ]; then
    say "$((${#unread[@]} / 2)) of ${#sources[@]} files are to be read"
    # shellcheck disable=SC2016 # expanded by the shells that are started
    printf '%s\0' "${unread[@]}" | xargs -0 -n 2 -P "$(nproc)" \
        sh -c "${tidy[*]}"' "$1" 2>/dev/null && touch "$0"'
fi
printf '%d files are free of lint\n' ${#sources[@]}
