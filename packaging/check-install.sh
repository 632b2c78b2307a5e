#!/usr/bin/env bash
# Installs a build into a scratch folder, as a user and as the system, by itself or from the archive for other distributions,
# or unpacks its Debian package there, and lets other programs than ours use what is there: check-install.sh BUILD
# [PACKAGE|ARCHIVE]. Prints what went wrong; needs the packages that ./test installs.
set -euo pipefail
. "$(dirname "$(readlink -f "$0")")/../scripts/common.sh"

build=$(readlink -f "$1")
package=${2:-}
uri=$(sed -n 's/^TARVIK_LV2_URI:STRING=//p' "$build/CMakeCache.txt")
scratch=$(mktemp -d)
leftovers+=("$scratch")
export HOME=$scratch/home XDG_CONFIG_HOME=$scratch/config
mkdir "$HOME"

fail()
{
    echo "check-install: $*" >&2
    exit 1
}

places=("$scratch/usr/lib/vst3 $scratch/usr/lib/lv2 $scratch/usr")

if [[ $package == *.tar.xz ]]; then
    tar -C "$scratch" -xJf "$package"
    unpacked=("$scratch"/tarvik41-channel-*)
    (cd "$HOME" && "${unpacked[0]}/install.sh" && "${unpacked[0]}/install.sh" --prefix "$scratch/usr") >"$scratch/log"
    places=("$HOME/.vst3 $HOME/.lv2 $HOME/.local" "${places[@]}")
elif [ -n "$package" ]; then
    # One part of what it depends on is found by a look at the binaries, the other, what they open by name, is listed in
    # packaging/CMakeLists.txt. JUCE does without the screen saver's library.
    dpkg-deb -x "$package" "$scratch"
    relations=$(dpkg-deb --field "$package" Depends Suggests)
    libraries=$(find "$scratch/usr" -type f \( -name '*.so' -o -path '*/bin/*' \) -exec strings -a {} + |
        grep -E '^lib[[:alnum:]_+-]+\.so(\.[0-9]+)+$' | grep -v '^libXss' | sort -u)

    for library in $libraries; do
        owners=$(dpkg -S "*/$library" | sed 's/:.*//')
        grep -qwF "$owners" <<<"$relations" || fail "the package does not name '$owners', whose $library it opens"
    done
    [[ $libraries == *libc.so* && $libraries == *libX11.so* ]] || fail "the package's binaries name only '$libraries'"

    # Where "Open Manual..." looks, and with some pages in it.
    manual="$scratch/usr/Nomvale/Tarvik 41 Series/Tarvik 41 Series Manual.pdf"
    [ "$(head -c 5 "$manual")" = "%PDF-" ] && [ "$(wc -c <"$manual")" -gt 1000000 ] || fail "the package has no manual"
else
    # Both kinds of prefix. Who has no home folder does not get one in the current folder.
    cmake --install "$build" --prefix "$HOME" >"$scratch/log"
    mkdir "$scratch/usr"
    (cd "$scratch/usr" && env -u HOME cmake --install "$build" --prefix "$scratch/usr") >"$scratch/log"
    places=("$HOME/.vst3 $HOME/.lv2 $HOME/.local" "${places[@]}")
fi

for place in "${places[@]}"; do
    read -r vst3 lv2 other <<<"$place"
    so="$vst3/Tarvik 41 Channel.vst3/Contents/$(uname -m)-linux/Tarvik 41 Channel.so"
    bundle="$lv2/Tarvik 41 Channel.lv2"

    for file in "$so" "$bundle/libTarvik 41 Channel.so" "$bundle"/{manifest,dsp,ui}.ttl "$other/bin/tarvik41-channel" \
        "$other"/share/{applications/tarvik41-channel.desktop,icons/hicolor/scalable/apps/tarvik41-channel.svg}; do
        [ -f "$file" ] || fail "not installed: $file"
    done
done

# Each format shows what its hosts call; a program cannot hide its copies of the standard library's tables.
shows()
{
    local symbols
    symbols=$(nm --dynamic --defined-only --format=just-symbols "$1" | sed '/@GLIBCXX/d' | sort | xargs)
    [ "$symbols" = "$2" ] || fail "$1 shows '$symbols' instead of '$2'"
}
shows "$so" "ExitDll GetPluginFactory InitDll ModuleEntry ModuleExit"
shows "$bundle/libTarvik 41 Channel.so" "lv2_descriptor lv2ui_descriptor"
shows "$other/bin/tarvik41-channel" ""

"$build/tools/tarvik41-render" --module "$vst3/Tarvik 41 Channel.vst3" --list >"$scratch/log" || fail "VST3 does not load"

