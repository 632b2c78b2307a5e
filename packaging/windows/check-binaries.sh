#!/usr/bin/env bash
# Checks programs and modules for Windows without running them: check-binaries.sh FILE...
set -euo pipefail
objdump=x86_64-w64-mingw32-objdump

# What every Windows has. Anything else would have to be brought along.
windows_own="ADVAPI32 COMDLG32 DXGI GDI32 IMM32 KERNEL32 MSVCRT OLE32 OLEAUT32 SHELL32 SHLWAPI USER32 VERSION WININET WINMM
    WS2_32 WSOCK32"

fail()
{
    echo "$0: $1" >&2
    exit 1
}

for file in "$@"; do
    imports=$($objdump -p "$file" | sed -n 's/.*DLL Name: \(.*\)\.dll$/\U\1/Ip')
    [ -n "$imports" ] || fail "$file imports nothing, so it was not read rightly"

    for name in $imports; do
        grep -qw "$name" <<<"$windows_own" || fail "$file needs $name.dll, which is not Windows' own"
    done

    # Nothing but the entries may be visible: a host loads many modules into one process.
    exports=$($objdump -p "$file" | sed -n '/Ordinal\/Name Pointer/,/^$/s/^[[:space:]]*\[ *[0-9]*\] //p' | sort | xargs)
    [[ $file != *.vst3 || $exports = "ExitDll GetPluginFactory InitDll" ]] || fail "$file shows $exports"

    # The stack is aligned to 16 bytes: a move of 32 or 64 that trusts in more ends the process (cmake/WindowsToolchain.cmake).
    # The files must have such moves in the other form, or the search has found nothing for want of vectors.
    moves=$($objdump -d --no-show-raw-insn "$file" | grep -E '\bvmov[a-z0-9]+ .*(%[yz]mm.*\(|\(.*%[yz]mm)' || true)
    aligned=$(grep -E '\bvmov(ap[sd]|dqa(32|64)?) ' <<<"$moves" | head -3 || true)
    [ -n "$moves" ] || fail "$file has no moves of wide vectors, so its kernels are missing"
    [ -z "$aligned" ] || fail "$file trusts the stack to be aligned to more than 16 bytes:
$aligned"
done
