// Buffer sizes of an area conversion, from the rules in the converter
// headers: the base walk (interlaced fields, planar destinations, lines per
// call), then what one line call of each family reads and writes.
#include "fuzz/FuzzBufferSizes.h"

#include <algorithm>

#include "ZoBayerConverters.h"
#include "ZoDualTapConverters.h"
#include "ZoGenericConverters.h"
#include "ZoPackedConverters.h"
#include "ZoRGBConverters.h"
#include "ZoYUVConverters.h"

namespace zofuzz {
namespace {

template <class T>
bool Is(const ZoPixelConverter& c)
{
    return dynamic_cast<const T*>(&c) != nullptr;
}

bool Has(std::int64_t id, std::uint32_t bits) { return (static_cast<std::uint64_t>(id) & bits) != 0; }

// What one line call of n pixels reads after its source pointer and writes
// around its destination pointer.
struct Line {
    std::uint64_t read = 0;
    std::uint64_t write = 0;
    std::uint64_t before = 0;
};

Line LineNeeds(const ZoPixelConverter& c, std::uint64_t n)
{
    const std::uint64_t in = c.GetSourceByteSize(), out = c.GetDestinationByteSize();
    const bool odd = n % 2 != 0;
    Line line{in * n, out * n, 0};
    if (Is<ZoGrayscale16PackedToGrayscale16>(c) || Is<ZoGrayscale16PackedToGrayscale8>(c) ||
        Is<ZoGrayscale16PackedToRGB>(c)) {
        // Two samples in three bytes; an odd width still converts its last
        // group whole: three bytes more, a pixel on either side.
        line.read = (n >> 1) * 3 + (odd ? 3 : 0);
        if (odd) {
            line.write += out;
            line.before = out;
        }
    } else if (Is<ZoDualGrayscale8ToGrayscale8>(c)) {
        if (odd) {
            line.read += 1;
            line.write += 1;
            line.before = 1;
        }
    } else if (Is<ZoRGB24ToRGB24>(c) || Is<ZoRGB32ToRGB24>(c) || Is<ZoRGB48ToRGB24>(c) || Is<ZoRGB64ToRGB24>(c) ||
               Is<ZoRGB32ToRGB32>(c)) {
        const std::uint64_t groups = (n + 3) / 4 * 4;  // whole groups of four
        line.read = in * groups;
        line.write = out * groups;
    } else if (Is<ZoYUV8toRGB>(c) || Is<ZoYUV10ToRGB>(c)) {
        if (odd) {  // the whole last 4:2:2 pair
            line.read += in;
            line.write += out;
        }
    }
    return line;
}

}  // namespace

AreaSizes AreaBufferSizes(const ZoPixelConverter& c, std::uint32_t sourceWidth, std::uint32_t sourceHeight,
                          std::uint32_t destinationWidth, std::uint32_t destinationHeight, std::uint32_t width,
                          std::uint32_t height, std::uint32_t flags, std::uint32_t padding)
{
    if (const auto* chain = dynamic_cast<const ZoComplexConverter*>(&c)) {
        // The first stage takes the whole source frame, the second writes the
        // area from the intermediate frame.
        const AreaSizes first = AreaBufferSizes(*chain->GetFirst(), sourceWidth, sourceHeight, sourceWidth,
                                                sourceHeight, sourceWidth, sourceHeight, flags, 0);
        const AreaSizes second = AreaBufferSizes(*chain->GetSecond(), sourceWidth, sourceHeight, destinationWidth,
                                                 destinationHeight, width, height, flags, padding);
        AreaSizes sizes;
        sizes.source = first.source;
        sizes.destination = second.destination;
        sizes.destinationBefore = second.destinationBefore;
        return sizes;
    }
    AreaSizes sizes;
    if (height == 0)
        return sizes;
    const std::int64_t sourceType = c.GetSourceType(), destinationType = c.GetDestinationType();
    const std::uint64_t sourceLine = c.GetSourceByteSize(sourceWidth);
    const bool planar = Has(destinationType, ZO_PIXEL_PLANAR) && !Has(sourceType, ZO_PIXEL_PLANAR);
    const std::uint64_t destinationLine =
        planar ? sourceWidth : std::uint64_t(c.GetDestinationByteSize(destinationWidth)) + padding;

    // Dual-tap layouts convert whole source lines whatever the width.
    std::uint64_t n = width;
    const std::uint32_t leftRightTaps =
        ZO_PIXEL_TAP_DUAL_LR | ZO_PIXEL_TAP_DUAL_LR_INV | ZO_PIXEL_TAP_DUAL_LINV_R | ZO_PIXEL_TAP_DUAL_LINV_RINV;
    if (Is<ZoDualGrayscale8ToGrayscale8>(c) && Has(sourceType, leftRightTaps) &&
        !Has(destinationType, ZO_PIXEL_TAP_MASK))
        n = sourceWidth;
    Line line = LineNeeds(c, n);
    if (planar)
        line.write = n;  // each plane line holds one byte a pixel

    std::uint64_t calls = 0, step = 1, destinationLines = 0;
    if (Has(sourceType, ZO_PIXEL_INTERLACED)) {
        // Two field passes of ceil(height / 2) lines each; the second field
        // starts (sourceHeight x line bytes) / 2 into the source and ends last.
        calls = (height + 1) / 2;
        const std::uint64_t second = std::uint32_t(sourceHeight * std::uint32_t(sourceLine)) / 2;
        if (line.read)
            sizes.source = second + (calls - 1) * sourceLine + line.read;
        destinationLines = 2 * calls;
    } else {
        if ((Is<ZoBayerRGB8ToRGB>(c) || Is<ZoBayerRGB16ToRGB>(c)) && !(flags & ZO_FLAG_BAYER_INTERPOLATE))
            step = 2;  // replicating: a pair of lines a call
        calls = (height + step - 1) / step;
        if (line.read)
            sizes.source = (calls * step - 1) * sourceLine + line.read;
        destinationLines = calls * step;
    }
    if (Is<ZoDualLinesGrayscale8ToGrayscale8>(c)) {
        // Even lines read 2n - 1 bytes of their own source line, odd lines 2n
        // bytes from byte 1 of the line before.
        sizes.source = 0;
        for (std::uint64_t i = 0; i < height && n; ++i)
            sizes.source = std::max(sizes.source, i % 2 == 0 ? i * sourceLine + 2 * n - 1 : (i - 1) * sourceLine + 2 * n);
    }
    if (line.write)
        sizes.destination = (destinationLines - 1) * destinationLine + line.write;
    if (planar && line.write)
        sizes.destination += 2 * std::uint64_t(std::uint32_t(destinationWidth * destinationHeight));
    sizes.destinationBefore = line.before;
    return sizes;
}

}  // namespace zofuzz
