#!/bin/sh
# Sends a recording through every program at each kind of oversampling: render-bank.sh RENDERER MODULE INPUT FOLDER. Prints
# the checksums of what comes out, which two builds of the same sound have in common. Without noise, since that is random.
set -eu
renderer=$1 module=$2 input=$3 folder=$4
programs=$("$renderer" --module "$module" --list 2>/dev/null | sed -n '/^Programs$/,/^$/s/^ *\([0-9]*\)  .*/\1/p')
[ -n "$programs" ] || {
    echo "render-bank.sh: $renderer lists no programs" >&2
    exit 1
}

for factor in 1 2 4 16; do
    export XDG_CONFIG_HOME="$folder/defaults $factor"
    mkdir -p "$XDG_CONFIG_HOME/Tarvik Plugins"
    printf '<PROPERTIES><VALUE name="%s" val="%s"/><VALUE name="Analog" val="0"/></PROPERTIES>' Oversampling $factor \
        >"$XDG_CONFIG_HOME/Tarvik Plugins/Tarvik 41 Channel.settings"

    for program in $programs; do
        "$renderer" --module "$module" --program $program "$input" "$folder/$program-$factor.wav" >/dev/null 2>&1 || {
            echo "render-bank.sh: $renderer fails with program $program at $factor" >&2
            exit 1
        }
    done
done

cd "$folder"
sha256sum ./*.wav
