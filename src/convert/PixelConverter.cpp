// The converter base: registration, byte sizes, the per-thread context and
// the area walk.
#include "ZoPixelConverter.h"

#include <map>

#include "ZoPixelTypeFactory.h"
#include "convert/BandWindow.h"
#include "core/PixelTypeId.h"
#include "core/StreamStores.h"

namespace {

// Context records of the threads inside a conversion, by thread ID, guarded
// by one library-wide gate.
struct ContextMap {
    ZoGate gate;
    std::map<std::uint32_t, ZoPixelConverterContext*> records;
};

ContextMap& Contexts()
{
    static ContextMap map;
    return map;
}

// The calling thread's record while it holds one. It caches the map lookup,
// so that the gate is entered only by a thread's first acquisition and last
// release, never per line: threads converting at once do not serialise.
thread_local ZoPixelConverterContext* tContext = nullptr;

}  // namespace

// Out-of-class definitions, so that the flags may be bound to references
// (and are exported with the class).
const std::uint32_t ZoPixelConverter::FLAG_INVERT_DEINTERLACER;
const std::uint32_t ZoPixelConverter::FLAG_BAYER_GRBG;
const std::uint32_t ZoPixelConverter::FLAG_BAYER_GBRG;
const std::uint32_t ZoPixelConverter::FLAG_BAYER_RGGB;
const std::uint32_t ZoPixelConverter::FLAG_BAYER_BGGR;
const std::uint32_t ZoPixelConverter::FLAG_BAYER_INTERPOLATE;

ZoPixelConverter::ZoPixelConverter(const std::int64_t& sourceType, const std::int64_t& destinationType,
                                   std::uint32_t sourcePixelSize, std::uint32_t destinationPixelSize,
                                   std::uint32_t pipeliningSize, std::uint32_t linesPerConvert)
    : mSourceType(sourceType),
      mDestinationType(destinationType),
      mSourcePixelSize(sourcePixelSize),
      mDestinationPixelSize(destinationPixelSize),
      mPipeliningSize(pipeliningSize),
      mLinesPerConvert(linesPerConvert)
{
    // The first converter constructed for a pair is the registered one.
    if (!ZoPixelTypeFactory::HasConverter(mSourceType, mDestinationType))
        ZoPixelTypeFactory::RegisterPixelConverter(*this);
}

ZoPixelConverter::~ZoPixelConverter() = default;

const std::int64_t& ZoPixelConverter::GetSourceType() const { return mSourceType; }
const std::int64_t& ZoPixelConverter::GetDestinationType() const { return mDestinationType; }
std::uint32_t ZoPixelConverter::GetSourceByteSize(std::uint32_t pixelCount) const
{
    return mSourcePixelSize * pixelCount;
}
std::uint32_t ZoPixelConverter::GetSourceByteSize() const { return mSourcePixelSize; }
std::uint32_t ZoPixelConverter::GetDestinationByteSize(std::uint32_t pixelCount) const
{
    return mDestinationPixelSize * pixelCount;
}
std::uint32_t ZoPixelConverter::GetDestinationByteSize() const { return mDestinationPixelSize; }
std::uint32_t ZoPixelConverter::GetPipeliningSize() const { return mPipeliningSize; }
std::uint32_t ZoPixelConverter::GetLinesPerConvert() const { return mLinesPerConvert; }

const ZoRGBFilter& ZoPixelConverter::DefaultFilter(std::uint32_t sourceByteSize)
{
    static const ZoRGBFilter identity8(8);
    static const ZoRGBFilter identity16(16);
    return sourceByteSize == 1 ? identity8 : identity16;
}

ZoPixelConverterContext& ZoPixelConverter::GetContext() const
{
    if (ZoPixelConverterContext* record = tContext) {
        ++record->referenceCount;
        return *record;
    }
    ContextMap& map = Contexts();
    ZoGateHold hold(map.gate);
    ZoPixelConverterContext*& record = map.records[ZoThread::GetCurrentThreadID()];
    if (record) {
        ++record->referenceCount;
    } else {
        record = new ZoPixelConverterContext();
        record->referenceCount = 1;
    }
    tContext = record;
    return *record;
}

void ZoPixelConverter::ReleaseContext() const
{
    ZoPixelConverterContext* record = tContext;
    if (!record || --record->referenceCount != 0)
        return;
    {
        ContextMap& map = Contexts();
        ZoGateHold hold(map.gate);
        map.records.erase(ZoThread::GetCurrentThreadID());
    }
    tContext = nullptr;
    delete record;
}

std::uint32_t ZoPixelConverter::Convert(const ZoRGBFilter& filter, const unsigned char* source,
                                        std::uint32_t sourceWidth, std::uint32_t sourceHeight,
                                        unsigned char* destination, std::uint32_t destinationWidth,
                                        std::uint32_t destinationHeight, std::uint32_t width,
                                        std::uint32_t height, std::uint32_t flags,
                                        std::uint32_t destinationPadding) const
{
    ContextHold hold(*this);
    hold.Context().filter = &filter;
    return Convert(source, sourceWidth, sourceHeight, destination, destinationWidth, destinationHeight, width,
                   height, flags, destinationPadding);
}

