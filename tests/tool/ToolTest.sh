#!/usr/bin/env bash
# Runs the zoimg tool on tiny frames and checks its output bytes, its listings
# and its exit statuses and messages for bad input. Usage: ToolTest.sh ZOIMG
# SCRATCH_DIR [PNG_PROBE|-] (PNG_PROBE prints a PNG's bit depth, channels,
# sBIT and largest sample; "-" when zoimg is built without libpng).
set -euo pipefail
zoimg=$1
work=$2
probe=${3:--}
rm -rf "$work" && mkdir -p "$work" && cd "$work" && work=$PWD

# Failures are lines of one file, so that the background workers count too.
fail() { echo "FAIL: $*" >&2; echo "$*" >> "$work/failed"; }
# bytes FILE: the file's bytes as decimal numbers on one line.
bytes() { od -An -tu1 -v "$1" | tr -s ' \n' ' ' | sed 's/^ //; s/ $//'; }
# frame FILE BYTE...: writes the bytes to FILE.
frame() { local f=$1; shift; printf "$(printf '\\%03o' "$@")" > "$f"; }
repeat() { local n=$1 v=$2 out=(); for ((i = 0; i < n; i++)); do out+=("$v"); done; echo "${out[@]}"; }
t3() { local out=(); for v; do out+=("$v" "$v" "$v"); done; echo "${out[@]}"; }  # each value three times
img=png; [[ $probe != - ]] || img=ppm

# ---- Listings: the catalogue (121 rows; spaces squeezed in types1.txt), the
# PFNC names, the converter reference with its quirks, the version. ----
"$zoimg" types > types.txt
tr -s ' ' < types.txt > types1.txt
"$zoimg" types --pfnc > pfnc.txt
"$zoimg" docs > converters.md
"$zoimg" --version > version.txt
[[ $(sed -n '2,/^$/p' types.txt | grep -c '^0x') -eq 121 ]] || fail "zoimg types does not list 121 types"
[[ $(head -1 converters.md) == '# Converters' ]] || fail "zoimg docs: no title"
while IFS='|' read -r file row; do
    grep -qE -- "$row" "$file" || fail "$file: no row like '$row'"
