#!/usr/bin/fish --no-config
# What fish offers, each for one line that was begun. The argument is the folder that has fish/ in it.
set -l share $argv[1]
for line in 'qnctl con' 'qnctl info --port sim:R' 'qnctl program list ther' 'qnsim --mo'
    source $share/fish/vendor_completions.d/(string split ' ' $line)[1].fish
    complete --do-complete $line | head -1 | cut -f1
end
