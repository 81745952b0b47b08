#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Fails when a source file is not formatted as .clang-format says, or lacks its licence line.
set -euo pipefail
. "$(dirname "$0")/common.sh"
cd "$root"

mapfile -t sources < <(git ls-files '*.cpp' '*.h')
[ ${#sources[@]} -gt 0 ] || fail 'no source files found'
clang-format-14 --dry-run --Werror "${sources[@]}"

mapfile -t unmarked < <(git ls-files -z '*.cpp' '*.h' '*.sh' '*.py' '*.cmake' '*CMakeLists.txt' run test .ci/run |
    xargs -0 grep -L 'SPDX-License-Identifier: MIT')
if [ ${#unmarked[@]} -gt 0 ]; then
    printf 'no licence line: %s\n' "${unmarked[@]}" >&2
    exit 1
fi
printf '%d files are formatted and marked\n' ${#sources[@]}
