#!/usr/bin/env bash
# Builds for Windows, x86-64, on Debian 12, and packs what users install:
#
#     scripts/windows.sh           build/windows/tarvik41-channel-VERSION-windows-x86_64.zip, and -setup.exe beside it
#     scripts/windows.sh --build   only the module, the program and the offline host
#
# The libraries come from Debian's source packages, once, into build/windows/prefix. scripts/check-windows tries all of it.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
. scripts/common.sh
. scripts/windows/libraries.sh

ensure_packages $windows_packages
build_libraries
configure windows
build windows Tarvik41Channel_VST3 Tarvik41Channel_Standalone tarvik41-render

built="$PWD/build/windows/source/Tarvik41Channel_artefacts/Release"
programs=("$built/Standalone/tarvik41-channel.exe" build/windows/tools/tarvik41-render.exe)
packaging/windows/check-binaries.sh "$built"/VST3/*.vst3/Contents/x86_64-win/*.vst3 "${programs[@]}"
[ "${1:-}" != --build ] || exit 0

ensure_packages $windows_packing_packages
[ -f "build/manual/Tarvik 41 Series Manual.pdf" ] || scripts/manual

# What the zip holds, and the setup program spreads.
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' build/windows/CMakeCache.txt)
name=tarvik41-channel-$version-windows-x86_64
folder="$PWD/build/windows/$name"
rm -rf build/windows/tarvik41-channel-* # of other versions, too
mkdir -p "$folder/licences"
cp -r "$built/VST3/Tarvik 41 Channel.vst3" "${programs[@]}" "build/manual/Tarvik 41 Series Manual.pdf" "$folder"
find "$folder" \( -name '*.exe' -o -path '*/x86_64-win/*' \) -exec $mingw-strip {} +
sed 's/$/\r/' packaging/windows/INSTALL.txt >"$folder/INSTALL.txt"

# Ours, then the libraries', then those of what the compiler adds, then the texts that these refer to.
cp LICENSE "$folder/licences/tarvik41-channel.txt"
cp packaging/copyright "$folder/licences/overview.txt"
cp resources/fonts/OFL.txt "$folder/licences/font.txt"
for licence in $linked_libraries; do
    cp "$prefix/licences/$licence.txt" "$folder/licences"
done
for package in juce-modules-source libz-mingw-w64-dev mingw-w64-common gcc-mingw-w64-base; do
    cp /usr/share/doc/$package/copyright "$folder/licences/$package.txt"
done
add_common_licences "$folder/licences" "$folder"/licences/*.txt

(cd build/windows && quietly zip -X -r "$name.zip" "$name")
quietly makensis -V2 "-DVERSION=$version" "-DFOLDER=$folder" "-DOUTPUT=$folder-setup.exe" packaging/windows/setup.nsi
ls "$folder.zip" "$folder-setup.exe"
