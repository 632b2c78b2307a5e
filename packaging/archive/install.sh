#!/bin/sh
# Installs Tarvik 41 Channel from the folder that this file is in, or removes it again.
#
#     ./install.sh                 for you: ~/.vst3, ~/.lv2 and ~/.local
#     ./install.sh --system        for everybody, as root: below /usr/local
#     ./install.sh --prefix DIR    for everybody: below another folder
#     ./install.sh --uninstall     removes it; with --system or --prefix DIR, from there
#
# Your settings and projects stay in any case.
set -eu

here=$(cd "$(dirname "$0")" && pwd)
oldest_glibc=@GLIBC@
prefix=
remove=no

fail()
{
    echo "install.sh: $*" >&2
    exit 1
}

while [ $# -gt 0 ]; do
    case $1 in
        --system) prefix=/usr/local ;;
        --prefix)
            [ -n "${2:-}" ] || fail "--prefix needs a folder"
            prefix=$2
            shift
            ;;
        --uninstall) remove=yes ;;
        --help)
            sed -n 's/^# \{0,1\}//p' "$0"
            exit
            ;;
        *) fail "$1: see ./install.sh --help" ;;
    esac
    shift
done

if [ -n "$prefix" ]; then
    vst3=$prefix/lib/vst3 lv2=$prefix/lib/lv2 bin=$prefix/bin share=$prefix/share
    umask 022
else
    [ -n "${HOME:-}" ] || fail "there is no home folder: HOME is not set"
    vst3=$HOME/.vst3 lv2=$HOME/.lv2 bin=$HOME/.local/bin share=$HOME/.local/share
fi

# Does something to each part: what it is here, and the folder that it goes to.
for_each_part()
{
    "$1" "lib/vst3/Tarvik 41 Channel.vst3" "$vst3"
    "$1" "lib/lv2/Tarvik 41 Channel.lv2" "$lv2"
    "$1" bin/tarvik41-channel "$bin"
    "$1" bin/tarvik41-render "$bin"
    "$1" share/applications/tarvik41-channel.desktop "$share/applications"
    "$1" share/icons/hicolor/scalable/apps/tarvik41-channel.svg "$share/icons/hicolor/scalable/apps"
    "$1" share/doc/tarvik41-channel "$share/doc"
}

remove_part()
{
    rm -rf "$2/${1##*/}"
}

# Beside its place first: a host that has the old one open keeps that, and there is never half of the new one.
install_part()
{
    mkdir -p "$2"
    rm -rf "$2/.tarvik41-new"
    cp -R "$here/$1" "$2/.tarvik41-new"
    remove_part "$1" "$2"
    mv "$2/.tarvik41-new" "$2/${1##*/}"
}

if [ $remove = yes ]; then
    for_each_part remove_part
    echo "Removed: $vst3/Tarvik 41 Channel.vst3, $lv2/Tarvik 41 Channel.lv2 and the programs in $bin"
    exit
fi

[ "$(uname -sm)" = "Linux x86_64" ] || fail "these are programs for Linux on x86-64, and this is $(uname -sm)"
glibc=$(getconf GNU_LIBC_VERSION 2>/dev/null) || fail "this system has no glibc, which the plug-ins need"
minor=${glibc#glibc 2.}
[ "${minor%%.*}" -ge "${oldest_glibc#2.}" ] || fail "this system has $glibc, and the plug-ins need $oldest_glibc"

for_each_part install_part

# Desktops know the system's folders for programs, and not always the user's.
if [ -z "$prefix" ]; then
    quoted=$(printf '%s\n' "$bin" | sed 's/[\\&|]/\\&/g')
    sed -i "s|^Exec=.*|Exec=\"$quoted/tarvik41-channel\"|" "$share/applications/tarvik41-channel.desktop"
fi

echo "Installed: $vst3/Tarvik 41 Channel.vst3"
echo "           $lv2/Tarvik 41 Channel.lv2"
echo "           $bin/tarvik41-channel, $bin/tarvik41-render"
echo "           $share/doc/tarvik41-channel"
