#!/usr/bin/env bash
# Packs a portable build and the manual into the archive for other distributions: make-archive.sh BUILD FOLDER. Prints its name.
set -euo pipefail
. "$(dirname "$(readlink -f "$0")")/../scripts/common.sh"

project=$(dirname "$(readlink -f "$0")")/..
build=$(readlink -f "$1")
folder=$(readlink -f "$2")
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
name=tarvik41-channel-$version-linux-$(uname -m)
stage=$(mktemp -d)
leftovers+=("$stage")
root=$stage/$name
documents=$root/share/doc/tarvik41-channel

quietly cmake --install "$build" --strip --prefix "$root"

for file in README.txt install.sh; do
    sed "s/@VERSION@/$version/; s/@GLIBC@/$oldest_glibc/" "$project/packaging/archive/$file" >"$root/$file"
done
chmod +x "$root/install.sh"
cp "$project/LICENSE" "$root"

# The licences: by the linker's maps, of each package with an archive that something was taken from; then of what comes as
# headers, as source or as a font; then the texts that those refer to.
licences=$documents/licences
mkdir "$licences"
grep -ohE '^/[^ ]+\.a\(' "$build"/*.map | sed 's/($//' | sort -u | xargs readlink -f | sort -u >"$stage/archives"
packages=$(xargs dpkg -S <"$stage/archives" | sed 's/:.*//' | sort -u)

for package in $packages juce-modules-source libarmadillo-dev libhwy-dev; do
    cp -L "/usr/share/doc/$package/copyright" "$licences/$package.txt"
done
cp "$project/resources/fonts/OFL.txt" "$licences/font.txt"
add_common_licences "$licences" "$licences"/*.txt "$documents/copyright"

archive=$folder/$name.tar.xz
tar --sort=name --owner=0 --group=0 --numeric-owner -C "$stage" -cJf "$archive" "$name"
echo "$archive"
