#!/usr/bin/env bash
# Runs the zoimg tool on tiny frames and checks its output bytes and its exit
# statuses for bad input. Usage: ToolTest.sh ZOIMG SCRATCH_DIR
set -euo pipefail
zoimg=$1
work=$2
rm -rf "$work" && mkdir -p "$work" && cd "$work"

failures=0
fail() { echo "FAIL: $*" >&2; failures=$((failures + 1)); }

# bytes FILE: the file's bytes as decimal numbers on one line.
bytes() { od -An -tu1 -v "$1" | tr -s ' \n' ' ' | sed 's/^ //; s/ $//'; }
# frame FILE BYTE...: writes the bytes to FILE.
frame() { local f=$1; shift; printf "$(printf '\\%03o' "$@")" > "$f"; }
repeat() { local n=$1 v=$2 out=(); for ((i = 0; i < n; i++)); do out+=("$v"); done; echo "${out[@]}"; }

# expect_status CODE TEXT COMMAND...: the command exits with CODE and says TEXT on stderr.
expect_status() {
    local code=$1 text=$2; shift 2
    local status=0
    "$@" > out.txt 2> err.txt || status=$?
    if [[ $status -ne $code ]]; then fail "$* exited $status, expected $code: $(cat err.txt)"; return; fi
    if [[ -n $text ]] && ! grep -qF -- "$text" err.txt; then fail "$*: no '$text' in: $(cat err.txt)"; fi
}

# The catalogue: a header and 121 rows.
"$zoimg" types > types.txt
rows=$(tail -n +2 types.txt | grep -c '^0x')
[[ $rows -eq 121 ]] || fail "zoimg types listed $rows types"
grep -q '^0x02020013  Bayer RGGB 8-bits, Dual Left Inverted+Right Output (deprecated) ' types.txt ||
    fail "zoimg types lacks the deprecated 0x02020013 row"
grep -qE '^0x00420012 +Bayer RGB 12-bits, Packed +12 +2 +yes +Packed$' types.txt ||
    fail "zoimg types: wrong row for 0x00420012"

# Identity 8-bit gray, 5 x 3, raw out and PGM out; the type given three ways.
gray=(0 1 2 3 4 100 101 102 103 104 250 251 252 253 255)
frame gray.raw "${gray[@]}"
"$zoimg" convert --from "grayscale 8-BITS" --to 0x10001 --width 5 --height 3 gray.raw copy.raw
[[ $(bytes copy.raw) == "${gray[*]}" ]] || fail "identity copy: $(bytes copy.raw)"
"$zoimg" convert --from Gray8 --to ZoGrayscale8 --width 5 --height 3 gray.raw copy.pgm
[[ $(head -c 11 copy.pgm | tr '\n' ' ') == "P5 5 3 255 " ]] || fail "PGM header: $(head -c 11 copy.pgm)"
[[ $(tail -c 15 copy.pgm > pixels.raw && bytes pixels.raw) == "${gray[*]}" ]] || fail "PGM pixels"

# 8-bit gray to RGB24 as PPM: every channel repeats the gray value.
if "$zoimg" converters Gray8 | grep -q -- '-> 0x00020002'; then
    "$zoimg" convert --from Gray8 --to RGB24 --width 5 --height 3 gray.raw rgb.ppm
    expected=(); for v in "${gray[@]}"; do expected+=("$v" "$v" "$v"); done
    tail -c 45 rgb.ppm > rgb.raw
    [[ $(bytes rgb.raw) == "${expected[*]}" ]] || fail "gray to RGB24 PPM: $(bytes rgb.raw)"
    # The same as raw bytes when OUT is not an image name.
    "$zoimg" convert --from Gray8 --to 0x20002 --width 5 --height 3 gray.raw rgb.bin
    [[ $(bytes rgb.bin) == "${expected[*]}" ]] || fail "gray to RGB24 raw"
fi

# 8-bit Bayer, GRBG, 4 x 4 of uniform colour planes (red 200, green 100, blue
# 50): every output pixel of the 2x2 replication is that colour; a red gain
# of 0.5 halves red; BGR24 swaps the channels.
if "$zoimg" converters BayerRGB8 | grep -q -- '-> 0x00020002'; then
    row0=(100 200 100 200) row1=(50 100 50 100)
    frame bayer.raw "${row0[@]}" "${row1[@]}" "${row0[@]}" "${row1[@]}"
    "$zoimg" convert --from BayerRGB8 --to RGB24 --width 4 --height 4 --flags bayer-grbg bayer.raw bayer.bin
    [[ $(bytes bayer.bin) == "$(repeat 16 '200 100 50')" ]] || fail "Bayer GRBG: $(bytes bayer.bin)"
    "$zoimg" convert --from 0x20010 --to BGR24 --width 4 --height 4 --flags bayer-grbg bayer.raw bgr.bin
    [[ $(bytes bgr.bin) == "$(repeat 16 '50 100 200')" ]] || fail "Bayer GRBG to BGR24: $(bytes bgr.bin)"
    "$zoimg" convert --from BayerRGB8 --to RGB24 --width 4 --height 4 --flags bayer-grbg --gains 0.5,1,1 \
        bayer.raw gain.bin
    [[ $(bytes gain.bin) == "$(repeat 16 '100 100 50')" ]] || fail "Bayer with gains: $(bytes gain.bin)"
    # Read as BGGR the same bytes put blue where red is: 50 and 200 swap.
    "$zoimg" convert --from BayerRGB8 --to RGB24 --width 4 --height 4 --flags 0x80 bayer.raw bggr.bin
    # (BGGR: row 0 is B G, so the byte 100 at even columns is blue.)
    [[ $(bytes bggr.bin) != "$(bytes bayer.bin)" ]] || fail "the Bayer pattern flag changed nothing"
