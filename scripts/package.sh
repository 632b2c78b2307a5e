#!/usr/bin/env bash
# Builds the three formats and the manual, packs them into one Debian package,
# build/release/tarvik41-channel_VERSION_amd64.deb, and tries out what is in it.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
. scripts/common.sh

ensure_packages $build_packages $test_packages dpkg-dev file
configure release
build release Tarvik41Channel_All tarvik41-render tarvik41-tests
scripts/manual
rm -f build/release/*.deb # of other versions
(cd build/release && quietly cpack)
packaging/check-install.sh build/release build/release/*.deb
ls build/release/*.deb
