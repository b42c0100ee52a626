#!/usr/bin/env bash
# Checks that every flat function declared in include/ZoImgLibC.h and
# include/ZoImgLibExt.h is exported by the built library under its plain,
# undecorated name.
#
#   bash .ci/check-exports.sh [LIBRARY...]
#
# A .so is read with `nm -D --defined-only`, a .dll with
# `x86_64-w64-mingw32-objdump -p`. Both must besides export nothing but the
# flat functions and the library's own classes (no C++ runtime internals);
# a .dll must import no MinGW runtime DLL.
# Without arguments: checks <repo>/build/libZoImgLib64.so (the usual native
# build) or, when there is none, builds the shared library alone in
# $ZO_EXPORTS_BUILD_DIR (default <repo>/build-exports); and checks
# <repo>/build-windows/bin/ZoImgLib64.dll too if it exists.
set -euo pipefail

repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
headers=("$repo/include/ZoImgLibC.h" "$repo/include/ZoImgLibExt.h")
failures=0

fail() { printf '[exports] FAIL: %s\n' "$*" >&2; failures=$((failures + 1)); }

# The flat functions: the name before the first '(' of each ZO_API line.
mapfile -t flat < <(cat "${headers[@]}" | grep -E '^ZO_API' |
    sed -E 's/^[^(]*[^A-Za-z0-9_](Zo[A-Za-z0-9_]+)[[:space:]]*\(.*/\1/')
declared=$(cat "${headers[@]}" | grep -cE '^ZO_API')
for name in "${flat[@]}"; do
    [[ $name =~ ^Zo[A-Za-z0-9]+_[A-Za-z0-9]+$ ]] || { fail "cannot read a function name in: $name"; exit 1; }
done
if [ "${#flat[@]}" -eq 0 ] || [ "${#flat[@]}" -ne "$declared" ]; then
    fail "read ${#flat[@]} flat functions from $declared ZO_API lines of ${headers[*]}"
    exit 1
fi

# Prints the missing flat functions given the exported names on stdin.
missing_from() {
    local exported
    exported=$(sort -u)
    for name in "${flat[@]}"; do
        grep -qxF "$name" <<<"$exported" || echo "$name"
    done
}

check_so() {
    local lib=$1 missing others
    missing=$(nm -D --defined-only "$lib" | awk '$2 == "T" { print $3 }' | missing_from)
    [ -z "$missing" ] || fail "$lib does not export: $(echo $missing)"
    others=$(nm -D --defined-only "$lib" | awk '{ print $3 }' | grep -vxF -f <(printf '%s\n' "${flat[@]}") |
        grep -vE "$own_class" || true)
    [ -z "$others" ] || fail "$lib exports more than the flat functions and the library's classes: $(echo $others | head -c 2000)"
}

# Mangled names of the library's own classes (members, vtables, type info,
# thunks): the first name after the prefix starts with Zo.
own_class='^_Z(T[VIS])?(Th?n?[0-9]+_|Tv[0-9n]+_[0-9n]+_)?N?[rVK]*[0-9]+Zo'

check_dll() {
    local dll=$1 dump exports missing others imports
    local objdump=x86_64-w64-mingw32-objdump
    command -v "$objdump" >/dev/null || { fail "$objdump not found (binutils-mingw-w64-x86-64)"; return; }
    dump=$("$objdump" -p "$dll")
    exports=$(sed -n '/^\[Ordinal\/Name Pointer\] Table/,/^$/p' <<<"$dump" |
        sed -nE 's/^[[:space:]]*\[[[:space:]]*[0-9]+\][[:space:]]+([^[:space:]]+).*/\1/p')
    missing=$(missing_from <<<"$exports")
    [ -z "$missing" ] || fail "$dll does not export: $(echo $missing)"
    others=$(grep -vxF -f <(printf '%s\n' "${flat[@]}") <<<"$exports" | grep -vE "$own_class" || true)
    [ -z "$others" ] || fail "$dll exports more than the flat functions and the library's classes: $(echo $others | head -c 2000)"
    imports=$(sed -nE 's/^[[:space:]]*DLL Name: (.*)$/\1/p' <<<"$dump")
    if grep -qiE '^lib.*\.dll$' <<<"$imports"; then
        fail "$dll needs MinGW runtime DLLs: $(echo $imports)"
    fi
    printf '[exports] %s: %d exports, imports %s\n' "$dll" "$(wc -l <<<"$exports")" "$(echo $imports)"
}

libs=("$@")
if [ ${#libs[@]} -eq 0 ]; then
    if [ -z "${ZO_EXPORTS_BUILD_DIR:-}" ] && [ -f "$repo/build/libZoImgLib64.so" ]; then
        libs+=("$repo/build/libZoImgLib64.so")
    else
        build=${ZO_EXPORTS_BUILD_DIR:-$repo/build-exports}
        cmake -S "$repo" -B "$build" -DCMAKE_BUILD_TYPE=Release \
            -DZO_BUILD_TESTS=OFF -DZO_BUILD_BENCH=OFF -DZO_BUILD_TOOLS=OFF >/dev/null
        cmake --build "$build" --target ZoImgLib64 -j"$(nproc 2>/dev/null || echo 2)" >/dev/null
        libs+=("$build/libZoImgLib64.so")
    fi
    [ -f "$repo/build-windows/bin/ZoImgLib64.dll" ] && libs+=("$repo/build-windows/bin/ZoImgLib64.dll")
fi

for lib in "${libs[@]}"; do
    if [ ! -f "$lib" ]; then
        fail "no library at $lib"
        continue
    fi
    case "$lib" in
        *.dll) check_dll "$lib" ;;
        *) check_so "$lib" ;;
    esac
done

if [ "$failures" -ne 0 ]; then
    exit 1
fi
printf '[exports] all %d flat functions exported by: %s\n' "${#flat[@]}" "${libs[*]}"
