# SPDX-License-Identifier: MIT
# Shared by run, test and .ci/run: finding the project, installing packages, building.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# What outlives a clone: downloaded packages, results of lint.
# shellcheck disable=SC2034 # used by the scripts that read this file
caches=${XDG_CACHE_HOME:-~/.cache}/glyphora-gates # HOME may be unset

say() { printf '== %s\n' "$*" >&2; }
fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

misuse() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 64
}

# as_root: true when this user may install packages; leaves the command to do so with in `sudo`.
as_root() {
    sudo=()
    [ "$(id -u)" -eq 0 ] && return 0
    command -v sudo >/dev/null || return 1
    sudo -n true 2>/dev/null || [ -t 0 ] || return 1
    sudo=(sudo)
}

refresh_package_lists() {
    local sudo
    as_root && "${sudo[@]}" apt-get update >/dev/null 2>&1 </dev/null
}

# need_packages LIST...: installs what is missing of the Debian packages named in scripts/packages/LIST.
need_packages() {
    local list package missing=()
    for list in "$@"; do
        while read -r package _; do
            case $package in '' | '#'*) continue ;; esac
            if [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
                missing+=("$package")
            fi
        done <"$root/scripts/packages/$list"
    done
    [ ${#missing[@]} -eq 0 ] && return 0

    local sudo=()
    if ! as_root; then
        printf 'Some packages are missing. Type this line, then try again:\n' >&2
        printf '  su -c "apt-get update && apt-get install --yes --no-install-recommends %s"\n' "${missing[*]}" >&2
        exit 1
    fi
    say "installing ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    local log="$root/build/packages.log"
    mkdir -p "$root/build"
    if ! { "${sudo[@]}" apt-get update && "${sudo[@]}" apt-get install --yes --no-install-recommends "${missing[@]}"; } \
        >"$log" 2>&1 </dev/null; then
        tail -n 20 "$log" >&2
        fail "the packages could not be installed; the whole story is in $log"
    fi
}

# build PRESET [TARGET...]: configures once and builds; quiet unless something is to be said.
build() {
    local preset=$1 folder="$root/build/$1" log
    shift
    log="$root/build/$preset.log"
    mkdir -p "$root/build"
    if [ ! -f "$folder/build.ninja" ] || [ "$root/CMakePresets.json" -nt "$folder/build.ninja" ]; then
        say "configuring $preset"
        (cd "$root" && cmake --preset "$preset") >"$log" 2>&1 || {
            rm -f "$folder/build.ninja"
            tail -n 30 "$log" >&2
            fail "configuring $preset failed; the whole story is in $log"
        }
    fi
    # Says that it builds when something is built. Ends with this script, whatever ends that.
    setpriv --pdeathsig TERM ninja -C "$folder" "$@" 2>&1 | tee "$log" |
        { grep --quiet --max-count=1 '^\[[1-9]' && say "building $preset"; cat >/dev/null; } || {
        grep -E -A12 'error:|FAILED:|undefined reference' "$log" | head -n 60 >&2 || true
        fail "building $preset failed; the whole story is in $log"
    }
}
