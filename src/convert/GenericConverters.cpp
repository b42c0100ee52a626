// Identity copies and chains of two converters.
#include "ZoGenericConverters.h"

#include <cstring>
#include <new>
#include <vector>

#include "convert/BandWindow.h"
#include "convert/ChainFrame.h"
#include "core/PixelTypeId.h"

ZoIdentityConverter::ZoIdentityConverter(const std::int64_t& sourceType, const std::int64_t& destinationType,
                                         std::uint32_t sourcePixelSize, std::uint32_t destinationPixelSize)
    : ZoPixelConverter(sourceType, destinationType, sourcePixelSize, destinationPixelSize, 1, 1)
{
}

ZoIdentityConverter::~ZoIdentityConverter() = default;

// Both forms copy source-sized pixels; the destination size is not used.
std::uint32_t ZoIdentityConverter::Convert(const unsigned char* source, unsigned char* destination,
                                           std::uint32_t count) const
{
    // An empty line copies nothing: its buffers may be null.
    if (count != 0)
        std::memcpy(destination, source, GetSourceByteSize(count));
    return ZO_OK;
}

std::uint32_t ZoIdentityConverter::Convert(const unsigned char* source, unsigned char* destination) const
{
    std::memcpy(destination, source, GetSourceByteSize(1));
    return ZO_OK;
}

// ---------------------------------------------------------------------------

namespace {

// Bytes kept free before and after an intermediate frame.
constexpr std::uint32_t kFrameMargin = 64;

}  // namespace

// The intermediate buffer of one call: the chain's own when it is free, else
// one for this call alone.
class ZoComplexConverter::Scratch {
public:
    explicit Scratch(std::mutex& lock) : mLock(lock, std::try_to_lock) {}
    std::unique_lock<std::mutex> mLock;
    std::vector<unsigned char> mOwn;
};

// Deliberately not the least common multiple: combine(4, 6) is 24, as the
// line and pipelining sizes of chains have always been reckoned. A zero size
// (which would divide by zero) gives 0.
std::uint32_t ZoComplexConverter::Combine(std::uint32_t a, std::uint32_t b)
{
    if (a == 0 || b == 0)
        return 0;
    const std::uint32_t m = a > b ? a : b;
    return (m % a == 0 && m % b == 0) ? m : a * b;
}

ZoComplexConverter::ZoComplexConverter(ZoPixelConverter* first, ZoPixelConverter* second)
    : ZoPixelConverter(first->GetSourceType(), second->GetDestinationType(), first->GetSourceByteSize(),
                       second->GetDestinationByteSize(),
                       Combine(first->GetPipeliningSize(), second->GetPipeliningSize()),
                       Combine(first->GetLinesPerConvert(), second->GetLinesPerConvert())),
      mBuffer(nullptr),
      mBufferSize(0),
      mFirst(first),
      mSecond(second)
{
}

ZoComplexConverter::~ZoComplexConverter()
{
    delete[] mBuffer;
    mBuffer = nullptr;
    mBufferSize = 0;
}

std::uint32_t ZoComplexConverter::GetSourceByteSize(std::uint32_t pixelCount) const
{
    return mFirst->GetSourceByteSize(pixelCount);
}

std::uint32_t ZoComplexConverter::GetDestinationByteSize(std::uint32_t pixelCount) const
{
    return mSecond->GetDestinationByteSize(pixelCount);
}

