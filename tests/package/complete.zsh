#!/usr/bin/zsh -f
# What zsh offers, each for one line that was begun. The argument is the folder that has zsh/ in it. What completes files and
# shows the offers is zsh's own; here it prints the first one.
_files() { print -l -- "$PREFIX"*([1]) }
_describe() {
    local first=${${(P)2}[1]}
    first=${first//\\:/%} # a colon of the word
    print -r -- ${${first%%:*}//\%/:}
}

offered() {
    local -a words=(${(s: :)1})
    [[ $1 != *' ' ]] || words+=('')
    local CURRENT=${#words} PREFIX=$words[-1]
    source $share/zsh/site-functions/_$words[1]
}

share=$1
offered 'qnctl con'
offered 'qnctl info --port sim:R'
offered 'qnctl program list ther'
offered 'qnsim --mo'
