# SPDX-License-Identifier: MIT
# Completion of glyphora's command line for bash.

_glyphora() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local word command='' deed='' position=0 i
    # "=" and ":" are words of their own.
    if [ "$current" = = ]; then
        current=''
    elif [ "$previous" = = ]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        case $word in -*) continue ;; esac
        if [ -z "$command" ]; then
            command=$word
        elif [ -z "$deed" ]; then
            deed=$word
            position=$((COMP_CWORD - i))
        fi
    done
    local options='--json --help' valued=yes
    COMPREPLY=()
    case $previous in
        --to | --folder | --pictures) _glyphora_paths -d ;;
        --from) _glyphora_paths -f ;;
        --for) _glyphora_words '30min 2h 1d' ;;
        --slant) _glyphora_words 'upright italic oblique' ;;
        --type) _glyphora_words 'T1 TT OT_T1 OT_TT' ;;
        --class) _glyphora_words 'serif slab sans mono script decorative symbol' ;;
        --similar) _glyphora_lines < <(_glyphora_listed '\2' list --containers) ;;
        --weight | --width | --version | --foundry | --licence | --script | --language | --feature | --axis | \
            --covers | --limit | --offset) ;;
        *) valued='' ;;
    esac
    [ -n "$valued" ] && return
    case $command in
        '')
            _glyphora_words 'add remove scan list search show info buy duplicates collect activate deactivate
                collection tag serve quit status history --help --version'
            return
            ;;
        collection | tag)
            if [ -z "$deed" ]; then
                _glyphora_words 'add remove rename list --help'
                return
            fi
            [ "$deed" = add ] && options+=' --from'
            ;;
        add) options+=' --progress' ;;
        scan) options+=' --quiet --progress' ;;
        list) options+=' --containers --problems' ;;
        search)
            options+=' --similar --weight --width --slant --type --class --monospaced --variable --colour
                --embeddable --version --foundry --licence --script --language --feature --axis
                --covers --folder --limit --offset'
            ;;
        history) options+=' --all' ;;
        serve) options='--verbose --help' ;;
        activate) options+=' --for --until-logout --progress' ;;
        deactivate) options+=' --all --progress' ;;
        collect) options+=' --to --progress' ;;
        show) options='--request --pictures --help' ;;
        buy) options='--request --json --help' ;;
    esac
    if [[ $current == -* ]]; then
        _glyphora_words "$options"
        return
    fi
    case $command in
        add) _glyphora_paths -f ;;
        remove) _glyphora_lines < <(_glyphora_folders) ;;
        activate | show)
            if [[ $current == */* ]]; then
                _glyphora_paths -f
                return
            fi
            ;;&
        info | collect | activate) _glyphora_containers list --containers ;;
        show) _glyphora_lines < <(_glyphora_listed '\2' list --containers) ;;
        deactivate) _glyphora_containers status ;;
        collection | tag)
            if [ "$position" -eq 1 ]; then
                _glyphora_lines < <(_glyphora_groups "$command")
            elif [ "$deed" != list ] && [ "$deed" != rename ]; then
                _glyphora_containers list --containers
            fi
            ;;
    esac
}

_glyphora_words() {
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$current")
}

_glyphora_paths() { # -d: folders alone; -f: files, too
    mapfile -t COMPREPLY < <(compgen "$1" -- "$current")
    compopt -o filenames
}

# Takes the lines of standard input that begin like the current word, which may be quoted.
_glyphora_lines() {
    local line begin=${current#[\"\']}
    begin=${begin//\\/}
    while IFS= read -r line; do
        [[ $line == "$begin"* ]] && COMPREPLY+=("$line")
    done
    compopt -o filenames
}

# The containers that a listing names, by their numbers once a digit was typed; and what is behind
# "collection:" and "tag:".
_glyphora_containers() {
    local kind=$previous part='\2'
    if [ "$previous" = : ]; then
        kind=${COMP_WORDS[COMP_CWORD - 2]}
    elif [ "$current" = : ]; then
        current=''
    else
        kind=''
    fi
    case $kind in
        collection | tag)
            _glyphora_lines < <(_glyphora_groups "$kind")
            return
            ;;
    esac
    [[ $current == [0-9]* ]] && part='\1'
    _glyphora_lines < <(
        _glyphora_listed "$part" "$@"
        for kind in collection tag; do
            _glyphora_groups "$kind" | sed "s/^/$kind:/"
        done
    )
}

# Of the containers that a listing names the numbers (\1) or names (\2), one a line.
_glyphora_listed() {
    glyphora "${@:2}" 2>/dev/null | sed -n "
        s/^ *\([0-9]\{1,\}\)  [a-z]\{1,\}  *\(.*\), [^,]*, [0-9]* faces\{0,1\}, \/.*/$1/p
        s/^ *\([0-9]\{1,\}\)  \(.*\), [0-9]* files\{0,1\}\(,.*\)\{0,1\}\$/$1/p" | sort -u
}

# The recorded folders, one a line.
_glyphora_folders() {
    glyphora list 2>/dev/null | sed -n 's/: [0-9]* font files\{0,1\}[, ].*//p'
}

# The names of collections or tags, one a line.
_glyphora_groups() {
    glyphora "$1" list 2>/dev/null | sed -n 's/: [0-9]* containers\{0,1\}$//p'
}

complete -F _glyphora glyphora
