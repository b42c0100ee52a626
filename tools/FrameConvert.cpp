#include "FrameConvert.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <thread>

#include <algorithm>

#include "ZoImgLib.h"
#include "ZoImgLibExt.h"

namespace zoimg {

namespace {

// Band boundaries at multiples of this many lines: replicating Bayer
// conversions split only between line pairs, every other conversion
// anywhere.
constexpr std::uint32_t kBandStep = 2;

std::uint16_t Word(const std::uint8_t* p) { return static_cast<std::uint16_t>(p[0] | (p[1] << 8)); }

void Put16(Image& image, std::size_t index, std::uint16_t v) { std::memcpy(&image.data[index * 2], &v, 2); }

bool Replicating(const ZoPixelConverter& converter, std::uint32_t flags)
{
    return IsBayerConverter(converter) && (flags & ZO_FLAG_BAYER_INTERPOLATE) == 0;
}

// Lines [first, first + count) of frame line `from` copied to line `to`.
void CopyLine(std::uint8_t* frame, std::uint32_t lineBytes, std::uint32_t from, std::uint32_t to)
{
    std::memcpy(frame + static_cast<std::size_t>(to) * lineBytes, frame + static_cast<std::size_t>(from) * lineBytes,
                lineBytes);
}

}  // namespace

struct FrameConverter::Stage {
    const ZoPixelConverter* converter;
    ZoAreaBufferSizes sizes;
    bool takesFilter;
};

FrameConverter::FrameConverter() = default;
FrameConverter::~FrameConverter() = default;

bool IsBayerConverter(const ZoPixelConverter& converter)
{
    if (const ZoComplexConverter* chain = dynamic_cast<const ZoComplexConverter*>(&converter))
        return (chain->GetFirst() && IsBayerConverter(*chain->GetFirst())) ||
               (chain->GetSecond() && IsBayerConverter(*chain->GetSecond()));
    return dynamic_cast<const ZoBayerRGB8ToRGB*>(&converter) || dynamic_cast<const ZoBayerRGB16ToRGB*>(&converter);
}

bool FrameConverter::Prepare(const ZoPixelConverter& converter, std::uint32_t width, std::uint32_t height,
                             std::uint32_t flags, const double* gains, unsigned threads, std::string& error)
{
    mWidth = width;
    mHeight = height;
    mFlags = flags;
    mThreads = threads == 0 ? 1 : threads;
    mSourceLineBytes = converter.GetSourceByteSize(width);
    mSourceFrameBytes = static_cast<std::uint64_t>(mSourceLineBytes) * height;
    mDestinationFrameBytes = static_cast<std::uint64_t>(converter.GetDestinationByteSize(width)) * height;
    const std::string frame = "a " + std::to_string(width) + " x " + std::to_string(height) + " frame";
    // The library's line sizes are 32-bit; a line that wrapped is smaller than its pixel count.
    if (mSourceFrameBytes == 0 || mDestinationFrameBytes == 0 || mSourceFrameBytes > 0xFFFFFFFFull ||
        mDestinationFrameBytes > 0xFFFFFFFFull || mSourceLineBytes < width / 2) {
        error = frame + " is too large";
        return false;
    }

    mExtendLastRow = Replicating(converter, flags) && height % 2 == 1;
    mStages.clear();
    // A chain fills the line after its odd-height intermediate frame itself
    // (a copy of line height - 2, the rule used below for the source).
    mStages.push_back({&converter, {}, true});
    for (Stage& stage : mStages)
        if (ZoPixelConverter_GetAreaBufferSizes(stage.converter, width, height, width, height, width, height, flags, 0,
                                                &stage.sizes) != ZO_OK) {
            error = frame + " is too large for the library's buffer sizes";
            return false;
        }

    mFilter.reset();
    if (gains) {
        // One-byte sources are filtered through the 8-bit tables, wider ones
        // through the 16-bit tables (as the library's own default filters).
        mFilter.reset(new ZoRGBFilter(converter.GetSourceByteSize() == 1 ? 8 : 16));
        if (mFilter->SetMultipliers(gains[0], gains[1], gains[2]) != ZO_OK) {
            error = "the library refused the gains";
            return false;
        }
    }
    return true;
}

std::uint32_t FrameConverter::RunStage(const Stage& stage, const unsigned char* source, unsigned char* destination,
                                       const ZoRGBFilter* filter)
{
    const ZoPixelConverter& c = *stage.converter;
    const std::uint32_t w = mWidth, h = mHeight;
    const unsigned bands = static_cast<unsigned>(std::min<std::uint64_t>(mThreads, h / kBandStep));
    if (bands <= 1)
        return filter ? c.Convert(*filter, source, w, h, destination, w, h, w, h, mFlags, 0)
                      : c.Convert(source, w, h, destination, w, h, w, h, mFlags, 0);

    // Bands of whole multiples of kBandStep lines, the last one taking the rest.
    std::vector<std::uint32_t> results(bands, ZO_OK);
    std::vector<std::thread> workers;
    const std::uint32_t per = (h / bands) / kBandStep * kBandStep;
    for (unsigned b = 0; b < bands; ++b) {
        const std::uint32_t first = b * per;
        const std::uint32_t count = b + 1 == bands ? h - first : per;
        workers.emplace_back([&, b, first, count] {
            results[b] = ZoPixelConverter_ConvertBand(&c, filter, source, w, h, destination, w, h, w, h, mFlags, 0,
                                                      first, count);
        });
    }
    for (std::thread& t : workers)
        t.join();
    for (std::uint32_t r : results)
        if (r != ZO_OK)
            return r;
    return ZO_OK;
}

std::uint32_t FrameConverter::Convert(const std::uint8_t* source, std::vector<std::uint8_t>& destination)
{
    const std::size_t frameBytes = static_cast<std::size_t>(mSourceFrameBytes);
    const std::uint32_t extendFrom = mHeight >= 2 ? mHeight - 2 : 0;

    // The first stage's source: the frame, then zeros (or the extended line).
    // Buffers keep their memory from frame to frame and are cleared, so
    // every frame is converted as if it were the only one.
    const Stage& first = mStages.front();
    std::vector<std::uint8_t>& in = mSource;
    in.assign(std::max<std::size_t>(static_cast<std::size_t>(first.sizes.sourceBytes), frameBytes + mSourceLineBytes),
              0);
    std::memcpy(in.data(), source, frameBytes);
    if (mExtendLastRow)
        CopyLine(in.data(), mSourceLineBytes, extendFrom, mHeight);

    const ZoRGBFilter* filter = mFilter.get();
    const unsigned char* stageSource = in.data();
    std::uint32_t result = ZO_OK;
    const Stage& last = mStages.back();
    const std::size_t before = static_cast<std::size_t>(last.sizes.destinationBytesBefore);
    std::vector<std::uint8_t>& out = mDestination;
    out.assign(before + std::max<std::size_t>(static_cast<std::size_t>(last.sizes.destinationBytes),
                                              static_cast<std::size_t>(mDestinationFrameBytes)),
               0);
    result = RunStage(last, stageSource, out.data() + before, filter);
    destination.assign(out.begin() + before, out.begin() + before + static_cast<std::size_t>(mDestinationFrameBytes));
    return result;
}

std::uint32_t SignificantBits(std::int64_t source, std::int64_t destination)
{
    const std::uint32_t format = static_cast<std::uint32_t>(destination) & ZO_PIXEL_FORMAT_MASK;
    const std::uint32_t space = static_cast<std::uint32_t>(destination) & ZO_PIXEL_COLORSPACE_MASK;
    if (space != ZO_PIXEL_COLORSPACE_RGB || (format != 0x04 && format != 0x05) ||
        !ZoPixelTypeFactory::HasPixelType(source))
        return 0;
    const ZoPixelType& type = ZoPixelTypeFactory::GetPixelType(source);
    const std::uint32_t bits = type.GetPixelBitSize();
    return type.IsBayerPattern() && bits < 16 ? bits : 0;
}

bool FrameToImage(std::int64_t id, const std::vector<std::uint8_t>& frame, std::uint32_t width,
                  std::uint32_t height, std::uint32_t significantBits, Image& image)
{
    const std::uint32_t low = static_cast<std::uint32_t>(id);
    const std::uint32_t format = low & ZO_PIXEL_FORMAT_MASK;
    const std::uint32_t space = low & ZO_PIXEL_COLORSPACE_MASK;
    const bool planar = (low & ZO_PIXEL_PLANAR) != 0;
    const bool normalized = (low & ZO_PIXEL_NORMALIZED) != 0;  // the significant bits are the top ones
    const std::size_t pixels = static_cast<std::size_t>(width) * height;
    if ((low & ZO_PIXEL_TAP_MASK) != 0 || (low & ZO_PIXEL_INTERLACED) != 0)
        return false;

    // 16-bit samples keep `bits` significant bits, brought down to the
    // bottom of the word; the image writers scale them to their full range.
    auto wide = [&](std::uint32_t bits) {
        image.bitDepth = 16;
        image.maxValue = (1u << bits) - 1;
        image.significantBits = bits;
        return normalized ? 16 - bits : 0;
    };

    image.width = width;
    image.height = height;
    image.significantBits = 0;
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
        const std::uint32_t down = wide(kGrayBits[format]);
        image.data.resize(pixels * 2);
        for (std::size_t i = 0; i < pixels; ++i)
            Put16(image, i, static_cast<std::uint16_t>(Word(&frame[i * 2]) >> down));
        return true;
    }
    if (space != ZO_PIXEL_COLORSPACE_RGB || format >= 0x10)  // Bayer mosaics are not images
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
    if (layout.wide && significantBits > 0 && significantBits < layout.bits)
        layout.bits = significantBits;

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
        const std::uint32_t down = wide(layout.bits);
        image.data.resize(pixels * 6);
        for (std::size_t i = 0; i < pixels; ++i) {
            const std::uint8_t* p = &frame[i * layout.bytes];
            Put16(image, i * 3 + 0, static_cast<std::uint16_t>(Word(p + 2 * layout.red) >> down));
            Put16(image, i * 3 + 1, static_cast<std::uint16_t>(Word(p + 2) >> down));
            Put16(image, i * 3 + 2, static_cast<std::uint16_t>(Word(p + 2 * layout.blue) >> down));
        }
        return true;
    }
    image.bitDepth = 8;
    image.maxValue = 255;
    image.data.resize(pixels * 3);
    if (layout.bytes == 2)
        image.rgb565 = true;
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
    const std::uint32_t patterns = flags & kPatternFlags;
    if (patterns & (patterns - 1)) {
        error = "--flags '" + text + "' names more than one Bayer pattern; give one";
        return false;
    }
    return true;
}

}  // namespace zoimg
