# Completion of tavrionctl's commands, options and fixed values in bash. It asks the program's own help, so that it knows
# what that version knows.

# The words so far that name a command: every first word that is not an option, or two where a group of commands begins.
_tavrionctl_command() {
    local words=() word skips=0 i
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        if ((skips)); then
            skips=0
        elif [[ $word == --data-dir || $word == --now ]]; then
            skips=1
        elif [[ $word != -* ]]; then
            words+=("$word")
        fi
    done
    case ${words[0]:-} in
        library | defaults) printf '%s\n' "${words[@]:0:2}" ;;
        ?*) printf '%s\n' "${words[0]}" ;;
    esac
}

_tavrionctl() {
    local program=${COMP_WORDS[0]} word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    local command help choices values
    mapfile -t command < <(_tavrionctl_command)
    help=$("$program" "${command[@]}" --help 2>/dev/null) || return
    values=$(sed -nE "s/^  (-.,)?$before TEXT:\{([^}]*)\}.*/\2/p" <<<"$help" | tr ',' ' ')
    if [[ $before == -* && -n $values ]]; then
        choices=$values
    elif [[ $word == -* ]]; then
        choices=$(sed -nE 's/^  (-[^ ]*).*/\1/p' <<<"$help" | tr ',' ' ')
        ((${#command[@]} == 0)) || choices+=" --data-dir --now --json --quiet"
    else
        choices=$(sed -n '/^Subcommands:/,$p' <<<"$help" | sed -nE 's/^  ([a-z][a-z-]*).*/\1/p')
    fi
    mapfile -t COMPREPLY < <(compgen -W "$choices" -- "$word")
}

# Where the program proposes nothing, files are proposed: a location, a data directory.
complete -o default -F _tavrionctl tavrionctl
