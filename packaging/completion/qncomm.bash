# bash: the words of @name@, which knows itself what can stand where.
_qncomm_@name@() {
    local cur words cword found status=0
    _get_comp_words_by_ref -n =: cur words cword
    found=$("$1" --complete "${words[@]:1:cword}" 2>/dev/null) || status=$?
    if ((status == 3)); then
        _filedir
        return
    fi
    mapfile -t COMPREPLY <<<"$found"
    COMPREPLY=("${COMPREPLY[@]%%$'\t'*}")
    # bash takes what stands behind a "=" for a word of its own.
    [[ $cur != -*=* ]] || COMPREPLY=("${COMPREPLY[@]#*=}")
    __ltrim_colon_completions "$cur"
}
complete -F _qncomm_@name@ @name@
