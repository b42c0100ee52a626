#!/usr/bin/env bash
# gst-inspect-1.0 finds zoimgconvert (plugin directory on GST_PLUGIN_PATH)
# and lists its caps and properties.
set -euo pipefail
inspect=$1
out=$("$inspect" zoimgconvert)
fail=0
for want in 'video/x-bayer' 'bggr12le' 'rggb16le' 'grbg10le' 'gbrg12p' 'YUY2' 'GRAY16_LE' \
    'BGRx' 'RGBx' 'RGB16' 'interpolate' 'red-gain' 'green-gain' 'blue-gain' 'threads' \
    'Boolean. Default: true' 'Range: 0 - 64 Default: 0'; do
    grep -qF -- "$want" <<<"$out" || { echo "gst-inspect-1.0 zoimgconvert does not show '$want'" >&2; fail=1; }
done
# No 14-bit Bayer: the library has no type for it.
if grep -qF 'bggr14le' <<<"$out"; then echo "bggr14le offered" >&2; fail=1; fi
exit $fail
