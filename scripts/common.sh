# Sourced by ./run and ./test: what both need before they can begin. Expects the project's root as the current folder.

# What the module and the offline host are built from.
build_packages="g++ cmake ninja-build pkg-config juce-modules-source libhwy-dev libarmadillo-dev liblapack-dev libblas-dev
    libgfortran-12-dev libflac-dev libvorbis-dev libogg-dev libjack-jackd2-dev"

# What draws the charts. python3-munkres only keeps the font tools from bringing SciPy, of which they need one function.
chart_packages="python3-matplotlib python3-munkres python3-numpy fonts-texgyre"

# What the tests are built from and call.
test_packages="libgtest-dev libgmock-dev libbenchmark-dev clang-format ngspice binutils lilv-utils sordi lv2-dev xvfb xdotool
    python3-cairo python3-pil fontconfig $chart_packages"

# Installs those Debian packages of the arguments that are missing; says what to type where that takes another user.
ensure_packages()
{
    local missing=() package

    for package in "$@"; do
        if ! dpkg-query --show --showformat='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed; then
            missing+=("$package")
        fi
    done

    [ ${#missing[@]} -eq 0 ] && return

    local as_root=()

    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "These packages are missing. As root, type:" >&2
            echo "    apt-get update && apt-get install --no-install-recommends -y ${missing[*]}" >&2
            exit 1
        fi
        as_root=(sudo)
    fi

    echo "Installing: ${missing[*]}"
    "${as_root[@]}" apt-get update -q
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install --no-install-recommends -y -q "${missing[@]}"
}

# Configures a preset of CMakePresets.json. Always anew, since a package may have come since the last time.
configure()
{
    cmake --preset "$1" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
}

# Builds a preset, or just the targets behind it; prints what the compiler says only if it fails.
build()
{
    local preset=$1
    shift
    echo "Building ($preset) ..."
    cmake --build --preset "$preset" ${1:+--target "$@"} >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
}

log=$(mktemp)
trap 'rm -f "$log"' EXIT
