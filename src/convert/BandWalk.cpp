// The band walk of the base area conversion.
#include "convert/BandWindow.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace zo {

namespace {
thread_local BandWindow tWindow = {false, 0, 0};
}  // namespace

BandWindow& ThreadBandWindow() { return tWindow; }

std::uint64_t BandReadReach(std::uint64_t stride, std::uint64_t lineBytes)
{
    if (stride == 0)
        return std::numeric_limits<std::uint64_t>::max();
    // A call that may write into the band starts at most (lineBytes + reach)
    // / stride lines before it or reach / stride lines after it, converts up
    // to two lines and reads one line on each side of them.
    return (lineBytes + 2 * kBandWriteReach) / stride + 4;
}

namespace {

// Line calls made into scratch memory, in the whole-area order. Each is made
// twice, into memory filled with 0x00 and with 0xFF: a byte that comes out
// the same both times was written by the calls (the last writer's value, as
// in the whole-area conversion), and only those bytes, where they lie in
// the band's lines, reach the destination.
class ScratchCalls {
public:
    ScratchCalls(const ZoPixelConverter& converter, ZoPixelConverterContext& context, unsigned char* destination,
                 std::uint32_t width, std::int64_t bandStart, std::int64_t bandEnd)
        : mConverter(converter), mContext(context), mDestination(destination), mWidth(width),
          mBandStart(bandStart), mBandEnd(bandEnd)
    {
    }

    // A call at `line` (the walk's current line) writing within destination
    // bytes [from, to), its first line starting at `offset`.
    void Add(std::uint32_t line, const unsigned char* source, std::int64_t offset, std::int64_t from,
             std::int64_t to)
    {
        if (mCalls.empty()) {
            mFrom = from;
            mTo = to;
        }
        mFrom = std::min(mFrom, from);
        mTo = std::max(mTo, to);
        mCalls.push_back({line, source, offset});
    }

    void Flush()
    {
        if (mCalls.empty())
            return;
        const std::size_t size = static_cast<std::size_t>(mTo - mFrom);
        for (int k = 0; k < 2; ++k) {
            mMemory[k].assign(size, k == 0 ? 0x00 : 0xFF);
            for (const Call& call : mCalls) {
                mContext.currentLine = call.line;
                mConverter.Convert(call.source, mMemory[k].data() + (call.offset - mFrom), mWidth);
            }
        }
        const std::int64_t from = std::max(mFrom, mBandStart), to = std::min(mTo, mBandEnd);
        for (std::int64_t x = from; x < to; ++x) {
            const unsigned char a = mMemory[0][static_cast<std::size_t>(x - mFrom)];
            if (a == mMemory[1][static_cast<std::size_t>(x - mFrom)])
                mDestination[x] = a;
        }
        mCalls.clear();
    }

private:
    struct Call {
        std::uint32_t line;
        const unsigned char* source;
        std::int64_t offset;
    };
    const ZoPixelConverter& mConverter;
    ZoPixelConverterContext& mContext;
    unsigned char* mDestination;
    std::uint32_t mWidth;
    std::int64_t mBandStart, mBandEnd;
    std::vector<Call> mCalls;
    std::int64_t mFrom = 0, mTo = 0;
    std::vector<unsigned char> mMemory[2];
};

}  // namespace

std::uint32_t WalkBand(const ZoPixelConverter& converter, ZoPixelConverterContext& context,
                       const BandWindow& window, const unsigned char* const sources[2], std::uint32_t passes,
                       unsigned char* destination, std::uint32_t width, std::uint32_t height, std::uint32_t step,
                       std::uint32_t sourceAdvance, bool planar)
{
    const std::uint32_t linesPerCall = passes == 2 ? 1 : step;
    // A call converting two lines cannot be split: the band starts on its
    // first line and ends after its second (or with the area).
    if (linesPerCall > 1 && (window.firstLine % linesPerCall != 0 ||
                             (window.endLine != height && window.endLine % linesPerCall != 0)))
        return ZO_ERR_BAD_ARGUMENT;

    const std::int64_t stride = context.destinationLineBytes;
    // Byte offsets from the destination in 64 bits; no buffer is this large.
    constexpr std::int64_t kLimit = std::int64_t{1} << 60;
    if (stride != 0 && std::int64_t{height} + 2 > kLimit / stride)
        return ZO_ERR_BAD_ARGUMENT;
    const std::int64_t lineBytes = std::int64_t{converter.GetDestinationByteSize()} * width;

    // The band's bytes: its lines, and for the first and the last band what
    // the area writes before its first line or after its last.
    constexpr std::int64_t kNone = std::numeric_limits<std::int64_t>::max();
    const std::int64_t bandStart = window.firstLine == 0 ? -kNone : window.firstLine * stride;
    const std::int64_t bandEnd = window.endLine == height ? kNone : window.endLine * stride;
    const std::int64_t first = window.firstLine, end = window.endLine;

    ScratchCalls scratch(converter, context, destination, width, bandStart, bandEnd);
    for (std::uint32_t pass = 0; pass < passes; ++pass) {
        const unsigned char* s = sources[pass];
        for (std::uint32_t i = 0; i < height; i += step) {
            const std::int64_t line = std::int64_t{i} + (passes == 2 ? pass : 0);
            if (planar) {
                // Planes take exactly the line's pixels: a call belongs to
                // the band of its line.
                if (line >= first && (line < end || window.endLine == height)) {
                    context.currentLine = i;
                    converter.Convert(s, destination + line * stride, width);
                }
            } else {
                const std::int64_t from = line * stride - kBandWriteReach;
                const std::int64_t to = (line + linesPerCall - 1) * stride + lineBytes + kBandWriteReach;
                if (from < bandEnd && to > bandStart) {
                    if (from >= bandStart && to <= bandEnd) {
                        scratch.Flush();
                        context.currentLine = i;
                        converter.Convert(s, destination + line * stride, width);
                    } else {
                        scratch.Add(i, s, line * stride, from, to);
                    }
                }
            }
            s += sourceAdvance;
        }
    }
    scratch.Flush();
    return ZO_OK;
}

}  // namespace zo
