#!/usr/bin/env bash
# Builds the three formats and packs them into one Debian package, build/release/tarvik41-channel_VERSION_amd64.deb.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
. scripts/common.sh

ensure_packages $build_packages dpkg-dev file
configure release
build release Tarvik41Channel_All
(cd build/release && cpack >"$log" 2>&1) || { cat "$log" >&2; exit 1; }
ls build/release/*.deb
