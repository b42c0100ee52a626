// The band window: which destination lines of an area conversion the
// calling thread converts. Internal to the library.
//
// The band entry point of the extension interface sets the window and then
// calls the ordinary area conversion. The base area walk makes, of the line
// calls a whole-area conversion makes, those that write the window's lines,
// in the same order, with the same current line and area height in the
// context, so that every line comes out as in the whole-area conversion.
// Chained converters read the window in their area conversion and give each
// stage a window of its own. Without a window (the default) the walk
// converts the whole area as it always has.
#ifndef ZO_BAND_WINDOW_H
#define ZO_BAND_WINDOW_H

#include <cstdint>

#include "ZoPixelConverter.h"

namespace zo {

struct BandWindow {
    bool active;
    std::uint32_t firstLine;  // first destination line of the band
    std::uint32_t endLine;    // one past its last line; equal to the area height for the last band
};

// The calling thread's window (inactive unless a band conversion is in
// progress on this thread).
BandWindow& ThreadBandWindow();

// Sets the thread's window for a scope and puts back the previous one.
class BandWindowScope {
public:
    explicit BandWindowScope(const BandWindow& window) : mSaved(ThreadBandWindow())
    {
        ThreadBandWindow() = window;
    }
    ~BandWindowScope() { ThreadBandWindow() = mSaved; }
    BandWindowScope(const BandWindowScope&) = delete;
    BandWindowScope& operator=(const BandWindowScope&) = delete;

private:
    BandWindow mSaved;
};

// How far, in bytes, a line call may write before the start or past the end
// of the lines it converts (a 4:2:2 pixel, a group of four RGB pixels, a
// packed or dual-tap pixel before the line): a bound on every documented
// over-write, with room to spare.
constexpr std::int64_t kBandWriteReach = 64;

// The line calls of a band that may write bytes of other lines are made
// into scratch memory, and only the bytes they write inside the band's lines
// are copied out. A chain must therefore have converted, into its
// intermediate frame, the lines those calls read: this many lines on each
// side of the band are enough, for destination lines `stride` bytes apart
// and line calls writing `lineBytes` bytes.
std::uint64_t BandReadReach(std::uint64_t stride, std::uint64_t lineBytes);

// The walk of a band of the area conversion in progress on this thread: the
// context holds the area's line sizes, flags and filter. `passes` is 1 for
// progressive sources (calls every `step` lines from `sources[0]`) or 2 for
// interlaced ones (each pass converts the lines i = 0, 2, 4, ... below
// `height`, pass p writing destination line i + p from sources[p]).
// Answers 18, before converting anything, when the window cannot be
// converted by this walk (a band of two-line calls that starts or ends
// between the two lines of a call).
std::uint32_t WalkBand(const ZoPixelConverter& converter, ZoPixelConverterContext& context,
                       const BandWindow& window, const unsigned char* const sources[2], std::uint32_t passes,
                       unsigned char* destination, std::uint32_t width, std::uint32_t height, std::uint32_t step,
                       std::uint32_t sourceAdvance, bool planar);

}  // namespace zo

#endif