std::uint32_t ZoPixelConverter::Convert(const unsigned char* source, std::uint32_t sourceWidth,
                                        std::uint32_t sourceHeight, unsigned char* destination,
                                        std::uint32_t destinationWidth, std::uint32_t destinationHeight,
                                        std::uint32_t width, std::uint32_t height, std::uint32_t flags,
                                        std::uint32_t destinationPadding) const
{
    ContextHold hold(*this);
    ZoPixelConverterContext& context = hold.Context();
    if (!context.filter)
        context.filter = &DefaultFilter(GetSourceByteSize());
    if ((flags & ZO_FLAG_BAYER_PATTERN_MASK) == 0)
        flags |= FLAG_BAYER_GRBG;

    const std::uint32_t sourceLineBytes = GetSourceByteSize(sourceWidth);
    context.sourceLineBytes = sourceLineBytes;
    context.destinationLineBytes = GetDestinationByteSize(destinationWidth) + destinationPadding;
    context.sourceHeight = sourceHeight;
    context.destinationHeight = destinationHeight;
    context.flags = flags;
    context.areaHeight = height;

    const std::int64_t sourceType = GetSourceType(), destinationType = GetDestinationType();
    if (ZoIdHas(destinationType, ZO_PIXEL_PLANAR) && !ZoIdHas(sourceType, ZO_PIXEL_PLANAR)) {
        // Three planes one after the other, lines sourceWidth bytes apart
        // (padding does not apply).
        const std::uint32_t plane = destinationWidth * destinationHeight;
        context.planeOffsets[0] = 0;
        context.planeOffsets[1] = plane;
        context.planeOffsets[2] = 2 * plane;
        context.destinationLineBytes = sourceWidth;
    } else {
        context.planeOffsets[0] = context.planeOffsets[1] = context.planeOffsets[2] = 0;
    }
    const std::uint32_t destinationLineBytes = context.destinationLineBytes;
    if (height == 0) {
        // Nothing to convert. The buffers of an empty area may be null, and
        // offsetting a null pointer to the second field is undefined.
        context.filter = nullptr;
        return ZO_OK;
    }

    auto pass = [&](const unsigned char* s, unsigned char* d, std::uint32_t step, std::uint32_t sourceAdvance,
                    std::uint32_t destinationAdvance) {
        for (std::uint32_t i = 0; i < height; i += step) {
            context.currentLine = i;
            Convert(s, d, width);
            s += sourceAdvance;
            d += destinationAdvance;
        }
    };

    // Streaming or ordinary stores for every line, and the one store fence
    // for lines written with streaming stores after the last line call.
    const zo::AreaStores stores(context, destination);

    // A band conversion in progress on this thread makes only the calls
    // that write its lines (see convert/BandWindow.h).
    const zo::BandWindow window = zo::ThreadBandWindow();
    const bool planar = ZoIdHas(destinationType, ZO_PIXEL_PLANAR) && !ZoIdHas(sourceType, ZO_PIXEL_PLANAR);
    std::uint32_t result = ZO_OK;
    if (ZoIdHas(sourceType, ZO_PIXEL_INTERLACED)) {
        // Two fields one after the other in the source: the first fills the
        // even destination lines, the second the odd ones (swapped when
        // FLAG_INVERT_DEINTERLACER is set).
        const unsigned char* secondField = source + (sourceHeight * sourceLineBytes) / 2;
        const bool invert = (flags & FLAG_INVERT_DEINTERLACER) != 0;
        const unsigned char* const fields[2] = {invert ? secondField : source, invert ? source : secondField};
        if (window.active) {
            result = zo::WalkBand(*this, context, window, fields, 2, destination, width, height, 2,
                                  sourceLineBytes, planar);
        } else {
            pass(fields[0], destination, 2, sourceLineBytes, 2 * destinationLineBytes);
            pass(fields[1], destination + destinationLineBytes, 2, sourceLineBytes, 2 * destinationLineBytes);
        }
    } else {
        std::uint32_t step = GetLinesPerConvert();
        if (step == 0)
            step = 1;  // a converter reporting 0 lines would never advance
        if (window.active) {
            const unsigned char* const frame[2] = {source, nullptr};
            result = zo::WalkBand(*this, context, window, frame, 1, destination, width, height, step,
                                  step * sourceLineBytes, planar);
        } else {
            pass(source, destination, step, step * sourceLineBytes, step * destinationLineBytes);
        }
    }
    context.filter = nullptr;
    return result;
}

std::uint32_t ZoPixelConverter::Convert(const unsigned char*, unsigned char*, std::uint32_t) const
{
    return ZO_ERR_NOT_SUPPORTED;
}

std::uint32_t ZoPixelConverter::Convert(const unsigned char*, unsigned char*) const
{
    return ZO_ERR_NOT_SUPPORTED;
}
