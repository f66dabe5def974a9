#!/bin/bash
# What bash offers, each for one line that was begun. The argument is the folder that has bash-completion/ in it.
source /usr/share/bash-completion/bash_completion

# offered LINE: the first word that is offered at the end of the line, whole.
offered() {
    read -ra COMP_WORDS <<<"${1//:/ : }"
    [[ $1 != *' ' ]] || COMP_WORDS+=('')
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1)) COMP_LINE=$1 COMP_POINT=${#1} COMPREPLY=()
    source "$share/bash-completion/completions/${COMP_WORDS[0]}"
    "_qncomm_${COMP_WORDS[0]}" "${COMP_WORDS[0]}" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
    local begun=${1##* }
    case $begun in
    *:*) printf '%s\n' "${begun%:*}:${COMPREPLY[0]}" ;;
    *) printf '%s\n' "${COMPREPLY[0]}" ;;
    esac
}

share=$1
offered 'qnctl con'
offered 'qnctl info --port sim:R'
offered 'qnctl program list ther'
offered 'qnsim --mo'
