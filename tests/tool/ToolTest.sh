#!/usr/bin/env bash
# Runs the zoimg tool on tiny frames and checks its output bytes and its exit
# statuses for bad input. Usage: ToolTest.sh ZOIMG SCRATCH_DIR [PNG_PROBE|-]
# (PNG_PROBE prints a PNG's bit depth, channels, sBIT and largest sample;
# "-" when zoimg is built without libpng).
set -euo pipefail
zoimg=$1
work=$2
probe=${3:--}
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
rows=$(sed -n '2,/^$/p' types.txt | grep -c '^0x')
[[ $rows -eq 121 ]] || fail "zoimg types listed $rows types"
grep -q '^0x02020013  BayerRGGB8 *Bayer RGGB 8-bits, Dual Left Inverted+Right Output (deprecated) ' types.txt ||
    fail "zoimg types lacks the deprecated 0x02020013 row"
# Class beside each ID, and the types no conversion starts from marked.
for row in '0x00420012 BayerRGB12 .*Packed +12 +2 +yes +yes +Packed$' '0x00020003 RGB32 RGB 32-bits ' \
    '0x00020007 BGR32 RGB 32-bits ' '0x00440003 YUV8_444 .* NONE +Packed$' '0x00010001 Grayscale8 .* yes +-$'; do
    grep -qE "^$row" <(tr -s ' ' < types.txt) || fail "zoimg types: no row like '$row'"
done
grep -q '^  0x00040003 (the bytes of 0x00440003 ' types.txt || fail "zoimg types: 0x00040003 not explained"

# Identity 8-bit gray, 5 x 3, raw out and PGM out; the type given three ways.
gray=(0 1 2 3 4 100 101 102 103 104 250 251 252 253 255)
frame gray.raw "${gray[@]}"
"$zoimg" convert --from "grayscale 8-BITS" --to 0x10001 --width 5 --height 3 gray.raw copy.raw
[[ $(bytes copy.raw) == "${gray[*]}" ]] || fail "identity copy: $(bytes copy.raw)"
"$zoimg" convert --from Gray8 --to ZoGrayscale8 --width 5 --height 3 gray.raw copy.pgm
[[ $(head -c 11 copy.pgm | tr '\n' ' ') == "P5 5 3 255 " ]] || fail "PGM header: $(head -c 11 copy.pgm)"
[[ $(tail -c 15 copy.pgm > pixels.raw && bytes pixels.raw) == "${gray[*]}" ]] || fail "PGM pixels"

# 8-bit gray to RGB24 as PPM: every channel repeats the gray value.
{
    "$zoimg" convert --from Gray8 --to RGB24 --width 5 --height 3 gray.raw rgb.ppm
    expected=(); for v in "${gray[@]}"; do expected+=("$v" "$v" "$v"); done
    tail -c 45 rgb.ppm > rgb.raw
    [[ $(bytes rgb.raw) == "${expected[*]}" ]] || fail "gray to RGB24 PPM: $(bytes rgb.raw)"
    # The same as raw bytes when OUT is not an image name.
    "$zoimg" convert --from Gray8 --to 0x20002 --width 5 --height 3 gray.raw rgb.bin
    [[ $(bytes rgb.bin) == "${expected[*]}" ]] || fail "gray to RGB24 raw"
}

# 8-bit Bayer, GRBG, 4 x 4 of uniform colour planes (red 200, green 100, blue
# 50): every output pixel of the 2x2 replication is that colour; a red gain
# of 0.5 halves red; BGR24 swaps the channels.
{
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
}

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
frame packed.raw 1 2 3 4 5 6
expect_status 1 "cannot be written as an image" "$zoimg" convert --from 0x420011 --to 0x20011 --width 4 --height 1 packed.raw x.png

img=png; [[ $probe != - ]] || img=ppm

# Every registered conversion runs through zoimg convert on an 8 x 13 frame of
# random bytes (odd height: the replicating Bayer line past the frame), sized
# from the message for a wrong size, and writes an image or, for the
# destinations that are not images, raw bytes; three bands on three threads
# give the same bytes as one.
head -c 65536 /dev/urandom > random.bin
: > empty.raw
pairs=0
while read -r source _ destination _; do
    pairs=$((pairs + 1))
    args=(--from "$source" --to "$destination" --width 8 --height 13)
    size=$("$zoimg" convert "${args[@]}" empty.raw x.raw 2>&1 | sed -n 's/.* takes \([0-9]*\) .*/\1/p' || true)
    [[ -n $size ]] || { fail "$source -> $destination: no frame size in the size message"; continue; }
    head -c "$size" random.bin > frame.raw
    status=0
    "$zoimg" convert "${args[@]}" frame.raw "out.$img" 2> err.txt || status=$?
    if [[ $status -ne 0 ]] && ! grep -q 'cannot be written as an image' err.txt; then
        fail "$source -> $destination: $(cat err.txt)"; continue
    fi
    "$zoimg" convert "${args[@]}" frame.raw one.raw 2> /dev/null || fail "$source -> $destination as raw bytes"
    "$zoimg" convert "${args[@]}" --threads 3 frame.raw three.raw 2> /dev/null && cmp -s one.raw three.raw ||
        fail "$source -> $destination: --threads 3 differs"
