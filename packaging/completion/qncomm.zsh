#compdef @name@
# zsh: the words of @name@, which knows itself what can stand where.
local found line
local -a offers
found=$("$words[1]" --complete "${(@Q)words[2,CURRENT-1]}" "$PREFIX" 2>/dev/null)
if (( $? == 3 )); then
    _files
    return
fi
for line in ${(f)found}; do
    offers+=("${${line%%$'\t'*}//:/\\:}:${line#*$'\t'}")
done
_describe @name@ offers