fi

# Bad input: a clear message and a non-zero status.
expect_status 2 "unknown pixel type 'NoSuchType'" "$zoimg" convert --from NoSuchType --to RGB24 --width 5 --height 3 gray.raw x.raw
expect_status 2 "ambiguous" "$zoimg" convert --from Gray8 --to "RGB 32-bits" --width 5 --height 3 gray.raw x.raw
expect_status 1 "no converter from 0x00010001" "$zoimg" convert --from Gray8 --to YUV8 --width 5 --height 3 gray.raw x.raw
expect_status 1 "has 15 bytes, but a 5 x 4 frame" "$zoimg" convert --from Gray8 --to Gray8 --width 5 --height 4 gray.raw x.raw
expect_status 1 "cannot open 'missing.raw'" "$zoimg" convert --from Gray8 --to Gray8 --width 5 --height 3 missing.raw x.raw
expect_status 2 "convert needs" "$zoimg" convert --from Gray8 --to Gray8 --width 5 gray.raw x.raw
expect_status 2 "--width needs" "$zoimg" convert --from Gray8 --to Gray8 --width 0 --height 3 gray.raw x.raw
expect_status 2 "unknown flag 'sideways'" "$zoimg" convert --from Gray8 --to Gray8 --width 5 --height 3 --flags sideways gray.raw x.raw
expect_status 2 "--gains" "$zoimg" convert --from Gray8 --to Gray8 --width 5 --height 3 --gains 1,-1,1 gray.raw x.raw
expect_status 2 "unknown command" "$zoimg" frobnicate
[[ ! -e x.raw ]] || fail "a failed conversion wrote its output"
if "$zoimg" converters 0x420011 | grep -q -- '-> 0x00020011'; then
    frame packed.raw 1 2 3 4 5 6
    expect_status 1 "cannot be written as an image" "$zoimg" convert --from 0x420011 --to 0x20011 --width 4 --height 1 packed.raw x.png
fi

# Every registered conversion runs through zoimg convert on an 8 x 4 frame of
# random bytes, sized from the message for a wrong size, and writes an image
# or, for the destinations that are not images, raw bytes.
head -c 65536 /dev/urandom > random.bin
: > empty.raw
pairs=0
while read -r source _ destination _; do
    pairs=$((pairs + 1))
    size=$("$zoimg" convert --from "$source" --to "$destination" --width 8 --height 4 empty.raw x.raw 2>&1 |
        sed -n 's/.* takes \([0-9]*\) .*/\1/p' || true)
    [[ -n $size ]] || { fail "$source -> $destination: no frame size in the size message"; continue; }
    head -c "$size" random.bin > frame.raw
    status=0
    "$zoimg" convert --from "$source" --to "$destination" --width 8 --height 4 frame.raw out.png 2> err.txt || status=$?
    if [[ $status -ne 0 ]]; then
        grep -q 'cannot be written as an image' err.txt || { fail "$source -> $destination: $(cat err.txt)"; continue; }
        "$zoimg" convert --from "$source" --to "$destination" --width 8 --height 4 frame.raw out.raw ||
            fail "$source -> $destination as raw bytes"
    fi
done < <("$zoimg" converters | grep '^0x')
[[ $pairs -gt 0 ]] || fail "zoimg converters listed nothing"

# The converter reference starts with its title and lists 8-bit gray.
"$zoimg" docs > converters.md
head -1 converters.md | grep -qx '# Converters' || fail "zoimg docs: no title"
grep -q '^## 0x00010001 Grayscale 8-bits$' converters.md || fail "zoimg docs: no 8-bit gray section"

# The demo: every conversion runs once the library has the converters, with
# PSNR figures that rule out a wrong Bayer phase or chroma order (those fall
# far below 20 dB on this chart).
demo_status=0
"$zoimg" demo demo > demo.txt 2>&1 || demo_status=$?
for f in chart bayer8-grbg.raw bayer12-packed-grbg.raw yuv422.raw report.txt; do
    [[ -e demo/$f || -e demo/$f.png || -e demo/$f.ppm ]] || fail "zoimg demo did not write $f"
done
if "$zoimg" converters 0x420012 | grep -q -- '-> 0x00020002'; then
    [[ $demo_status -eq 0 ]] || fail "zoimg demo exited $demo_status: $(cat demo.txt)"
    psnr=$(awk '$1 ~ /\.(png|ppm)$/ && $1 != "chart.png" { print $3, $4 }' demo/report.txt)
    [[ $(wc -w <<<"$psnr") -eq 10 ]] || fail "zoimg demo report: $(cat demo/report.txt)"
    for p in $psnr; do
        awk -v p="$p" 'BEGIN { exit !(p == "inf" || p + 0 >= 22) }' || fail "zoimg demo: PSNR $p dB"
    done
    # The report's command line reproduces the demo's image.
    (cd demo && "$zoimg" convert --from 0x00420012 --to RGB24 --width 384 --height 256 \
        --flags bayer-grbg,interpolate bayer12-packed-grbg.raw again.png) || fail "the report's command failed"
    for ext in png ppm; do
        [[ -e demo/again.$ext ]] && { cmp -s demo/again.$ext demo/bayer12packed-interpolated.$ext ||
            fail "zoimg convert and zoimg demo disagree"; }
    done
fi

if [[ $failures -ne 0 ]]; then echo "$failures checks failed" >&2; exit 1; fi
echo "zoimg checks passed"