done < <("$zoimg" converters | grep '^0x')
[[ $pairs -eq 680 ]] || fail "zoimg converters listed $pairs conversions"

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
{
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
}

# ---- Contradictions and what zoimg says about them (status, message) ----
frame b8.raw $(repeat 4 '100 200 100 200 50 100 50 100')   # 4 x 8 GRBG: red 200, green 100, blue 50
while IFS='|' read -r code text args; do
    rm -f x.raw x.jpg
    eval "expect_status $code \"$text\" \"\$zoimg\" convert --width 4 --height 8 $args"
    [[ ! -e x.raw && ! -e x.jpg ]] || fail "'$args' wrote its output"
done <<'END'
2|more than one Bayer pattern|--from BayerRGB8 --to RGB24 --flags bayer-grbg,bayer-rggb b8.raw x.raw
2|--flags is given twice|--from BayerRGB8 --to RGB24 --flags bayer-grbg --flags interpolate b8.raw x.raw
2|--width is given twice|--from BayerRGB8 --to RGB24 --width 4 b8.raw x.raw
2|is the bayer-rggb pattern, but --flags bayer-gbrg says bayer-gbrg|--from BayerRG8 --to RGB24 --flags bayer-gbrg b8.raw x.raw
2|cannot write '.jpg' files|--from BayerRGB8 --to RGB24 b8.raw x.jpg
2|--threads needs|--from BayerRGB8 --to RGB24 --threads 0 b8.raw x.raw
2|unknown option -o|--from BayerRGB8 --to RGB24 b8.raw -o x.raw
2|class RGB32) and 0x00020007 (class BGR32)|--from Gray8 --to 'RGB 32-bits' b8.raw x.raw
1|0x00440003 (YUV 8-bits 4:4:4, Packed) is the source of no conversion; the nearest IDs that have converters are 0x00040003|--from 0x440003 --to RGB24 b8.raw x.raw
1|frame of Bayer RGB 8-bits takes 32 (4 a line), so 2 frames take 64|--from BayerRGB8 --to RGB24 --frames 2 b8.raw x.raw
END

# Warnings and notes on stderr, with the conversion carried out. Each line:
# expected text (or !text: must not appear) | arguments.
while IFS='|' read -r text args; do
    eval "\"\$zoimg\" convert --width 4 --height 8 $args" 2> err.txt || { fail "$args: $(cat err.txt)"; continue; }
    if [[ $text == !* ]]; then
        if grep -qF -- "${text#!}" err.txt; then fail "$args: said '${text#!}'"; fi
    else
        grep -qF -- "$text" err.txt || fail "$args: no '$text' in: $(cat err.txt)"
    fi
done <<'END'
reads 0x00020010 as GRBG, its default|--from BayerRGB8 --to RGB24 b8.raw x.raw
reads 0x00020013 as RGGB, its default|--from 0x20013 --to RGB24 b8.raw x.raw
!no Bayer pattern given|--from BayerRGB8 --to RGB24 --flags bayer-rggb b8.raw x.raw
!no Bayer pattern given|--from BayerRG8 --to RGB24 --flags bayer-rggb b8.raw x.raw
--gains do nothing here: ZoGrayscale8ToRGB24 applies no filter|--from Gray8 --to RGB24 --gains 2,1,1 b8.raw x.raw
!--gains do nothing|--from BayerRGB8 --to RGB24 --flags bayer-grbg --gains 2,1,1 b8.raw x.raw
Bayer pattern and interpolate flags do nothing|--from Gray8 --to RGB24 --flags interpolate b8.raw x.raw
wrote x.raw: 4 x 8 RGB 24-bits in |--from BayerRGB8 --to RGB24 --flags bayer-grbg b8.raw x.raw
END
head -c 16 /dev/zero > b16.raw
"$zoimg" convert --from 0x20014 --to RGB24 --width 4 --height 2 b16.raw x.raw 2> err.txt
grep -qF 'reads 0x00020014 as GRBG' err.txt || fail "deprecated RGGB 10-bit default: $(cat err.txt)"
# A PFNC name is its type and pattern: BayerRG8 is 8-bit Bayer read as RGGB.
"$zoimg" convert --from BayerRG8 --to RGB24 --width 4 --height 8 b8.raw pfnc.raw 2> /dev/null
"$zoimg" convert --from BayerRGB8 --to RGB24 --width 4 --height 8 --flags bayer-rggb b8.raw rggb.raw 2> /dev/null
cmp -s pfnc.raw rggb.raw || fail "--from BayerRG8 differs from BayerRGB8 with bayer-rggb"
"$zoimg" types --pfnc > pfnc.txt
grep -qE '^BayerRG8 +0x01080009 +0x000200(10|13) +bayer-rggb ' pfnc.txt || fail "types --pfnc: no BayerRG8 row"
"$zoimg" --version | grep -qE '^zoimg [0-9]+\.[0-9]+\.[0-9]+' || fail "--version: $("$zoimg" --version)"