done <<'END'
types.txt|^0x02020013  BayerRGGB8 *Bayer RGGB 8-bits, Dual Left Inverted\+Right Output \(deprecated\) 
types1.txt|^0x00420012 BayerRGB12 .*Packed +12 +2 +yes +yes +Packed$
types1.txt|^0x00440003 YUV8_444 .* NONE +Packed$
types1.txt|^0x00010001 Grayscale8 .* yes +-$
types.txt|^  0x00040003 \(the bytes of 0x00440003 
pfnc.txt|^BayerRG8 +0x01080009 +0x000200(10|13) +bayer-rggb 
version.txt|^zoimg [0-9]+\.[0-9]+\.[0-9]+
converters.md|^## 0x00010001 Grayscale 8-bits$
converters.md|^\| Destination \| Name \| Converter \| Bytes/px in \| Bytes/px out \| Caveats \|$
converters.md|^\| 0x00020001 \| .*ZoRGB32ToRGB16` \| 4 \| 2 \| reads 4 bytes a pixel, not 3 \(RGB8_3, 0x0002000A, is the 3-byte type\) \|$
converters.md|^\| 0x00020002 \| .*ZoRGB16ToRGB24` \| 2 \| 3 \| RGB16 source: red comes out 0 and blue carries the word's red bits \|$
converters.md|no pattern flag: GRBG although the name says RGGB
converters.md|replicating GRBG: pixels 2 and 3 of every 8 take red from pixel 4
converters.md|replicating, odd height: reads and writes one line past the area
converters.md|^\| 0x00010002 \| .*\| 1.5 \| 2 \| depth change not by shift: A's top bit gives 0x0000, B's 0x0000 \(a shift gives 0x0200\)
converters.md|^Not a catalogue type: the catalogue lists these bytes as 0x00440003
END

# ---- Frames: 5 x 3 gray; 8-bit Bayer GRBG of uniform colour planes (red
# 200, green 100, blue 50), 4 x 8 and its first 4 and 5 lines; the same as
# 12-bit packed GRBG, groups (A, B) = (G, R) on even lines and (B, G) on odd
# ones with G 0x640, R 0xC80, B 0x320; white 12-bit Bayer (4095) in words
# and in the normalized layout; full-scale packed samples; RGB16 pure red. ----
gray=(0 1 2 3 4 100 101 102 103 104 250 251 252 253 255)
frame gray.raw "${gray[@]}"
frame b8.raw $(repeat 4 '100 200 100 200 50 100 50 100')
head -c 16 b8.raw > b4.raw
head -c 20 b8.raw > b5.raw
frame p5.raw $(repeat 2 '64 6 200 64 6 200 32 3 100 32 3 100') 64 6 200 64 6 200
frame w12.raw $(repeat 16 '255 15')
frame w12n.raw $(repeat 16 '240 255')
frame wp.raw $(repeat 24 255)
frame red16.raw 0 248
head -c 64 /dev/zero > z64.raw
for f in 1 2 3; do frame g$f.raw $(seq $((f * 100 - 100)) $((f * 100 - 81))); done
cat g1.raw g2.raw g3.raw > g123.raw
cat g123.raw z64.raw > g123b.raw

# ---- Converted bytes: arguments (IN and OUT last) | the bytes of OUT
# (evaluated; "!" first: any bytes but those). Odd heights in replicating
# mode give the last row the colours of the row above, directly and through
# chains (Bayer first, or packed first, whose rows above are the library's),
# also when converted in bands on several threads. ----
while IFS='|' read -r args expected; do
    eval "\"\$zoimg\" convert $args" 2> err.txt || { fail "$args: $(cat err.txt)"; continue; }
    eval "expected=\"$expected\""
    got=$(bytes "${args##* }")
    [[ $expected == !* && $got != "${expected#!}" || $got == "$expected" ]] || fail "$args: $got"
done <<'END'
--from "grayscale 8-BITS" --to 0x10001 --width 5 --height 3 gray.raw copy.raw|${gray[*]}
--from Gray8 --to ZoGrayscale8 --width 5 --height 3 gray.raw copy.pgm|80 53 10 53 32 51 10 50 53 53 10 ${gray[*]}
--from Gray8 --to RGB24 --width 5 --height 3 gray.raw rgb.ppm|80 54 10 53 32 51 10 50 53 53 10 $(t3 ${gray[*]})
--from 0x20010 --to BGR24 --width 4 --height 4 --flags 0x10 b4.raw grbg.raw|$(repeat 16 '50 100 200')
--from BayerRGB8 --to RGB24 --width 4 --height 4 --flags bayer-grbg --gains 0.5,1,1 b4.raw gain.raw|$(repeat 16 '100 100 50')
--from BayerRGB8 --to RGB24 --width 4 --height 8 --flags bayer-rggb b8.raw rggb.raw|!$(repeat 32 '200 100 50')
--from BayerRG8 --to RGB24 --width 4 --height 8 b8.raw pfnc.raw|$(bytes rggb.raw)
--from BayerRGB8 --to RGB24 --width 4 --height 5 --flags bayer-grbg --threads 2 b5.raw odd.raw|$(repeat 20 '200 100 50')
--from BayerRGB8 --to 0x820002 --width 4 --height 5 --flags bayer-grbg b5.raw planar.raw|$(repeat 20 200) $(repeat 20 100) $(repeat 20 50)
--from 0x420012 --to RGB24 --width 4 --height 5 --flags bayer-grbg --threads 3 p5.raw podd.raw|$(repeat 20 '200 100 50')
--from BayerRGB12 --to RGB48 --width 4 --height 4 --flags bayer-grbg w12.raw w48.raw|$(repeat 48 '255 15')
--from 0x20001 --to RGB24 --width 1 --height 1 red16.raw red24.raw|0 0 248
--from Gray8 --to RGB24 --width 5 --height 4 - - < g1.raw > piped.raw|$(t3 $(seq 0 19))
< <(cat g123.raw) --from Gray8 --to RGB24 --width 5 --height 4 - multi.raw|$(t3 $(seq 0 19) $(seq 100 119) $(seq 200 219))
END

# ---- 16-bit images: scaled to the full range, sBIT = significant bits. ----
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

# ---- Messages: exit status | text on stderr (!text: must not appear) |
# arguments. Command lines that cannot be carried out, contradictions and bad
# input write nothing to x.*; warnings and notes come with the conversion
# done. No progress line goes to a stderr that is no terminal. ----
frame packed.raw 1 2 3 4 5 6
while IFS='|' read -r code text args; do
    rm -f x.raw x.jpg x.png
    status=0
    eval "\"\$zoimg\" $args" > out.txt 2> err.txt || status=$?
    [[ $status -eq $code ]] || fail "$args exited $status, expected $code: $(cat err.txt)"
    if [[ $text == !* ]]; then ! grep -qF -- "${text#!}" err.txt || fail "$args: said '${text#!}'"
    else grep -qF -- "$text" err.txt || fail "$args: no '$text' in: $(cat err.txt)"; fi
    [[ $code -eq 0 || ! -e x.raw && ! -e x.jpg && ! -e x.png ]] || fail "'$args' wrote its output"
    [[ $(tr -dc '\r' < err.txt | wc -c) -eq 0 ]] || fail "$args: a progress line on a stderr that is no terminal"
done <<'END'
2|unknown pixel type 'NoSuchType'|convert --from NoSuchType --to RGB24 --width 5 --height 3 gray.raw x.raw
2|is ambiguous, it names 0x00020003 (class RGB32) and 0x00020007 (class BGR32)|convert --from Gray8 --to 'RGB 32-bits' --width 4 --height 8 b8.raw x.raw
1|no converter from 0x00010001|convert --from Gray8 --to YUV8 --width 5 --height 3 gray.raw x.raw
1|has 15 bytes, but a 5 x 4 frame|convert --from Gray8 --to Gray8 --width 5 --height 4 gray.raw x.raw
1|cannot open 'missing.raw'|convert --from Gray8 --to Gray8 --width 5 --height 3 missing.raw x.raw
2|convert needs|convert --from Gray8 --to Gray8 --width 5 gray.raw x.raw
2|--width needs|convert --from Gray8 --to Gray8 --width 0 --height 3 gray.raw x.raw
2|unknown flag 'sideways'|convert --from Gray8 --to Gray8 --width 5 --height 3 --flags sideways gray.raw x.raw
2|--gains|convert --from Gray8 --to Gray8 --width 5 --height 3 --gains 1,-1,1 gray.raw x.raw
2|unknown command|frobnicate
1|cannot be written as an image|convert --from 0x420011 --to 0x20011 --width 4 --height 1 packed.raw x.png
2|more than one Bayer pattern|convert --width 4 --height 8 --from BayerRGB8 --to RGB24 --flags bayer-grbg,bayer-rggb b8.raw x.raw
2|--flags is given twice|convert --width 4 --height 8 --from BayerRGB8 --to RGB24 --flags bayer-grbg --flags interpolate b8.raw x.raw
2|is the bayer-rggb pattern, but --flags bayer-gbrg says bayer-gbrg|convert --width 4 --height 8 --from BayerRG8 --to RGB24 --flags bayer-gbrg b8.raw x.raw
2|cannot write '.jpg' files|convert --width 4 --height 8 --from BayerRGB8 --to RGB24 b8.raw x.jpg
2|unknown option -o|convert --width 4 --height 8 --from BayerRGB8 --to RGB24 b8.raw -o x.raw
1|0x00440003 (YUV 8-bits 4:4:4, Packed) is the source of no conversion; the nearest IDs that have converters are 0x00040003|convert --width 4 --height 8 --from 0x440003 --to RGB24 b8.raw x.raw
1|frame of Bayer RGB 8-bits takes 32 (4 a line), so 2 frames take 64|convert --width 4 --height 8 --from BayerRGB8 --to RGB24 --frames 2 b8.raw x.raw
1|no whole number of frames|convert --from Gray8 --to RGB24 --width 5 --height 4 - y.raw < g123b.raw
0|reads 0x00020013 as RGGB, its default|convert --width 4 --height 8 --from 0x20013 --to RGB24 b8.raw x.raw
0|reads 0x00020014 as GRBG|convert --width 4 --height 8 --from 0x20014 --to RGB24 z64.raw x.raw
0|!no Bayer pattern given|convert --width 4 --height 8 --from BayerRGB8 --to RGB24 --flags bayer-rggb b8.raw x.raw
0|!no Bayer pattern given|convert --width 4 --height 8 --from BayerRG8 --to RGB24 --flags bayer-rggb b8.raw x.raw
0|--gains do nothing here: ZoGrayscale8ToRGB24 applies no filter|convert --width 4 --height 8 --from Gray8 --to RGB24 --gains 2,1,1 b8.raw x.raw
0|!--gains do nothing|convert --width 4 --height 8 --from BayerRGB8 --to RGB24 --flags bayer-grbg --gains 2,1,1 b8.raw x.raw
0|Bayer pattern and interpolate flags do nothing|convert --width 4 --height 8 --from Gray8 --to RGB24 --flags interpolate b8.raw x.raw
0|wrote x.raw: 4 x 8 RGB 24-bits in |convert --width 4 --height 8 --from BayerRGB8 --to RGB24 --flags bayer-grbg b8.raw x.raw
0|wrote y.raw: 3 frames of 5 x 4 RGB 24-bits in |convert < <(cat g123.raw) --from Gray8 --to RGB24 --width 5 --height 4 - y.raw
END

# ---- Several frames as numbered images, one frame from a pipe as one image, progress ----
for f in 1 2 3; do "$zoimg" convert --from Gray8 --to RGB24 --width 5 --height 4 g$f.raw s$f.$img 2> /dev/null; done
"$zoimg" convert --from Gray8 --to RGB24 --width 5 --height 4 --frames 3 --threads 2 g123.raw m.$img 2> err.txt
for f in 1 2 3; do cmp -s m-000$((f - 1)).$img s$f.$img || fail "frame $f as m-000$((f - 1)).$img"; done
grep -q "^wrote m-0000.$img ... m-0002.$img: 3 frames of " err.txt || fail "numbered images: $(cat err.txt)"
cat g1.raw | "$zoimg" convert --from Gray8 --to RGB24 --width 5 --height 4 - one.$img 2> /dev/null
cmp -s one.$img s1.$img || fail "one frame from a pipe is not written as one image"
script -qec "'$zoimg' convert --from Gray8 --to Gray8 --width 64 --height 64 --frames 200000 /dev/zero /dev/null" \
    /dev/null > tty.txt 2>&1 < /dev/null || true
grep -qaE 'frame [0-9]+ of 200000' tty.txt || fail "no progress line on a terminal: $(head -c 200 tty.txt)"

# ---- The demo: every conversion runs once the library has the converters,
# with PSNR figures that rule out a wrong Bayer phase or chroma order (those
# fall far below 20 dB on this chart); the report's command line reproduces
# the demo's image. ----
"$zoimg" demo demo > demo.txt 2>&1 || fail "zoimg demo failed: $(cat demo.txt)"
for f in chart bayer8-grbg.raw bayer12-packed-grbg.raw yuv422.raw report.txt; do
    [[ -e demo/$f || -e demo/$f.png || -e demo/$f.ppm ]] || fail "zoimg demo did not write $f"
done
psnr=$(awk '$1 ~ /\.(png|ppm)$/ && $1 != "chart.png" { print $3, $4 }' demo/report.txt)
[[ $(wc -w <<<"$psnr") -eq 10 ]] || fail "zoimg demo report: $(cat demo/report.txt)"
for p in $psnr; do
    awk -v p="$p" 'BEGIN { exit !(p == "inf" || p + 0 >= 22) }' || fail "zoimg demo: PSNR $p dB"
done
(cd demo && "$zoimg" convert --from 0x00420012 --to RGB24 --width 384 --height 256 \
    --flags bayer-grbg,interpolate bayer12-packed-grbg.raw again.png) 2> /dev/null || fail "the report's command failed"
for ext in png ppm; do
    [[ ! -e demo/again.$ext ]] || cmp -s demo/again.$ext demo/bayer12packed-interpolated.$ext ||
        fail "zoimg convert and zoimg demo disagree"
done

# ---- Every registered conversion on an 8 x 13 frame of random bytes (odd
# height: the replicating Bayer line past the frame): sized from the message
# for a wrong size (once a source, again when a pair's size differs), as raw
# bytes (every pair's bands: BandConvertTest; the tool's split: the odd
# heights above) and as an image (or refused with the message that the
# destination is not one) once for each destination and source depth, which
# alone choose the image path. One worker a processor (two at least) share
# the sources. ----
workers=$(nproc 2> /dev/null || echo 2); ((workers >= 2)) || workers=2
"$zoimg" converters | awk -v n=$workers '/^0x/ { if ($1 != last) { k++; last = $1 }; print k % n, $1, $3 }' > pairs.txt
[[ $(wc -l < pairs.txt) -eq 680 ]] || fail "zoimg converters listed $(wc -l < pairs.txt) conversions"
head -c 65536 /dev/urandom > random.bin
sed -nE 's/^(0x[0-9A-F]{8}) .* ([0-9]+) +[0-9]+ +(yes|no) +(yes|NONE) .*/\1 \2/p' types.txt > depths.txt
convert_pairs() {  # WORKER: the pairs of its share of the sources, in directory wWORKER
    local n=0 size source destination depth lines
    declare -A sizes depths imaged
    while read -r source depth; do depths[$source]=$depth; done < depths.txt
    mkdir -p w$1/one && cd w$1 && : > f.raw
    while read -r worker source destination; do
        n=$((n + 1)); [[ $worker == "$1" ]] || continue
        args=(--from "$source" --to "$destination" --width 8 --height 13)
        size=${sizes[$source]:-}
        if ! "$zoimg" convert "${args[@]}" f$size.raw one/$n.raw 2> err.txt; then
            mapfile -t lines < err.txt
            [[ ${lines[*]} =~ \ takes\ ([0-9]+)\  ]] || { fail "$source -> $destination: ${lines[*]}"; continue; }
            size=${BASH_REMATCH[1]} && sizes[$source]=$size
            [[ -e f$size.raw ]] || head -c "$size" ../random.bin > f$size.raw
            "$zoimg" convert "${args[@]}" f$size.raw one/$n.raw 2> err.txt || { fail "$source -> $destination"; continue; }
        fi
        local key="$destination ${depths[$source]:-}"
        [[ -z ${imaged[$key]:-} ]] || continue
        imaged[$key]=1
        if ! "$zoimg" convert "${args[@]}" f$size.raw "out.$img" 2> err.txt; then
            mapfile -t lines < err.txt
            [[ ${lines[*]} == *'cannot be written as an image'* ]] || fail "$source -> $destination: ${lines[*]}"
        fi
    done < ../pairs.txt
}
pids=()
for ((w = 0; w < workers; w++)); do convert_pairs $w & pids+=($!); done
for pid in "${pids[@]}"; do wait $pid || fail "a worker stopped"; done

if [[ -e failed ]]; then echo "$(wc -l < failed) checks failed" >&2; exit 1; fi
echo "zoimg checks passed"