unsigned char* ZoComplexConverter::AcquireBuffer(std::uint32_t needed, std::uint32_t lineBytes,
                                                Scratch& scratch) const
{
    // Some first stages write a little outside the frame they are given: the
    // packed unpackers one pixel before or after an odd-width line, the
    // replicating Bayer walk one line past an odd height, the group-of-four
    // repackers up to three pixels past a line; some second stages read as
    // far. The intermediate frame therefore sits inside a margin: kMargin
    // bytes before it, one intermediate line and kMargin bytes after it.
    constexpr std::uint32_t kMargin = kFrameMargin;
    const std::uint64_t total = std::uint64_t{kMargin} + needed + lineBytes + kMargin;
    // A frame whose size the shared buffer's 32-bit size cannot record gets
    // a buffer of its own as well.
    if (!scratch.mLock.owns_lock() || total > zo::kChainFrameLimit) {
        scratch.mOwn.resize(total);
        return scratch.mOwn.data() + kMargin;
    }
    // The shared buffer grows (contents not kept) and never shrinks.
    if (mBufferSize < total) {
        delete[] mBuffer;
        mBuffer = nullptr;
        mBufferSize = 0;
        mBuffer = new unsigned char[static_cast<std::size_t>(total)];
        mBufferSize = static_cast<std::uint32_t>(total);
    }
    return mBuffer + kMargin;
}

std::uint32_t ZoComplexConverter::Convert(const unsigned char* source, unsigned char* destination) const
{
    Scratch scratch(mBufferLock);
    unsigned char* buffer = AcquireBuffer(mFirst->GetDestinationByteSize(1), 0, scratch);
    const std::uint32_t r = mFirst->Convert(source, buffer);
    if (r != ZO_OK)
        return r;
    return mSecond->Convert(buffer, destination);
}

std::uint32_t ZoComplexConverter::Convert(const unsigned char* source, unsigned char* destination,
                                          std::uint32_t count) const
{
    // L intermediate lines of `count` pixels, sized in 64 bits.
    std::uint64_t needed = 0;
    if (!zo::ChainFrameBytes(mFirst->GetDestinationByteSize(), count, GetLinesPerConvert(), &needed))
        return ZO_ERR_BAD_ARGUMENT;
    const std::uint32_t lineBytes = mFirst->GetDestinationByteSize() * count;  // fits: checked above
    try {
        // The chain and each stage hold the thread's record for the call.
        ContextHold chain(*this), firstHold(*mFirst), secondHold(*mSecond);
        ZoPixelConverterContext& context = chain.Context();
        Scratch scratch(mBufferLock);
        unsigned char* buffer = AcquireBuffer(static_cast<std::uint32_t>(needed), lineBytes, scratch);
        // Both stages step through the intermediate buffer by intermediate lines.
        context.destinationLineBytes = mFirst->GetDestinationByteSize(count);
        context.sourceLineBytes = mSecond->GetSourceByteSize(count);
        const std::uint32_t r = mFirst->Convert(source, buffer, count);
        if (r != ZO_OK)
            return r;
        return mSecond->Convert(buffer, destination, count);
    } catch (const std::bad_alloc&) {
        return ZO_ERR_BAD_ARGUMENT;
    }
}