# ---- Odd height in replicating mode: the last row has the colours of the row
# above, directly and through a chain (packed 12-bit Bayer), while the other
# rows are the library's own bytes. ----
frame b5.raw 100 200 100 200 50 100 50 100 100 200 100 200 50 100 50 100 100 200 100 200
"$zoimg" convert --from BayerRGB8 --to RGB24 --width 4 --height 5 --flags bayer-grbg b5.raw odd.raw 2> /dev/null
[[ $(bytes odd.raw) == "$(repeat 20 '200 100 50')" ]] || fail "odd height, last row: $(bytes odd.raw)"
"$zoimg" convert --from BayerRGB8 --to 0x820002 --width 4 --height 5 --flags bayer-grbg b5.raw planar.raw 2> /dev/null
[[ $(bytes planar.raw) == "$(repeat 20 200) $(repeat 20 100) $(repeat 20 50)" ]] ||
    fail "odd height, Bayer to planar (Bayer first in the chain): $(bytes planar.raw)"
# 12-bit packed GRBG, groups (A, B) = (G, R) on even lines, (B, G) on odd
# ones, with G 0x640, R 0xC80, B 0x320 (8-bit 100, 200, 50).
even=(0x40 0x06 0xC8) odd=(0x20 0x03 0x64)
frame p5.raw $(for l in 0 1 2 3 4; do
    if ((l % 2)); then for g in 0 1; do printf '%d ' "${odd[@]}"; done
    else for g in 0 1; do printf '%d ' "${even[@]}"; done; fi; done)
"$zoimg" convert --from 0x420012 --to RGB24 --width 4 --height 5 --flags bayer-grbg p5.raw podd.raw 2> /dev/null
[[ $(bytes podd.raw) == "$(repeat 20 '200 100 50')" ]] || fail "odd height through a chain: $(bytes podd.raw)"
head -c 24 p5.raw > p4.raw
"$zoimg" convert --from 0x420012 --to RGB24 --width 4 --height 4 --flags bayer-grbg p4.raw peven.raw 2> /dev/null
head -c 48 podd.raw > podd4.raw
cmp -s peven.raw podd4.raw || fail "odd-height chain: rows above the last differ from the library's"

# ---- 16-bit images: scaled to the full range, sBIT = significant bits; raw
# output keeps the library's bytes. White 12-bit Bayer (4095) to RGB48. ----
frame w12.raw $(repeat 16 '255 15')
"$zoimg" convert --from BayerRGB12 --to RGB48 --width 4 --height 4 --flags bayer-grbg w12.raw w48.raw 2> /dev/null
[[ $(bytes w48.raw) == "$(repeat 48 '255 15')" ]] || fail "RGB48 raw bytes: $(bytes w48.raw)"
frame w12n.raw $(repeat 16 '240 255')
frame wp.raw $(repeat 24 255)   # packed 10- or 12-bit, every sample full scale
while IFS='|' read -r expected args; do
    "$zoimg" convert --width 4 --height 4 $args x.$img 2> /dev/null || { fail "$args"; continue; }
    if [[ $probe == - ]]; then
        [[ $(sed -n 3p x.ppm) == "${expected##* }" ]] || fail "$args: PPM maxval $(sed -n 3p x.ppm)"
    else
        read -r depth channels sbit max < <("$probe" x.png)
        [[ "$depth $sbit" == "${expected% *}" && $max -gt 60000 ]] ||
            fail "$args: PNG depth $depth, sBIT $sbit, maximum $max (expected '$expected')"
    fi
done <<'END'
16 12 4095|--from BayerRGB12 --to RGB48 --flags bayer-grbg w12.raw
16 12 4095|--from 0x120012 --to 0x120004 --flags bayer-grbg w12n.raw
16 12 4095|--from 0x410003 --to Gray12 wp.raw
16 10 1023|--from 0x410002 --to Gray10 wp.raw
END

