#!/usr/bin/env bash
# Cross-builds ZoImgLib64.dll and the test suite with MinGW-w64 and runs the
# whole suite under Wine with ctest. Exits non-zero if anything fails.
# Self-contained: run from anywhere as `bash .ci/windows.sh`.
#   ZO_WINDOWS_BUILD_DIR  build directory (default: <repo>/build-windows)
#   ZO_GOOGLETEST_SOURCE_DIR  GoogleTest sources (default: /usr/src/googletest)
set -euo pipefail

repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${ZO_WINDOWS_BUILD_DIR:-$repo/build-windows}
gtest_src=${ZO_GOOGLETEST_SOURCE_DIR:-/usr/src/googletest}
jobs=$(nproc 2>/dev/null || echo 2)

log() { printf '[windows] %s\n' "$*"; }

# ---- Tools: install only what is missing ----------------------------------
# The -posix compiler, not the g++-mingw-w64-x86-64 metapackage: the latter
# also brings the win32 thread model (no std::mutex in GCC 12). wine64 alone
# runs 64-bit programs; no recommends (no 32-bit Wine, fonts, Mono, Gecko).
missing=()
command -v x86_64-w64-mingw32-g++-posix >/dev/null || missing+=(g++-mingw-w64-x86-64-posix)
command -v x86_64-w64-mingw32-gcc-posix >/dev/null || missing+=(gcc-mingw-w64-x86-64-posix)
command -v wine >/dev/null || missing+=(wine)
[ -x /usr/lib/wine/wine64 ] || command -v wine64 >/dev/null || missing+=(wine64)
[ -f "$gtest_src/CMakeLists.txt" ] || missing+=(googletest)
command -v cmake >/dev/null || missing+=(cmake)
if [ ${#missing[@]} -gt 0 ]; then
    log "installing ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    sudo_cmd=()
    [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
    "${sudo_cmd[@]}" apt-get update -qq
    "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# ---- Wine prefix: boot it in the background while the build runs ---------
# A persistent wineserver and a finished wineboot keep the first test start
# from racing the prefix set-up, and keep Wine's background services from
# holding ctest's output pipe open.
mkdir -p "$build"
export WINEPREFIX="$build/wine-prefix"
mkdir -p "$WINEPREFIX"
export WINEDEBUG=-all,err+module
export WINEDLLOVERRIDES="mscoree,mshtml="   # no Mono/Gecko prompts
stop_wine() { wineserver -k >/dev/null 2>&1 || true; }
trap stop_wine EXIT
boot_log="$build/wine-boot.log"
(wineserver -p && timeout 300 wineboot -i) </dev/null >"$boot_log" 2>&1 &
boot_pid=$!

# ---- Cross-build ------------------------------------------------------------
# No benchmark program (Google Benchmark is not packaged for MinGW). The
# zoimg tool is built without PNG support (no libpng for MinGW): PPM/PGM only.
log "configuring $build"
cmake -S "$repo" -B "$build" \
    -DCMAKE_TOOLCHAIN_FILE="$repo/cmake/mingw-w64-x86_64.cmake" \
    -DCMAKE_BUILD_TYPE=Release \
    -DZO_BUILD_BENCH=OFF \
    -DZO_GOOGLETEST_SOURCE_DIR="$gtest_src" >/dev/null
log "building"
cmake --build "$build" -j"$jobs"

dll="$build/bin/ZoImgLib64.dll"
[ -f "$dll" ] || { log "missing $dll"; exit 1; }
bash "$repo/.ci/check-exports.sh" "$dll"

# ---- Run the suite under Wine -------------------------------------------------
if ! wait "$boot_pid"; then
    log "wine prefix boot failed:"
    cat "$boot_log" >&2
    exit 1
fi
# Test lists discovered while the prefix was still booting may be empty:
# discover again, and check that ctest sees every test the program lists.
rm -f "$build"/tests/*_tests.cmake
listed=$(wine "$build/bin/zoimg_tests.exe" --gtest_list_tests </dev/null | grep -c '^  ' || true)
total=$(cd "$build" && ctest -N | sed -n 's/^Total Tests: //p')
if [ -z "$total" ] || [ "$total" -le "$listed" ]; then
    log "ctest sees ${total:-no} tests, but zoimg_tests.exe alone lists $listed"
    exit 1
fi
log "running the suite under Wine ($total tests, $listed from zoimg_tests.exe)"
(cd "$build" && ctest --output-on-failure -j"$jobs" --timeout 300)
