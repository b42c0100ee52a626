#include "ConverterNotes.h"

#include <cctype>
#include <cstdio>
#include <cstring>
#include <algorithm>

#include "FrameConvert.h"
#include "LibraryInfo.h"
#include "ZoImgLib.h"

namespace zoimg {

namespace {

// A fixed pseudo-random probe frame for `converter` at width x height.
std::vector<std::uint8_t> ProbeFrame(const FrameConverter& frames)
{
    std::vector<std::uint8_t> frame(static_cast<std::size_t>(frames.SourceFrameBytes()));
    std::uint32_t state = 0x2545F491u;
    for (std::uint8_t& b : frame) {
        state ^= state << 13, state ^= state >> 17, state ^= state << 5;
        b = static_cast<std::uint8_t>(state >> 7);
    }
    return frame;
}

// The converted probe frame; empty if the conversion fails.
std::vector<std::uint8_t> Probe(const ZoPixelConverter& converter, std::uint32_t flags, const double* gains,
                                const std::vector<std::uint8_t>* input = nullptr)
{
    FrameConverter frames;
    std::string error;
    std::vector<std::uint8_t> out;
    if (!frames.Prepare(converter, 8, 4, flags, gains, 1, error))
        return out;
    const std::vector<std::uint8_t> frame = input ? *input : ProbeFrame(frames);
    if (frame.size() != frames.SourceFrameBytes() || frames.Convert(frame.data(), out) != ZO_OK)
        out.clear();
    return out;
}

std::string Ratio(std::uint32_t bytesFor8)
{
    char text[16];
    if (bytesFor8 % 8 == 0)
        std::snprintf(text, sizeof text, "%u", bytesFor8 / 8);
    else
        std::snprintf(text, sizeof text, "%g", bytesFor8 / 8.0);
    return text;
}

std::string Hex4(std::uint32_t v)
{
    char text[8];
    std::snprintf(text, sizeof text, "0x%04X", v);
    return text;
}

bool Is(const ZoPixelConverter* c, const char* className) { return c && ClassName(*c) == className; }

// A packed monochrome source unpacked into 16-bit words: A sits in group
// bits 0..N-1 and B from group bit 12. The words that A (then B) with only
// its top bit set gives, against a depth change by shifting: empty when
// both agree. (Full scale would hide a mask: 0xFFF & 0x3FF = 0xFFF >> 2.)
std::string PackedDepthCaveat(std::int64_t source, std::int64_t destination, const ZoPixelConverter& converter)
{
    if (!Is(&converter, "ZoGrayscale16PackedToGrayscale16") ||
        (static_cast<std::uint32_t>(source) & ZO_PIXEL_COLORSPACE_MASK) != ZO_PIXEL_COLORSPACE_GRAY ||
        !ZoPixelTypeFactory::HasPixelType(source) || !ZoPixelTypeFactory::HasPixelType(destination))
        return "";
    const std::uint32_t bits = ZoPixelTypeFactory::GetPixelType(source).GetPixelBitSize();
    const std::uint32_t outBits = ZoPixelTypeFactory::GetPixelType(destination).GetPixelBitSize();
    const bool top = (static_cast<std::uint32_t>(destination) & ZO_PIXEL_NORMALIZED) || outBits == 16;
    const std::uint32_t max = 1u << (bits - 1);
    const std::uint32_t exact = top ? max << (16 - bits) : outBits >= bits ? max << (outBits - bits) : max >> (bits - outBits);
    std::uint32_t words[2];
    for (int sample = 0; sample < 2; ++sample) {
        // 8 x 4 frame of identical groups: the sample under test at its top bit, the other 0.
        const std::uint32_t group = sample == 0 ? max : max << 12;
        std::vector<std::uint8_t> frame(12 * 4);
        for (std::size_t i = 0; i < frame.size(); i += 3)
            for (int b = 0; b < 3; ++b)
                frame[i + b] = static_cast<std::uint8_t>(group >> (8 * b));
        const std::vector<std::uint8_t> out = Probe(converter, 0, nullptr, &frame);
        if (out.size() < 16)
            return "";
        // The largest word of the first line: where a two-tap layout puts the
        // sample does not matter, and bits of A that reach B's word are smaller.
        words[sample] = 0;
        for (std::size_t i = 0; i < 16; i += 2)
            words[sample] = std::max<std::uint32_t>(words[sample], out[i] | (out[i + 1] << 8));
    }
    if (words[0] == exact && words[1] == exact)
        return "";
    return "depth change not by shift: A's top bit gives " + Hex4(words[0]) + ", B's " + Hex4(words[1]) +
           " (a shift gives " + Hex4(exact) + ")";
}

}  // namespace

std::string SourceBytesPerPixel(const ZoPixelConverter& converter) { return Ratio(converter.GetSourceByteSize(8)); }

std::string DestinationBytesPerPixel(const ZoPixelConverter& converter)
{
    return Ratio(converter.GetDestinationByteSize(8));
}

std::uint32_t DefaultPattern(const ZoPixelConverter& converter)
{
    if (!IsBayerConverter(converter))
        return 0;
    const std::vector<std::uint8_t> none = Probe(converter, 0, nullptr);
    for (std::uint32_t pattern : {ZO_FLAG_BAYER_GRBG, ZO_FLAG_BAYER_GBRG, ZO_FLAG_BAYER_RGGB, ZO_FLAG_BAYER_BGGR})
        if (!none.empty() && Probe(converter, pattern, nullptr) == none)
            return pattern;
    return 0;
}

bool FilterApplies(const ZoPixelConverter& converter)
{
    static const double kHalf[3] = {0.5, 0.5, 0.5};
    return Probe(converter, 0, kHalf) != Probe(converter, 0, nullptr);
}

std::vector<std::string> Caveats(std::int64_t source, std::int64_t destination, const ZoPixelConverter& converter)
{
    std::vector<std::string> notes;
    const ZoComplexConverter* chain = dynamic_cast<const ZoComplexConverter*>(&converter);
    const ZoPixelConverter* first = chain ? chain->GetFirst() : &converter;
    const ZoPixelConverter* last = chain ? chain->GetSecond() : &converter;

    // Sources read wider than their type says.
    if (ZoPixelTypeFactory::HasPixelType(source) && (static_cast<std::uint32_t>(source) & ZO_PIXEL_PACKED) == 0) {
        const std::uint32_t typeBytes = ZoPixelTypeFactory::GetPixelType(source).GetPixelByteSize();
        const std::string bytes = std::to_string(converter.GetSourceByteSize());
        if (typeBytes != converter.GetSourceByteSize() && Is(&converter, "ZoIdentityConverter"))
            notes.push_back("copies " + bytes + " bytes a pixel, not the type's " + std::to_string(typeBytes) +
                            " (give " + std::to_string(typeBytes / converter.GetSourceByteSize()) +
                            " times the width)");
        else if (typeBytes != converter.GetSourceByteSize())
            notes.push_back("reads " + bytes + " bytes a pixel, not " + std::to_string(typeBytes) +
                            (source == ZO_PT_RGB24 ? " (RGB8_3, 0x0002000A, is the 3-byte type)" : ""));
    }

    if (Is(first, "ZoRGB16ToRGB24"))
        notes.push_back("RGB16 source: red comes out 0 and blue carries the word's red bits");
    if (Is(first, "ZoRGB16ToRGB32"))
        notes.push_back("RGB16 source: red and blue come out 0, only green is read");
    const std::string packed = PackedDepthCaveat(source, destination, converter);
    if (!packed.empty())
        notes.push_back(packed);
    if (dynamic_cast<const ZoGrayscale16PackedToRGB32*>(first))
        notes.push_back("fourth byte is the gray value, not 0");
    if (dynamic_cast<const ZoGrayscale16PackedToGrayscale16*>(first) ||
        dynamic_cast<const ZoGrayscale16PackedToGrayscale8*>(first) ||
        dynamic_cast<const ZoGrayscale16PackedToRGB*>(first))
        notes.push_back("odd width: reads the whole last 3-byte group and writes its second pixel outside the line");

    if (IsBayerConverter(converter)) {
        const std::uint32_t pattern = DefaultPattern(converter);
        std::string words = PatternWords(pattern);
        for (char& c : words)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        words = words.empty() ? "?" : words.substr(6);
        const std::string name = TypeName(source);
        std::string note = "no pattern flag: " + words;
        if (name.find("RGGB") != std::string::npos && pattern != ZO_FLAG_BAYER_RGGB)
            note += " although the name says RGGB";
        notes.push_back(note);
        if (Is(last, "ZoBayerRGB8ToRGB16") || Is(first, "ZoBayerRGB8ToRGB16"))
            notes.push_back("replicating GRBG: pixels 2 and 3 of every 8 take red from pixel 4 (a green site)");
        notes.push_back("replicating, odd height: reads and writes one line past the area");
    }

    if (static_cast<std::uint32_t>(source) & ZO_PIXEL_INTERLACED)
        notes.push_back("interlaced, odd height: reads up to half a line past the frame, writes one line past the area");
    if (dynamic_cast<const ZoYUV8toRGB*>(first) || dynamic_cast<const ZoYUV10ToRGB*>(first))
        notes.push_back("odd width: reads and writes one pixel past the line");
    if ((source & ~static_cast<std::int64_t>(ZO_PIXEL_INTERLACED)) == 0x00040005 && destination == ZO_PT_RGB16)
        notes.push_back("reads Y and Cr both from byte 2, unlike the 24- and 32-bit destinations");
    if (Is(first, "ZoYUV8444ToRGB16"))
        notes.push_back("with gains: green and blue tables swapped but for the last width % 4 pixels");
    if ((source == 0x00040003 || source == 0x00240003 || source == 0x00040005 || source == 0x00240005))
        notes.push_back("registered without the Packed bit of the catalogue's " + HexId(source | ZO_PIXEL_PACKED));

    for (const char* groups : {"ZoRGB24ToRGB24", "ZoRGB32ToRGB24", "ZoRGB48ToRGB24", "ZoRGB64ToRGB24", "ZoRGB32ToRGB32"})
        if (Is(last, groups) || Is(first, groups))
            notes.push_back("groups of 4: reads and writes up to 3 pixels past a line");
    if (Is(first, "ZoRGB32ToRGB32"))
        notes.push_back("fourth byte copied from the source");
    if (chain) {
        if (!FilterApplies(converter))
            notes.push_back("chain: gains do nothing (its first stage applies no filter)");
        else
            notes.push_back("chain: gains reach the first stage only");
    }
    return notes;
}

}  // namespace zoimg
