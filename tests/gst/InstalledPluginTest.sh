#!/usr/bin/env bash
# cmake --install puts the plugin into the prefix's GStreamer plugin
# directory, and from there it loads (finding the installed library) and
# converts.
set -euo pipefail
build=$1 scratch=$2 libdir=$3 inspect=$4 launch=$5
rm -rf "$scratch"
cmake --install "$build" --prefix "$scratch/prefix" > /dev/null
plugins="$scratch/prefix/$libdir/gstreamer-1.0"
[ -f "$plugins/libgstzoimg.so" ] || { echo "no libgstzoimg.so in $plugins" >&2; exit 1; }
export GST_PLUGIN_PATH="$plugins" GST_REGISTRY_1_0="$scratch/registry.bin"
"$inspect" zoimgconvert | grep -E '^ +Filename' | grep -qF "$plugins/libgstzoimg.so" \
    || { echo "gst-inspect-1.0 does not load zoimgconvert from $plugins" >&2; exit 1; }
"$launch" -q videotestsrc num-buffers=2 ! video/x-raw,format=GRAY8,width=33,height=9 \
    ! zoimgconvert ! video/x-raw,format=BGRx ! fakesink
