#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A bare Debian in build/bare, so that nothing installed on this machine by accident helps a command.
#   make          makes it anew, from this machine's own package sources; status 1 and a line on
#                 standard error where that may not be
#   enter CMD...  runs a command in the project's folder, which has its own path in there too; the
#                 caches of the compiler and of packages are this user's. What is mounted for it is
#                 mounted in a namespace that ends with the command
#   remove        removes it
set -euo pipefail
. "$(dirname "$0")/common.sh"

bare="$root/build/bare"
packages="$caches/packages"

remove() { rm -rf --one-file-system "$bare"; }

make() {
    [ "$(id -u)" -eq 0 ] || fail 'only root can make a bare system'
    command -v mmdebstrap >/dev/null || fail 'mmdebstrap is missing'
    unshare --mount true 2>/dev/null || fail 'mounting in a namespace is refused'
    local sources=() file log="$root/build/bare.log"
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.{list,sources}; do
        [ -s "$file" ] && sources+=("$file")
    done
    remove
    mkdir -p "$bare"
    apt-config dump Acquire >"$root/build/bare-apt.conf"
    say 'making a bare system'
    mmdebstrap --mode=root --variant=minbase --include=ccache,ca-certificates \
        --aptopt="$root/build/bare-apt.conf" --dpkgopt=force-unsafe-io \
        bookworm "$bare" "${sources[@]}" >"$log" 2>&1 </dev/null || {
        tail -n 5 "$log" >&2
        remove
        fail 'no bare system could be made'
    }
}

enter() {
    local compiled
    compiled=$(ccache --get-config cache_dir)
    mkdir -p "$packages/partial" "$compiled" "$bare/etc/ssl/certs" "$bare$root" "$bare$compiled"
    # shellcheck disable=SC2016 # expanded by the shell in the namespace
    unshare --mount sh -euc '
        bare=$1 root=$2 packages=$3 compiled=$4
        shift 4
        for folder in /proc /sys /dev /etc/ssl/certs "$root" "$compiled"; do
            mount --rbind "$folder" "$bare$folder"
        done
        mount --bind "$packages" "$bare/var/cache/apt/archives"
        cd "$bare$root"
        exec chroot "$bare" env --chdir="$root" "$@"
    ' sh "$bare" "$root" "$packages" "$compiled" \
        --ignore-environment HOME=/root PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
        CCACHE_DIR="$compiled" ${CI:+CI="$CI"} "$@"
}

case ${1:-} in
make | remove) "$1" ;;
enter) shift; enter "$@" ;;
*) misuse 'usage: scripts/bare-system.sh make | enter COMMAND... | remove' ;;
esac
