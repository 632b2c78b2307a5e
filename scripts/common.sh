# Sourced by ./run, ./test and the scripts: what they need before they can begin. `configure` and `build` expect the project's
# root as the current folder.

# What the module and the offline host are built from.
build_packages="g++ cmake ninja-build pkg-config juce-modules-source libhwy-dev libarmadillo-dev liblapack-dev libblas-dev
    libgfortran-12-dev libexpat1-dev libpng-dev libflac-dev libvorbis-dev libogg-dev libjack-jackd2-dev"

# What a portable build links beside that, and what its archive is packed with.
portable_packages="libfreetype-dev libjpeg62-turbo-dev libbrotli-dev zlib1g-dev dpkg-dev xz-utils binutils"

# The oldest glibc that a portable build runs with: packaging/check-install.sh reads in the files that none asks for more.
oldest_glibc=2.34

# What Windows' binaries are built from beside it, what packs them, and what they are tried out in.
windows_packages="cmake ninja-build pkg-config juce-modules-source libz-mingw-w64-dev g++-mingw-w64-x86-64-posix
    gfortran-mingw-w64-x86-64-posix dpkg-dev xz-utils"
windows_packing_packages="nsis zip"
windows_check_packages="wine wine64"

# A virtual screen with a window manager: see open_screen.
screen_packages="xvfb openbox x11-utils"

# What draws the charts. python3-munkres only keeps the font tools from bringing SciPy, of which they need one function.
chart_packages="python3-matplotlib python3-munkres python3-numpy fonts-texgyre"

# What formats, and checks the formatting: see ./format.
format_packages="clang-format python3-autopep8 shfmt"

# What the tests are built from and call.
test_packages="$format_packages libgtest-dev libgmock-dev libbenchmark-dev ngspice binutils lilv-utils sordi lv2-dev
    $screen_packages xdotool python3-cairo python3-pil fontconfig $chart_packages"

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

list_targets()
{
    apt-get indextargets 'Created-By: Packages' --format \
        'deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $(SITE) $(RELEASE) $(COMPONENT) $(ORIGIN)' |
        sed -n 's/ Debian$//p' | sort -u
}

# Lists the sources of Debian's own packages that this machine takes its binary packages from, in folders of our own: the
# machine's lists stay as they are. Renewed once a day. apt's programs see it by "${source_options[@]}". Needs dpkg-dev.
list_sources()
{
    local index=$PWD/build/sources
    source_options=(-o Dir::Etc::SourceList="$index/sources.list" -o Dir::Etc::SourceParts=- -o Dir::State::Lists="$index/lists"
        -o Dir::Cache="$index/cache" -o APT::Sandbox::User=root)
    [ -z "$(find "$index/fresh" -mtime -1 2>/dev/null)" ] || return 0
    mkdir -p "$index"/{lists/partial,cache/archives/partial}
    list_targets >"$index/sources.list"

    # Images of containers come without apt's lists.
    if [ ! -s "$index/sources.list" ] && [ "$(id -u)" -eq 0 ]; then
        quietly apt-get update
        list_targets >"$index/sources.list"
    fi

    [ -s "$index/sources.list" ] || {
        echo "$0: apt knows no sources of Debian's; as root, type: apt-get update" >&2
        exit 1
    }
    quietly apt-get "${source_options[@]}" update
    touch "$index/fresh"
}

# Unpacks a source package, in the version given, into a folder of its own. If it cannot be had, fails with the reason in $log.
fetch_source()
{
    local package=$1 version=$2 folder=$3 download
    download=$(mktemp -d)
    leftovers+=("$download")
    (cd "$download" && apt-get "${source_options[@]}" source --download-only "$package=$version") >"$log" 2>&1 || return 1
    rm -rf "$folder"
    mkdir -p "$(dirname "$folder")"
    quietly dpkg-source --no-check -x "$download"/*.dsc "$folder"
}

# Puts those of Debian's common licences into a folder that the files after it refer to.
add_common_licences()
{
    local folder=$1 text
    shift
    grep -ohE '/usr/share/common-licenses/[[:alnum:].-]*[[:alnum:]]' "$@" | sort -u |
        while read -r text; do
            cp -L "$text" "$folder/${text##*/}.txt"
        done
}

# Runs a command, and shows what it prints only if it fails.
quietly()
{
    "$@" >"$log" 2>&1 && return
    cat "$log" >&2
    exit 1
}

# Configures a preset of CMakePresets.json. Always anew, since a package may have come since the last time.
configure()
{
    quietly cmake --preset "$1"
}

# Builds a preset, or just the targets after its name; prints how far it is, and what the compiler says only if it fails.
build()
{
    local preset=$1 status=0
    shift
    NINJA_STATUS='[%f/%t] ' cmake --build --preset "$preset" ${1:+--target "$@"} 2>&1 | tee "$log" |
        show_progress "Building ($preset) ..." || status=$?
    [ $status -eq 0 ] || {
        sed '/^\[[0-9]*\/[0-9]*\] /d' "$log" >&2
        exit $status
    }
}

# Reads what ninja prints and shows its counter: on a terminal in one line that renews itself, else in a line every tenth.
show_progress()
{
    local title=$1 line tenths=0

    if [ -t 1 ]; then printf '%s' "$title"; else echo "$title"; fi

    while IFS= read -r line; do
        [[ $line =~ ^\[([1-9][0-9]*)/([0-9]+)\]\  ]] || continue
        set -- "${BASH_REMATCH[@]:1}"

        if [ -t 1 ]; then
            printf '\r%s %-12s' "$title" "$1 of $2"
        elif [ $(($1 * 10 / $2)) -gt $tenths ]; then
            tenths=$(($1 * 10 / $2))
            echo "    $1 of $2"
        fi
    done

    [ ! -t 1 ] || echo
}

# A virtual screen for what comes after, until the script ends. With a window manager: on a bare screen the atoms are missing
# that JUCE's windows ask for, and they can die of BadAtom. Needs screen_packages.
open_screen()
{
    local number
    number=$(mktemp)
    leftovers+=("$number")
    Xvfb -displayfd 5 -screen 0 1600x1000x24 -nolisten tcp 5>"$number" 2>/dev/null &
    wait_until "there is no screen" [ -s "$number" ]
    DISPLAY=:$(cat "$number")
    export DISPLAY
    openbox >/dev/null 2>&1 &
    wait_until "there is no window manager" has_window_manager
}

# The property stands once the manager has made its atoms.
has_window_manager()
{
    [[ $(xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null) == *"window id"* ]]
}

# Tries a command until it succeeds; ends with the complaint if it hasn't after 20 s.
wait_until()
{
    local complaint=$1
    shift

    for _ in {1..200}; do
        ! "$@" || return 0
        sleep 0.1
    done

    echo "$0: $complaint" >&2
    exit 1
}

# What goes when the script ends: its jobs in the background, and its files, to which scripts add their own.
log=$(mktemp)
leftovers=("$log")
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "${leftovers[@]}"' EXIT
