# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause
#
# Completes the arguments of parley-handset in bash.

_parley_handset() {
    local word=${COMP_WORDS[COMP_CWORD]} words
    case ${COMP_WORDS[COMP_CWORD - 1]} in
    --junit | --ui | --qml | --script)
        mapfile -t words < <(compgen -f -- "$word") ;;
    --state | --tests)
        mapfile -t words < <(compgen -d -- "$word") ;;
    *)
        mapfile -t words < <(compgen -W '--help --junit --kit --no-panel --ofono --qml --replay --script --state --tests --tour --ui --version --watch' -- "$word")
        COMPREPLY=("${words[@]}")
        return ;;
    esac
    compopt -o filenames 2>/dev/null
    COMPREPLY=("${words[@]}")
}
complete -F _parley_handset parley-handset
