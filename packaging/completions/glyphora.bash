# SPDX-License-Identifier: MIT
# Completion of glyphora's command line for bash.

_glyphora() {
    local current previous word command='' deed='' position=0 i
    current=${COMP_WORDS[COMP_CWORD]}
    previous=${COMP_WORDS[COMP_CWORD - 1]}
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
    local commands='add remove scan list search info activate deactivate collection tag duplicates
        collect status history serve quit'
    local options='--json --help'
    COMPREPLY=()
    case $previous in
        --to)
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            return
            ;;
        --for)
            mapfile -t COMPREPLY < <(compgen -W '30min 2h 1d' -- "$current")
            return
            ;;
    esac
    case $command in
        '') mapfile -t COMPREPLY < <(compgen -W "$commands --help --version" -- "$current") ;;
        add)
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            compopt -o filenames
            ;;
        remove)
            local IFS=$'\n'
            mapfile -t COMPREPLY < <(compgen -W "$(_glyphora_folders | _glyphora_quoted)" -- "$current")
            compopt -o filenames
            ;;
        collection | tag)
            if [ -z "$deed" ]; then
                mapfile -t COMPREPLY < <(compgen -W 'add remove list' -- "$current")
            elif [ "$position" -eq 1 ]; then
                local IFS=$'\n'
                mapfile -t COMPREPLY < <(compgen -W "$(_glyphora_groups "$command" | _glyphora_quoted)" -- "$current")
                compopt -o filenames
            fi
            ;;
        scan) options+=' --quiet' ;;
        list) options+=' --containers --problems' ;;
        history) options+=' --all' ;;
        serve) options='--verbose --help' ;;
        activate) options+=' --for --until-logout' ;;
        deactivate) options+=' --all' ;;
        collect) options+=' --to' ;;
    esac
    case $command in
        '' | add | remove | collection | tag) ;;
        *) [[ $current == -* ]] && mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current") ;;
    esac
}

# What is a word of compgen -W is expanded like one of the shell, with the commands in it.
_glyphora_quoted() {
    sed "s/'/'\\\\''/g; s/^/'/; s/\$/'/"
}

# The recorded folders, one a line.
_glyphora_folders() {
    glyphora list 2>/dev/null | sed -n 's/: [0-9]* font files\{0,1\},.*//p'
}

# The names of collections or tags, one a line.
_glyphora_groups() {
    glyphora "$1" list 2>/dev/null | sed -n 's/: [0-9]* containers\{0,1\}$//p'
}

complete -F _glyphora glyphora
