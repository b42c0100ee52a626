// Identity and chained converters.
#ifndef ZO_GENERIC_CONVERTERS_H
#define ZO_GENERIC_CONVERTERS_H

#include <mutex>

#include "ZoPixelConverter.h"

// Copies bytes unchanged (GetSourceByteSize(count) bytes a line). Registered
// from an interlaced type to its progressive twin it deinterlaces, through
// the base area walk's two field passes, with that walk's buffer rules: an
// odd height writes height + 1 destination lines, and an odd sourceHeight
// reads up to half a source line past the end of the frame (see
// ZoPixelConverter's area form).
class ZO_API ZoIdentityConverter : public ZoPixelConverter {
public:
    ZoIdentityConverter(const std::int64_t& sourceType, const std::int64_t& destinationType,
                        std::uint32_t sourcePixelSize, std::uint32_t destinationPixelSize);
    ~ZoIdentityConverter() override;

    using ZoPixelConverter::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override;
};

// Two converters chained through an intermediate buffer: first's source type
// to second's destination type. The stages are not owned and must outlive
// the chain.
//
// The area form converts the whole source frame (sourceWidth x sourceHeight)
// through the first stage, whatever `width` and `height` say, and the caller's
// filter acts on the first stage only; the second runs with the default
// identity filter. Several threads may convert through one chain at once.
//
// The intermediate frame holds the source frame and one line after it, a
// copy of intermediate line height - 2 (line 0 for a one-line frame): a
// replicating Bayer second stage with an odd height pairs the last line with
// that line, and line height - 2 is the last line of the same colour row as
// the missing one, so the last output row takes the colours of the row
// above. The output is a function of the call's arguments and source bytes
// alone.
//
// Result codes of the area form: a stage's non-zero result, returned as it
// is; 18 (ZO_ERR_BAD_ARGUMENT), with nothing read or written, when the area
// lies beyond the source frame (width > sourceWidth or height >
// sourceHeight: the second stage would read lines no stage wrote), when an
// intermediate line or the intermediate frame with its extra line exceeds
// 4 GiB - 1 bytes (the stages address it through 32-bit byte sizes; for
// instance Gray 8 to RGB 24 Planar at 65536 x 21846), or when it cannot be
// allocated. The line form answers 18 likewise when its intermediate lines
// exceed 4 GiB - 1 bytes or cannot be allocated.
class ZO_API ZoComplexConverter : public ZoPixelConverter {
public:
    ZoComplexConverter(ZoPixelConverter* first, ZoPixelConverter* second);
    ~ZoComplexConverter() override;

    std::uint32_t GetSourceByteSize(std::uint32_t pixelCount) const override;
    using ZoPixelConverter::GetSourceByteSize;
    std::uint32_t GetDestinationByteSize(std::uint32_t pixelCount) const override;
    using ZoPixelConverter::GetDestinationByteSize;

    using ZoPixelConverter::Convert;
    // Buffers: the source must hold what the first stage reads converting
    // the whole sourceWidth x sourceHeight frame, over-reads included,
    // whatever `width` and `height` say: an interlaced source with an odd
    // sourceHeight (up to half a source line past the frame), a replicating
    // Bayer first stage with an odd sourceHeight (one source line past the
    // frame), and the line over-reads of packed, dual-tap, 4:2:2 and grouped
    // RGB first stages at the end of the last line. The destination must
    // hold what the second stage writes converting the area from there: a
    // replicating Bayer second stage with an odd `height` writes one
    // destination line past the area. An area beyond the source frame
    // (width > sourceWidth or height > sourceHeight) is refused with 18.
    std::uint32_t Convert(const unsigned char* source, std::uint32_t sourceWidth, std::uint32_t sourceHeight,
                          unsigned char* destination, std::uint32_t destinationWidth,
                          std::uint32_t destinationHeight, std::uint32_t width, std::uint32_t height,
                          std::uint32_t flags, std::uint32_t destinationPadding) const override;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override;

    const ZoPixelConverter* GetFirst() const { return mFirst; }
    const ZoPixelConverter* GetSecond() const { return mSecond; }

    // combine(a, b): the larger of a and b if both divide it, else a x b
    // (not the least common multiple: combine(4, 6) is 24).
    static std::uint32_t Combine(std::uint32_t a, std::uint32_t b);

private:
    class Scratch;
    unsigned char* AcquireBuffer(std::uint32_t needed, std::uint32_t lineBytes, Scratch& scratch) const;

    // The chain's own intermediate buffer, used by whichever thread holds
    // mBufferLock; a thread that finds it busy uses a buffer of its own for
    // that call, so concurrent conversions never share bytes.
    mutable unsigned char* mBuffer;
    mutable std::uint32_t mBufferSize;
    mutable std::mutex mBufferLock;
    ZoPixelConverter* mFirst;
    ZoPixelConverter* mSecond;
};

#endif
