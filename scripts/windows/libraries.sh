# Sourced by scripts/windows.sh: the libraries that the Windows build links, built from Debian's source packages into
# build/windows/prefix. A stamp for each names the package's version, the compiler and a sum of how it was built, so that
# what is up to date is left alone.

# The project's root is the current folder, as for scripts/common.sh.

project=$PWD
prefix="$PWD/build/windows/prefix"
library_work="$PWD/build/windows/libraries"
mingw=x86_64-w64-mingw32

# The parts of what is delivered, and what only the tests need.
linked_libraries="hwy libpng libjpeg libogg libvorbis libflac expat lapack armadillo musl"
test_libraries=googletest

# Builds what is missing or of another version.
build_libraries()
{
    local name

    mkdir -p "$prefix"/{include,lib/pkgconfig,stamps,licences} "$library_work"
    list_sources

    for name in $linked_libraries $test_libraries; do
        build_library $name
    done
}

# Builds a library by the function `build_NAME`, which runs in the unpacked source. In the newest version that can be had: a
# mirror may list one before it holds it.
build_library()
{
    local name=$1 package version recipe stamp="$prefix/stamps/$1" unpacked="$library_work/$1"
    package=$(source_package_of "$name")
    recipe=$({
        declare -f with_cmake "build_$name"
        [ "$name" != musl ] || cat cmake/windows/musl/*
        cat cmake/WindowsToolchain.cmake
        $mingw-g++-posix --version
    } | sha256sum | cut -c 1-16)

    for version in $(versions_of "$package"); do
        [ "$(cat "$stamp" 2>/dev/null)" != "$package $version $recipe" ] || return 0
        rm -rf "$unpacked"
        fetch_source "$package" "$version" "$unpacked/source" || continue
        echo "Building $package $version for Windows ..."
        rm -f "$stamp"
        (cd "$unpacked/source" && build_"$name")
        cp "$unpacked/source/debian/copyright" "$prefix/licences/$name.txt"
        echo "$package $version $recipe" >"$stamp"
        rm -rf "$unpacked"
        return 0
    done

    cat "$log" >&2
    echo "$0: the source package $package cannot be had" >&2
    exit 1
}

# The newest first.
versions_of()
{
    apt-cache "${source_options[@]}" showsrc --only-source "$1" | sed -n 's/^Version: //p' | sort -rV
}

source_package_of()
{
    case $1 in
        hwy) echo highway ;;
        libpng) echo libpng1.6 ;;
        libjpeg) echo libjpeg-turbo ;;
        libflac) echo flac ;;
        *) echo "$1" ;;
    esac
}

# With the arguments for its CMake after those that all have in common.
with_cmake()
{
    quietly cmake -S . -B ../build -G Ninja -DCMAKE_TOOLCHAIN_FILE="$project/cmake/WindowsToolchain.cmake" \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" \
        -DBUILD_SHARED_LIBS=OFF -DBUILD_TESTING=OFF "$@"
    quietly cmake --build ../build
    quietly cmake --install ../build
}

# Of what is contributed, the functions of mathematics are used, which are all in a header.
build_hwy()
{
    with_cmake -DHWY_ENABLE_CONTRIB=OFF -DHWY_ENABLE_EXAMPLES=OFF -DHWY_ENABLE_TESTS=OFF
    cp --parents hwy/contrib/math/math-inl.h "$prefix/include"
}

build_libpng()
{
    with_cmake -DPNG_SHARED=OFF -DPNG_TESTS=OFF -DPNG_EXECUTABLES=OFF
}

# JUCE includes the library's internals.
build_libjpeg()
{
    with_cmake -DENABLE_SHARED=OFF -DWITH_SIMD=OFF -DWITH_TURBOJPEG=OFF
    cp jpegint.h "$prefix/include"
}

build_libogg()
{
    with_cmake -DINSTALL_DOCS=OFF
}

build_libvorbis()
{
    with_cmake
}

build_libflac()
{
    with_cmake -DBUILD_CXXLIBS=OFF -DBUILD_PROGRAMS=OFF -DBUILD_EXAMPLES=OFF -DBUILD_DOCS=OFF \
        -DINSTALL_MANPAGES=OFF -DWITH_STACK_PROTECTOR=OFF
}

# Debian's corrections ask for the value that its own build gives XML_DTD.
build_expat()
{
    cd expat
    sed -i 's/^#cmakedefine XML_DTD$/& 1/' expat_config.h.cmake
    with_cmake -DEXPAT_BUILD_TOOLS=OFF -DEXPAT_BUILD_EXAMPLES=OFF -DEXPAT_BUILD_TESTS=OFF -DEXPAT_BUILD_DOCS=OFF \
        -DEXPAT_SHARED_LIBS=OFF
    cd ..
}

build_googletest()
{
    with_cmake
}

# Only headers.
build_armadillo()
{
    cp -r include/armadillo include/armadillo_bits "$prefix/include"
}

# The eigenvalue routine and all that it calls, LAPACK's and BLAS's: each round compiles what the objects so far lack. As
# Debian builds them, so that the results are the same to the bit; the machine's constants unoptimised, as they must be.
build_lapack()
{
    local wanted=dgeev routine file flags
    local compile="$mingw-gfortran-posix -frecursive -ffp-contract=off -J../objects -c"
    mkdir ../objects

    for routine in la_constants la_xisnan; do # modules that others use
        quietly $compile -O2 SRC/$routine.?90 -o ../objects/$routine.o
    done

    while [ -n "$wanted" ]; do
        for routine in $wanted; do
            flags=-O2
            file=$(find SRC BLAS/SRC INSTALL -name "$routine.f" -o -name "$routine.f90" | head -1)
            [ "$routine" != dlamch ] || flags=-O0
            [ -n "$file" ] || {
                echo "$0: there is no $routine in LAPACK's source" >&2
                exit 1
            }
            echo "$compile $flags $file -o ../objects/$routine.o"
        done >../commands
        quietly xargs -a ../commands -d '\n' -P "$(nproc)" -I{} sh -c '{}'
        wanted=$(
            $mingw-nm ../objects/*.o | awk '$1 == "U" { undefined[$2] } $2 ~ /^[TDRB]$/ { defined[$3] }
                END { for (name in undefined) if (!(name in defined)) print name }' |
                sed -n 's/^\([a-z0-9]*\)_$/\1/p'
        )
    done

    $mingw-ar rcs "$prefix/lib/liblapack_dgeev.a" ../objects/*.o
}

# Functions of mathematics that give glibc's results to the bit: both libraries have them from the same hand. glibc chooses
# by the processor between two forms, so here they are compiled twice as well, with names of their own
# (cmake/windows/musl/dispatch.c). MinGW's own go by the x87 and round some results otherwise.
build_musl()
{
    local shims=$project/cmake/windows/musl form name flags names
    local files="exp exp_data log log_data pow pow_data log2f log2f_data powf powf_data exp2f_data __math_divzero __math_invalid
        __math_oflow __math_uflow __math_xflow __math_divzerof __math_invalidf __math_oflowf __math_uflowf __math_xflowf"

    for form in fma sse2; do
        flags="-ffp-contract=off"
        [ $form = sse2 ] || flags="-mavx2 -mfma -ffp-contract=fast"
        names=
        for name in exp log pow log2f powf __exp_data __log_data __pow_log_data __log2f_data __powf_log2_data __exp2f_data \
            __math_{divzero,invalid,oflow,uflow,xflow}{,f}; do
            names+=" -D$name=${form}_$name"
        done
        for name in $files; do
            quietly $mingw-gcc-posix -O2 $flags $names -std=gnu99 -Wa,-muse-unaligned-vector-move -I"$shims" -Isrc/internal \
                -Iarch/generic -include features.h -c "src/math/$name.c" -o "../$form-$name.o"
        done
    done

    # These have one form in glibc.
    quietly $mingw-gcc-posix -O2 -ffp-contract=off -std=gnu99 -I"$shims" -Isrc/internal -Iarch/generic -include features.h \
        -c src/math/expm1.c -o ../expm1.o
    quietly $mingw-gcc-posix -O2 -ffp-contract=off -fno-builtin -c "$shims/dispatch.c" -o ../dispatch.o
    rm -f "$prefix/lib/libtarvik_mathematics.a"
    quietly $mingw-ar rcs "$prefix/lib/libtarvik_mathematics.a" ../*.o
}
