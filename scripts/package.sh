#!/usr/bin/env bash
# Builds the three formats and the manual, packs them, and tries out what is in the packages:
#
#     build/release/tarvik41-channel_VERSION_amd64.deb               for Debian 12, with its shared libraries
#     build/release/tarvik41-channel-VERSION-linux-x86_64.tar.xz     for other distributions, with all but glibc inside
#
# "package.sh --archive" makes only the second one, and does not try it.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
. scripts/common.sh

# Debian has no archive of Highway, so two of its files are compiled from the source that the installed headers are of.
fetch_highway()
{
    local version folder=$PWD/build/highway
    version=$(dpkg-query --show --showformat='${source:Version}' libhwy-dev)
    [ "$(sed -n '1s/^highway (\(.*\)) .*/\1/p' "$folder/debian/changelog" 2>/dev/null)" != "$version" ] || return 0
    list_sources
    fetch_source highway "$version" "$folder" || {
        cat "$log" >&2
        exit 1
    }
}

make_archive()
{
    fetch_highway
    configure portable
    build portable Tarvik41Channel_All tarvik41-render
    rm -f build/release/*.tar.xz # of other versions
    mkdir -p build/release
    archive=$(packaging/make-archive.sh build/portable build/release)
}

ensure_packages $build_packages $portable_packages
scripts/manual

if [ "${1:-}" = --archive ]; then
    make_archive
    echo "$archive"
    exit
fi

ensure_packages $test_packages file sonic-pi-samples
configure release
build release Tarvik41Channel_All tarvik41-render tarvik41-tests
rm -f build/release/*.deb # of other versions
(cd build/release && quietly cpack)
packaging/check-install.sh build/release build/release/*.deb
ls build/release/*.deb
make_archive
packaging/check-install.sh build/release "$archive"
echo "$archive"
