#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Keeps the catalogues of the host's and the manager's own texts (*/po) in step with the sources.
#   check    fails when a text has no translation, or a translation no text any more
#   update   puts new texts into the catalogues, for a translator, and takes old ones out
set -euo pipefail
. "$(dirname "$0")/common.sh"
cd "$root"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
texts="$work/texts.pot"

extract() { # 'FOLDER...' [.ui FILE...]
    local folders sources
    read -ra folders <<<"$1"
    mapfile -t sources < <(find "${folders[@]}" -name '*.cpp' | sort)
    xgettext --from-code=UTF-8 --add-comments=TRANSLATORS --keyword --keyword=marked:1 --keyword=translated:1,1t \
        --keyword=translated:1,2,3t --output="$texts" "${sources[@]}"
    if [ $# -gt 1 ]; then
        xgettext --its=host/po/ui.its --from-code=UTF-8 --join-existing --output="$texts" "${@:2}"
    fi
    sed -i 's/charset=CHARSET/charset=UTF-8/' "$texts"
}

compare() { # ACTION CATALOGUE...
    local catalogue
    for catalogue in "${@:2}"; do
        case $1 in
        check)
            if ! msgcmp "$catalogue" "$texts" 2>"$work/differences" || [ -s "$work/differences" ]; then
                cat "$work/differences" >&2
                fail "$catalogue is not in step with the sources: scripts/texts.sh update, then translate"
            fi ;;
        update)
            msgmerge --quiet --no-fuzzy-matching --no-wrap --add-location=file --output-file="$work/new" "$catalogue" "$texts"
            msgattrib --no-obsolete --no-wrap "$work/new" | sed '/^"\(Report-Msgid-Bugs-To\|POT-Creation-Date\)/d' >"$catalogue" ;;
        *) misuse 'check or update' ;;
        esac
    done
}

extract host source/resources/*.ui
compare "${1:-}" host/po/*.po
extract 'manager faces'
compare "${1:-}" manager/po/*.po