# The archive's files ask for the C library alone, and for none that is newer than they say; the offline host finds the
# module, and the sound is the build's, bit for bit.
if [[ $package == *.tar.xz ]]; then
    for file in "$so" "$bundle/libTarvik 41 Channel.so" "$other"/bin/tarvik41-{channel,render}; do
        allowed='lib[cm]\.so\.6|ld-linux-x86-64\.so\.2'
        [ "$file" != "$other/bin/tarvik41-channel" ] || allowed+='|libasound\.so\.2'
        objdump -p "$file" >"$scratch/headers"
        needed=$(sed -nE "/^ *NEEDED +($allowed)\$/d; s/^ *NEEDED +//p" "$scratch/headers" | xargs)
        [ -z "$needed" ] || fail "$file needs $needed"
        newest=$(sed -n 's/.* GLIBC_\([0-9.]*\)$/\1/p' "$scratch/headers" | sort -V | tail -n 1)
        [ "$(printf '%s\n' "$newest" "$oldest_glibc" | sort -V | tail -n 1)" = "$oldest_glibc" ] && [ -n "$newest" ] ||
            fail "$file needs glibc $newest, and $oldest_glibc was promised"
    done

    (cd "$scratch" && "$other/bin/tarvik41-render" --list) >"$scratch/log" 2>&1 || fail "the offline host finds no module"
    loop=/usr/share/sonic-pi/samples/loop_breakbeat.flac
    mkdir "$scratch"/{built,installed}
    built="$build/source/Tarvik41Channel_artefacts/Release/VST3/Tarvik 41 Channel.vst3"
    bank=$(dirname "$(readlink -f "$0")")/render-bank.sh
    "$bank" "$build/tools/tarvik41-render" "$built" $loop "$scratch/built" >"$scratch/sums"
    "$bank" "$other/bin/tarvik41-render" "$vst3/Tarvik 41 Channel.vst3" $loop "$scratch/installed" >"$scratch/log"
    diff "$scratch/sums" "$scratch/log" || fail "the archive does not sound like the build"
fi

# LV2: the description against the vocabularies, then what a host reads in it, then the sound.
(cd "$bundle" && lv2_validate manifest.ttl dsp.ttl ui.ttl) >"$scratch/log" 2>&1 ||
    {
        cat "$scratch/log" >&2
        fail "the LV2 description breaks the vocabularies' rules"
    }
export LV2_PATH=$lv2:/usr/lib/lv2
lv2ls >"$scratch/found" # read to its end: grep leaves at the first match, which the writer of a pipe dies of
for form in "$uri" "$uri:mono"; do
    grep -qx "$form" "$scratch/found" || fail "LV2 hosts do not find $form"
    lv2info "$form" >"$scratch/info" 2>&1
    for words in "Has latency: *yes" "isSideChain" "Vox Rap 3 Aggressive"; do
        grep -q "$words" "$scratch/info" || fail "lv2info does not say '$words' of $form"
    done
done
TARVIK_LV2_FOLDER=$lv2 "$build/tests/tarvik41-tests" --gtest_filter='Lv2Module*' >"$scratch/log" 2>&1 ||
    {
        cat "$scratch/log" >&2
        fail "the LV2 module does not run as it should"
    }

# Without a screen the program says so in one line.
status=0
DISPLAY=none timeout 20 "$other/bin/tarvik41-channel" >"$scratch/log" 2>"$scratch/complaint" || status=$?
[ $status -eq 1 ] && [ "$(grep -c '' "$scratch/complaint")" -eq 1 ] && grep -q "no screen.*'none'" "$scratch/complaint" ||
    fail "without a screen the program ends with status $status and says '$(cat "$scratch/complaint")'"

# The program opens its window, keeps it, and goes when it is asked to.
echo 'pcm.!default { type null }' >"$HOME/.asoundrc"
open_screen
"$other/bin/tarvik41-channel" >"$scratch/log" 2>&1 &
program=$!
has_window()
{
    xdotool search --name "Tarvik 41 Channel" >/dev/null 2>&1
}
wait_until "the program shows no window" has_window
sleep 1
kill -INT $program || fail "the program has gone by itself"
status=0
wait $program || status=$?
[ $status -eq 0 ] || fail "the program ends with status $status"

# What the archive has installed goes without a rest; what others have there stays.
if [[ $package == *.tar.xz ]]; then
    mkdir -p "$HOME/.vst3/Other.vst3"
    ("${unpacked[0]}/install.sh" --uninstall && "${unpacked[0]}/install.sh" --uninstall --prefix "$scratch/usr") >"$scratch/log"
    rest=$(find "$HOME" "$scratch/usr" -path "$HOME/.config" -prune -o -iname '*tarvik*' -print)
    [ -z "$rest" ] && [ -d "$HOME/.vst3/Other.vst3" ] || fail "uninstalling leaves '$rest' or takes too much"
fi
