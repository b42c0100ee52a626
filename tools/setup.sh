#!/usr/bin/env bash
# Installs what building and testing ZoImgLib needs on Debian 12, and only
# what is missing: compiler, CMake, make, pkg-config, GoogleTest, Google
# Benchmark and libpng (for the zoimg tool's PNG output). Non-interactive;
# uses sudo only when not run as root.
set -euo pipefail

packages=(cmake g++ make pkg-config libgtest-dev libbenchmark-dev libpng-dev)
# clang and its sanitizer and libFuzzer runtimes: the second compiler of CI.
packages+=(clang libclang-rt-14-dev)
# The zoimglib Python package, its tests and the README example.
packages+=(python3 python3-numpy python3-pytest python3-pil)
# GStreamer element (gst/) and its tests: headers, gst-launch/gst-inspect, the
# stock elements the test pipelines use (appsrc, appsink, videotestsrc) and the
# display elements of the README's pipeline (videoconvert, autovideosink).
packages+=(libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev gstreamer1.0-tools
           gstreamer1.0-plugins-base gstreamer1.0-plugins-good)

installed() { dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q 'install ok installed'; }

missing=()
for p in "${packages[@]}"; do
    installed "$p" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "setup: need root or sudo to install: ${missing[*]}" >&2; exit 1; }
    sudo_cmd=(sudo)
fi
echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