std::uint32_t ZoComplexConverter::Convert(const unsigned char* source, std::uint32_t sourceWidth,
                                          std::uint32_t sourceHeight, unsigned char* destination,
                                          std::uint32_t destinationWidth, std::uint32_t destinationHeight,
                                          std::uint32_t width, std::uint32_t height, std::uint32_t flags,
                                          std::uint32_t destinationPadding) const
{
    // The second stage walks the intermediate frame, which holds the source
    // frame and nothing else: an area beyond it would read bytes no stage
    // wrote.
    if (width > sourceWidth || height > sourceHeight)
        return ZO_ERR_BAD_ARGUMENT;
    // The frame and one line after it (see below), sized in 64 bits.
    std::uint64_t frameBytes = 0;
    if (!zo::ChainFrameBytes(mFirst->GetDestinationByteSize(), sourceWidth, std::uint64_t{sourceHeight} + 1,
                             &frameBytes))
        return ZO_ERR_BAD_ARGUMENT;
    const std::uint32_t lineBytes = mFirst->GetDestinationByteSize() * sourceWidth;  // fits: checked above
    const zo::BandWindow window = zo::ThreadBandWindow();
    try {
        ContextHold chain(*this), firstHold(*mFirst), secondHold(*mSecond);
        ZoPixelConverterContext& context = chain.Context();
        // Converts intermediate lines [from, to) into `frame` (where line 0
        // of the intermediate frame is, or would be) and then the area, or
        // the band of it, from there.
        auto convert = [&](unsigned char* frame, std::uint32_t from, std::uint32_t to) {
            // The first stage converts the source frame, with the caller's
            // filter if there is one; it clears the filter when it returns,
            // so the second stage runs with the default identity filter.
            std::uint32_t r;
            {
                const zo::BandWindowScope lines({window.active, from, to});
                r = mFirst->Convert(source, sourceWidth, sourceHeight, frame, sourceWidth, sourceHeight,
                                    sourceWidth, sourceHeight, flags, 0);
            }
            if (r != ZO_OK)
                return r;
            // A replicating Bayer second stage with an odd height converts
            // the pair (height - 1, height) and so reads the line after the
            // frame. That line is a copy of line height - 2 (line 0 for a
            // one-line frame): the last line of the same colour row as the
            // missing line, so the last output row takes the colours of the
            // row above it, and the output depends on this call's input
            // alone (never on an earlier frame's bytes left in the buffer).
            if (to == sourceHeight && sourceHeight != 0) {
                const std::uint32_t copied = sourceHeight >= 2 ? sourceHeight - 2 : 0;
                std::memcpy(frame + std::size_t{sourceHeight} * lineBytes,
                            frame + std::size_t{copied} * lineBytes, lineBytes);
            }
            {
                const zo::BandWindowScope band(window);
                r = mSecond->Convert(frame, sourceWidth, sourceHeight, destination, destinationWidth,
                                     destinationHeight, width, height, flags, destinationPadding);
            }
            context.filter = nullptr;
            return r;
        };
        if (!window.active) {
            Scratch scratch(mBufferLock);
            unsigned char* buffer =
                AcquireBuffer(static_cast<std::uint32_t>(frameBytes - lineBytes), lineBytes, scratch);
            return convert(buffer, 0, sourceHeight);
        }
        // A band: the first stage converts, into storage of this call alone,
        // the intermediate lines the second stage's calls for the band read
        // (on even lines, where a replicating Bayer first stage can start
        // and end). Bands thus run concurrently through one chain.
        const bool planar = ZoIdHas(mSecond->GetDestinationType(), ZO_PIXEL_PLANAR) &&
                            !ZoIdHas(mSecond->GetSourceType(), ZO_PIXEL_PLANAR);
        const std::uint32_t stride =
            planar ? sourceWidth : mSecond->GetDestinationByteSize(destinationWidth) + destinationPadding;
        const std::uint64_t reach =
            zo::BandReadReach(stride, std::uint64_t{mSecond->GetDestinationByteSize()} * sourceWidth);
        std::uint32_t from = window.firstLine > reach ? static_cast<std::uint32_t>(window.firstLine - reach) : 0;
        from &= ~1u;
        const std::uint64_t past = reach >= sourceHeight ? sourceHeight : window.endLine + reach + 1;  // made even
        const std::uint32_t to = past >= sourceHeight ? sourceHeight : static_cast<std::uint32_t>(past & ~1ull);
        // The line after the frame is copied from line height - 2, which the
        // storage must then hold as well: `from` is even and height - 2 is
        // odd at an odd height, so stepping back to the even line below it
        // keeps the first stage starting on an even line.
        if (to == sourceHeight && sourceHeight >= 2 && from > sourceHeight - 2)
            from = (sourceHeight - 2) & ~1u;
        std::vector<unsigned char> lines(std::size_t{kFrameMargin} + std::size_t{to - from + 1} * lineBytes +
                                         kFrameMargin);
        return convert(lines.data() + kFrameMargin - std::ptrdiff_t{from} * lineBytes, from, to);
    } catch (const std::bad_alloc&) {
        return ZO_ERR_BAD_ARGUMENT;
    }
}
