// The converter base class, its calling forms and the per-thread context.
#ifndef ZO_PIXEL_CONVERTER_H
#define ZO_PIXEL_CONVERTER_H

#include <cstdint>

#include "ZoPixelTypeIDs.h"
#include "ZoRGBFilter.h"
#include "ZoUtils.h"

// Layout of a Bayer area conversion: colour phase of even and odd source
// rows (0 = green,red; 1 = green,blue; 2 = red,green; 3 = blue,green) and
// the 3x3 neighbour offsets, in samples, of pixels 0, 2, 4, 6 of an
// eight-pixel group.
struct ZoBayerLayout {
    std::int32_t evenRowPhase;
    std::int32_t oddRowPhase;
    std::int32_t neighbourOffsets[9][4];
};

// The record of one thread inside a conversion. Line converters read it to
// learn the filter, the line sizes and the current line.
struct ZO_API ZoPixelConverterContext : public ZoObject {
    std::uint32_t referenceCount;     // nesting depth of acquisitions by this thread
    std::uint32_t sourceLineBytes;    // GetSourceByteSize(sourceWidth)
    std::uint32_t sourceHeight;
    std::uint32_t destinationLineBytes;  // distance between destination lines
    std::uint32_t destinationHeight;
    std::uint32_t planeOffsets[3];    // planar destination: red, green, blue plane offsets
    std::uint32_t flags;              // area flags after the Bayer default
    const ZoRGBFilter* filter;        // not owned; null outside an area conversion
    std::uint32_t currentLine;        // 0-based line of the current pass
    // Beyond the classic record:
    std::uint32_t areaHeight;         // the `height` of the area conversion in progress
    bool hasBayerLayout;              // bayerLayout was set by the area conversion in progress
    ZoBayerLayout bayerLayout;        // per-call Bayer layout (see the Bayer converters)
};

// Abstract converter from one pixel type to another. One object is shared by
// every thread; per-call state lives in the calling thread's context record.
//
// Buffers are the caller's concern: the forms do not check pointers or sizes.
// Some converters read and write a few pixels beyond `count` (see their
// headers); size buffers accordingly.
class ZO_API ZoPixelConverter : public ZoObject {
public:
    static const std::uint32_t FLAG_INVERT_DEINTERLACER = 0x01;
    static const std::uint32_t FLAG_BAYER_GRBG = 0x10;
    static const std::uint32_t FLAG_BAYER_GBRG = 0x20;
    static const std::uint32_t FLAG_BAYER_RGGB = 0x40;
    static const std::uint32_t FLAG_BAYER_BGGR = 0x80;
    static const std::uint32_t FLAG_BAYER_INTERPOLATE = 0x100;

    virtual ~ZoPixelConverter();

    virtual const std::int64_t& GetSourceType() const;
    virtual const std::int64_t& GetDestinationType() const;
    // Byte sizes: pixel size x count as 32-bit products (wrap).
    virtual std::uint32_t GetSourceByteSize(std::uint32_t pixelCount) const;
    virtual std::uint32_t GetSourceByteSize() const;
    virtual std::uint32_t GetDestinationByteSize(std::uint32_t pixelCount) const;
    virtual std::uint32_t GetDestinationByteSize() const;

protected:
    virtual std::uint32_t GetPipeliningSize() const;
    virtual std::uint32_t GetLinesPerConvert() const;

public:
    // Area conversion through `filter` (the filter is handed to the line
    // converters through the thread's context record).
    virtual std::uint32_t Convert(const ZoRGBFilter& filter, const unsigned char* source,
                                  std::uint32_t sourceWidth, std::uint32_t sourceHeight,
                                  unsigned char* destination, std::uint32_t destinationWidth,
                                  std::uint32_t destinationHeight, std::uint32_t width, std::uint32_t height,
                                  std::uint32_t flags, std::uint32_t destinationPadding) const;
    // Area conversion: walks `height` lines of `width` pixels. Source lines
    // are GetSourceByteSize(sourceWidth) bytes apart, destination lines
    // GetDestinationByteSize(destinationWidth) + destinationPadding. An
    // interlaced source holds its two fields one after the other (the second
    // at sourceHeight x line bytes / 2) and fills even then odd destination
    // lines (swapped by FLAG_INVERT_DEINTERLACER); each field pass converts
    // its lines 0, 2, 4, ... below `height`, so an odd height writes height + 1
    // destination lines. A planar destination holds
    // three planes of destinationWidth x destinationHeight bytes with lines
    // sourceWidth bytes apart. Without a Bayer pattern flag, GRBG is assumed.
    // Always returns 0 (a band conversion, ZoPixelConverter_ConvertBand of
    // ZoImgLibExt.h, goes through this walk and may answer 18 instead).
    virtual std::uint32_t Convert(const unsigned char* source, std::uint32_t sourceWidth,
                                  std::uint32_t sourceHeight, unsigned char* destination,
                                  std::uint32_t destinationWidth, std::uint32_t destinationHeight,
                                  std::uint32_t width, std::uint32_t height, std::uint32_t flags,
                                  std::uint32_t destinationPadding) const;
    // One line of `count` pixels. The base returns 26 and writes nothing.
    virtual std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                                  std::uint32_t count) const;
    // One pixel. The base returns 26 and writes nothing.
    virtual std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const;

    // Library-wide identity filters used when no filter is given: 8-bit for
    // one-byte sources, 16-bit otherwise.
    static const ZoRGBFilter& DefaultFilter(std::uint32_t sourceByteSize);

protected:
    ZoPixelConverter(const std::int64_t& sourceType, const std::int64_t& destinationType,
                     std::uint32_t sourcePixelSize, std::uint32_t destinationPixelSize,
                     std::uint32_t pipeliningSize, std::uint32_t linesPerConvert);

    // The calling thread's context record, created on the first acquisition;
    // each call counts one acquisition that ReleaseContext takes back.
    ZoPixelConverterContext& GetContext() const;
    void ReleaseContext() const;

    // The filter in force: the context's, or the default identity filter for
    // this converter's source size when none is set (direct line calls).
    const ZoRGBFilter& ActiveFilter(const ZoPixelConverterContext& context) const
    {
        return context.filter ? *context.filter : DefaultFilter(GetSourceByteSize());
    }

    // Acquires the context for a scope and releases it on the way out, also
    // when the scope is left by an exception.
    class ContextHold {
    public:
        explicit ContextHold(const ZoPixelConverter& converter)
            : mConverter(converter), mContext(converter.GetContext()) {}
        ~ContextHold() { mConverter.ReleaseContext(); }
        ContextHold(const ContextHold&) = delete;
        ContextHold& operator=(const ContextHold&) = delete;
        ZoPixelConverterContext& Context() const { return mContext; }

    private:
        const ZoPixelConverter& mConverter;
        ZoPixelConverterContext& mContext;
    };

    friend class ZoComplexConverter;

private:
    ZoPixelConverter(const ZoPixelConverter&) = delete;
    ZoPixelConverter& operator=(const ZoPixelConverter&) = delete;

    std::int64_t mSourceType;
    std::int64_t mDestinationType;
    std::uint32_t mSourcePixelSize;
    std::uint32_t mDestinationPixelSize;
    std::uint32_t mPipeliningSize;
    std::uint32_t mLinesPerConvert;
};

#endif
