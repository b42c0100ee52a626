#include "FrameConvert.h"

#include <cstdlib>
#include <cstring>
#include <memory>

#include "ZoImgLib.h"

namespace zoimg {

namespace {

// Zeroed margin before and after each frame handed to the library: two lines
// and a little more.
std::size_t Margin(std::uint64_t lineBytes) { return static_cast<std::size_t>(2 * lineBytes + 256); }

std::uint16_t Word(const std::uint8_t* p) { return static_cast<std::uint16_t>(p[0] | (p[1] << 8)); }

void Put16(Image& image, std::size_t index, std::uint16_t v) { std::memcpy(&image.data[index * 2], &v, 2); }

}  // namespace

std::uint64_t SourceFrameBytes(const ZoPixelConverter& converter, std::uint32_t width, std::uint32_t height)
{
    const std::uint64_t bytes = static_cast<std::uint64_t>(converter.GetSourceByteSize(width)) * height;
    return bytes > 0xFFFFFFFFull ? 0 : bytes;
}

std::uint64_t DestinationFrameBytes(const ZoPixelConverter& converter, std::uint32_t width, std::uint32_t height)
{
    const std::uint64_t bytes = static_cast<std::uint64_t>(converter.GetDestinationByteSize(width)) * height;
    return bytes > 0xFFFFFFFFull ? 0 : bytes;
}

std::uint32_t ConvertFrame(const ZoPixelConverter& converter, const std::uint8_t* source, std::uint32_t width,
                           std::uint32_t height, std::uint32_t flags, const double* gains,
                           std::vector<std::uint8_t>& destination)
{
    const std::uint64_t sourceBytes = SourceFrameBytes(converter, width, height);
    const std::uint64_t destinationBytes = DestinationFrameBytes(converter, width, height);
    const std::size_t sourceMargin = Margin(converter.GetSourceByteSize(width));
    const std::size_t destinationMargin = Margin(converter.GetDestinationByteSize(width));

    std::vector<std::uint8_t> in(sourceMargin + sourceBytes + sourceMargin, 0);
    std::memcpy(in.data() + sourceMargin, source, static_cast<std::size_t>(sourceBytes));
    std::vector<std::uint8_t> out(destinationMargin + destinationBytes + destinationMargin, 0);

    std::uint32_t result;
    if (gains) {
        // One-byte sources are filtered through the 8-bit tables, wider ones
        // through the 16-bit tables (as the library's own default filters).
        ZoRGBFilter filter(converter.GetSourceByteSize() == 1 ? 8 : 16);
        result = filter.SetMultipliers(gains[0], gains[1], gains[2]);
        if (result == ZO_OK)
            result = converter.Convert(filter, in.data() + sourceMargin, width, height,
                                       out.data() + destinationMargin, width, height, width, height, flags, 0);
    } else {
        result = converter.Convert(in.data() + sourceMargin, width, height, out.data() + destinationMargin, width,
                                   height, width, height, flags, 0);
    }
    destination.assign(out.begin() + destinationMargin, out.begin() + destinationMargin + destinationBytes);
    return result;
}

bool FrameToImage(std::int64_t id, const std::vector<std::uint8_t>& frame, std::uint32_t width,
                  std::uint32_t height, Image& image)
{
    const std::uint32_t low = static_cast<std::uint32_t>(id);
    const std::uint32_t format = low & ZO_PIXEL_FORMAT_MASK;
    const std::uint32_t space = low & ZO_PIXEL_COLORSPACE_MASK;
    const bool planar = (low & ZO_PIXEL_PLANAR) != 0;
    const std::size_t pixels = static_cast<std::size_t>(width) * height;
    if ((low & ZO_PIXEL_TAP_MASK) != 0 || (low & ZO_PIXEL_INTERLACED) != 0)
        return false;

    image.width = width;
    image.height = height;
    if (space == ZO_PIXEL_COLORSPACE_GRAY) {
        if (low & ZO_PIXEL_PACKED)
            return false;
        image.channels = 1;
        if (static_cast<std::int64_t>(format) == (ZO_PT_GRAY8 & ZO_PIXEL_FORMAT_MASK)) {
            if (frame.size() < pixels)
                return false;
            image.bitDepth = 8;
            image.maxValue = 255;
            image.data.assign(frame.begin(), frame.begin() + pixels);
            return true;
        }
        static const std::uint32_t kGrayBits[] = {0, 8, 10, 12, 14, 16};
        if (format > 5 || frame.size() < pixels * 2)
            return false;
        image.bitDepth = 16;
        const bool normalized = (low & ZO_PIXEL_NORMALIZED) != 0;  // most significant bits used
        image.maxValue = normalized ? 65535 : (1u << kGrayBits[format]) - 1;
        image.data.resize(pixels * 2);
        for (std::size_t i = 0; i < pixels; ++i)
            Put16(image, i, Word(&frame[i * 2]));
        return true;
    }
    if (space != ZO_PIXEL_COLORSPACE_RGB || format >= 0x10)  // Bayer mosaics are not images yet
        return false;

    image.channels = 3;
    // Byte layout per format number: bytes per pixel, red and blue index,
    // 16-bit samples, significant bits per sample.
    struct Layout {
        std::uint32_t bytes;
        int red, blue;
        bool wide;
        std::uint32_t bits;
    };
    Layout layout;
    switch (format) {
    case 0x01: layout = {2, 0, 2, false, 8}; break;  // 5-6-5 word
    case 0x02: case 0x0A: layout = {3, 0, 2, false, 8}; break;
    case 0x06: layout = {3, 2, 0, false, 8}; break;
    case 0x03: case 0x0B: layout = {4, 0, 2, false, 8}; break;
    case 0x07: layout = {4, 2, 0, false, 8}; break;
    case 0x04: layout = {6, 0, 2, true, 16}; break;
    case 0x08: layout = {6, 0, 2, true, 10}; break;
    case 0x0C: layout = {6, 0, 2, true, 12}; break;
    case 0x05: layout = {8, 0, 2, true, 16}; break;
    case 0x09: layout = {8, 0, 2, true, 10}; break;
    case 0x0D: layout = {8, 0, 2, true, 12}; break;
    default: return false;
    }
    if (low & ZO_PIXEL_NORMALIZED)
        layout.bits = 16;

    if (planar) {
        // Three planes of width x height bytes: red, green, blue.
        if (layout.wide || frame.size() < pixels * 3)
            return false;
        image.bitDepth = 8;
        image.maxValue = 255;
        image.data.resize(pixels * 3);
        for (std::size_t i = 0; i < pixels; ++i)
            for (int c = 0; c < 3; ++c)
                image.data[i * 3 + c] = frame[c * pixels + i];
        return true;
    }
    if (frame.size() < pixels * layout.bytes)
        return false;
    if (layout.wide) {
        image.bitDepth = 16;
        image.maxValue = layout.bits == 16 ? 65535 : (1u << layout.bits) - 1;
        image.data.resize(pixels * 6);
        for (std::size_t i = 0; i < pixels; ++i) {
            const std::uint8_t* p = &frame[i * layout.bytes];
            Put16(image, i * 3 + 0, Word(p + 2 * layout.red));
            Put16(image, i * 3 + 1, Word(p + 2));
            Put16(image, i * 3 + 2, Word(p + 2 * layout.blue));
        }
        return true;
    }
    image.bitDepth = 8;
    image.maxValue = 255;
    image.data.resize(pixels * 3);
    for (std::size_t i = 0; i < pixels; ++i) {
        const std::uint8_t* p = &frame[i * layout.bytes];
        std::uint8_t* q = &image.data[i * 3];
        if (layout.bytes == 2) {
            // Red in bits 15-11, green in 10-5, blue in 4-0; widened by
            // repeating the top bits.
            const std::uint16_t w = Word(p);
            const std::uint32_t r = w >> 11, g = (w >> 5) & 0x3F, b = w & 0x1F;
            q[0] = static_cast<std::uint8_t>((r << 3) | (r >> 2));
            q[1] = static_cast<std::uint8_t>((g << 2) | (g >> 4));
            q[2] = static_cast<std::uint8_t>((b << 3) | (b >> 2));
        } else {
            q[0] = p[layout.red];
            q[1] = p[1];
            q[2] = p[layout.blue];
        }
    }
    return true;
}

bool ParseFlags(const std::string& text, std::uint32_t& flags, std::string& error)
{
    static const struct {
        const char* name;
        std::uint32_t value;
    } kFlags[] = {
        {"bayer-grbg", ZO_FLAG_BAYER_GRBG},
        {"bayer-gbrg", ZO_FLAG_BAYER_GBRG},
        {"bayer-rggb", ZO_FLAG_BAYER_RGGB},
        {"bayer-bggr", ZO_FLAG_BAYER_BGGR},
        {"interpolate", ZO_FLAG_BAYER_INTERPOLATE},
        {"invert-deinterlacer", ZO_FLAG_INVERT_DEINTERLACER},
    };
    flags = 0;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find(',', start);
        if (end == std::string::npos)
            end = text.size();
        const std::string word = text.substr(start, end - start);
        start = end + 1;
        if (word.empty())
            continue;
        bool known = false;
        for (const auto& f : kFlags)
            if (word == f.name) {
                flags |= f.value;
                known = true;
            }
        if (!known) {
            char* rest = nullptr;
            const unsigned long long value = std::strtoull(word.c_str(), &rest, 0);
            if (!rest || *rest || value > 0xFFFFFFFFull) {
                error = "unknown flag '" + word +
                        "' (known: bayer-grbg, bayer-gbrg, bayer-rggb, bayer-bggr, interpolate, "
                        "invert-deinterlacer, or a number)";
                return false;
            }
            flags |= static_cast<std::uint32_t>(value);
        }
    }
    return true;
}

}  // namespace zoimg
