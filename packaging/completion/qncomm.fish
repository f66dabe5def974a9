# fish: the words of @name@, which knows itself what can stand where.
function __qncomm_@name@
    set -l words (commandline -opc) (commandline -ct)
    set -l found ($words[1] --complete $words[2..] 2>/dev/null)
    if test $status -eq 3
        __fish_complete_path (commandline -ct)
    else
        string join \n -- $found
    end
end
complete -c @name@ -f -a '(__qncomm_@name@)'