# ---- Standard input and output, several frames, progress ----
frame g1.raw $(seq 0 19)
frame g2.raw $(seq 100 119)
frame g3.raw $(seq 200 219)
cat g1.raw g2.raw g3.raw > g123.raw
for f in 1 2 3; do
    "$zoimg" convert --from Gray8 --to RGB24 --width 5 --height 4 g$f.raw s$f.raw 2> /dev/null
    "$zoimg" convert --from Gray8 --to RGB24 --width 5 --height 4 g$f.raw s$f.$img 2> /dev/null
done
cat s1.raw s2.raw s3.raw > s123.raw
"$zoimg" convert --from Gray8 --to RGB24 --width 5 --height 4 - - < g1.raw > piped.raw 2> err.txt
cmp -s piped.raw s1.raw || fail "stdin to stdout differs from files"
grep -q '^wrote standard output: 5 x 4 RGB 24-bits in ' err.txt || fail "stdout summary: $(cat err.txt)"
cat g123.raw | "$zoimg" convert --from Gray8 --to RGB24 --width 5 --height 4 - multi.raw 2> err.txt
cmp -s multi.raw s123.raw || fail "three frames from a pipe as one raw stream"
grep -q '^wrote multi.raw: 3 frames of 5 x 4 RGB 24-bits in ' err.txt || fail "multi-frame summary: $(cat err.txt)"
"$zoimg" convert --from Gray8 --to RGB24 --width 5 --height 4 --frames 3 --threads 2 g123.raw m.$img 2> err.txt
for f in 1 2 3; do cmp -s m-000$((f - 1)).$img s$f.$img || fail "frame $f as m-000$((f - 1)).$img"; done
grep -q "^wrote m-0000.$img ... m-0002.$img: 3 frames of " err.txt || fail "numbered images: $(cat err.txt)"
cat g1.raw | "$zoimg" convert --from Gray8 --to RGB24 --width 5 --height 4 - one.$img 2> /dev/null
cmp -s one.$img s1.$img || fail "one frame from a pipe is not written as one image"
cat g123.raw b16.raw > g123b.raw
expect_status 1 "no whole number of frames" "$zoimg" convert --from Gray8 --to RGB24 --width 5 --height 4 - x.raw < g123b.raw
[[ $(tr -dc '\r' < err.txt | wc -c) -eq 0 ]] || fail "a progress line on a stderr that is no terminal"
script -qec "'$zoimg' convert --from Gray8 --to Gray8 --width 64 --height 64 --frames 200000 /dev/zero /dev/null" \
    /dev/null > tty.txt 2>&1 < /dev/null || true
grep -qaE 'frame [0-9]+ of 200000' tty.txt || fail "no progress line on a terminal: $(head -c 200 tty.txt)"

# ---- The converter reference: the new columns and the quirks in their rows ----
"$zoimg" docs > converters.md
while IFS= read -r row; do
    grep -qE -- "$row" converters.md || fail "zoimg docs: no row like '$row'"
done <<'END'
^\| Destination \| Name \| Converter \| Bytes/px in \| Bytes/px out \| Caveats \|$
^\| 0x00020001 \| .*ZoRGB32ToRGB16` \| 4 \| 2 \| reads 4 bytes a pixel, not 3 \(RGB8_3, 0x0002000A, is the 3-byte type\) \|$
^\| 0x00020002 \| .*ZoRGB16ToRGB24` \| 2 \| 3 \| RGB16 source: red comes out 0 and blue carries the word's red bits \|$
no pattern flag: GRBG although the name says RGGB
replicating GRBG: pixels 2 and 3 of every 8 take red from pixel 4
replicating, odd height: reads and writes one line past the area
^\| 0x00010002 \| .*\| 1.5 \| 2 \| depth change not by shift: A's top bit gives 0x0000, B's 0x0000 \(a shift gives 0x0200\)
^Not a catalogue type: the catalogue lists these bytes as 0x00440003
END
# Which the library does: RGB16 pure red (0xF800) to RGB24 gives red 0, blue 248.
frame red16.raw 0 248
"$zoimg" convert --from 0x20001 --to RGB24 --width 1 --height 1 red16.raw red24.raw 2> /dev/null
[[ $(bytes red24.raw) == "0 0 248" ]] || fail "RGB16 to RGB24 of pure red: $(bytes red24.raw)"

if [[ $failures -ne 0 ]]; then echo "$failures checks failed" >&2; exit 1; fi
echo "zoimg checks passed"
