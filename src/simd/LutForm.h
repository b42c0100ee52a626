// Tables evaluated by arithmetic: a filter's channel table that equals, at
// every index a conversion can use, a formula of a few 16-bit vector
// operations is applied with those operations instead of lookups, at full
// vector width for 8- and 16-bit tables alike.
//
// The formula is the shape ZoRGBFilter::SetMultipliers gives a table,
// entry i = min(offset + floor(i * m), last), written with 16-bit lane
// operations (all arithmetic modulo 2^16 unless said otherwise):
//
//   j = min(i, k)                       (general form only)
//   f = floor(j * F / 2^32), F = fh * 2^16 + fl  (fl = 0: one multiply-high)
//   general: r = a*j + f + off, plus delta where i > k
//   fast:    r = min(sat(sat(a*i + f) + off), limit)   (sat: saturating add)
//
// Tables whose multiplier is a short decimal just below its double (1.4 is
// 1.39999999999999991...) are not such floors: SetMultipliers rounds
// i * m to a double before truncating, which lifts some products that fall
// just short of an integer to it. For them the exact form repeats that
// double arithmetic, lane by lane (AVX2 and AVX-512 only):
//
//   exact:   r = trunc((double(j) * m) + off) for j = min(i, k), plus delta where i > k
//
// with m one of the doubles next to the fraction the search found. It runs
// about twice as long as the fixed-point forms, still faster than 16-bit
// lookups; on bytes it is no faster than the lookups and is not used.
// Cheaper, and good for such tables without offset and below 32768: with
// p/q the fraction the multiplier stands for, the entries are the floors of
// i * p/q except at the multiples i of q whose value N = i * p/q lies in the
// upper part of its power-of-two range (there the product falls short of N
// by more than half a double step, is not lifted, and the entry is N - 1):
//
//   corrected: h = fast form with a fraction fh >= p/q, g = the same with
//              fg < p/q (h - g = 1 exactly at the multiples),
//              x = h + h*kap/2^16 (passes the next power of two exactly
//              for N in the upper part: then x ^ h > h),
//              r = h - min(h - g, sat(x ^ h - h))
//
// The parameters are derived from the table's own entries: the offset is
// entry 0, `limit` the last entry, k the last index below it, a the integer
// part of the slope and F a fixed-point fraction inside the interval of
// slopes that give the table's floors (found by a Stern-Brocot search that
// reads the table as its oracle). A derived form is only ever used after it
// was evaluated at every index the conversion can use and compared with the
// table there: any table, multiplier-built or written entry by entry, gives
// the bytes its lookups give, or no form at all (and the lookups run).
//
// Where the checks run: 8-bit tables (768 entries) in a per-thread cache of
// the last four sets, keyed by their contents and compared whole on every
// line (a table edited between calls misses the cache; a thread that
// alternates between a few filters finds each one's plan again); 16-bit
// tables (3 x 65536 entries, too many to compare per line) once per area
// conversion, through a scope the converter opens for the call (the filter
// must not change while a conversion through it runs), at the indices below
// the filter's entry count and the first one past it (entries past the
// count hold the last entry and cannot be set).
#ifndef ZO_SIMD_LUT_FORM_H
#define ZO_SIMD_LUT_FORM_H

#include <cstdint>

namespace zo {
namespace simd {

// One channel's parameters, and whether the fast form and the one-multiply
// fraction reproduce it.
struct LutChannelForm {
    std::uint16_t k, a, fh, fl, off, limit, delta;
    bool fixed;   // a fixed-point fraction fits the interval (fh, fl set)
    bool fast;    // the fast form holds (no wrap of a*i; i > k clamps by itself)
    bool narrow;  // fl == 0
    double lower, upper;  // the slopes a + p/q and a + r/s (doubles) bounding the search's interval
    double scale;         // the exact form's multiplier
    std::uint32_t num[2], den[2];  // p/q and r/s themselves
    std::uint16_t fg, kap;         // the corrected form (fh: the upper fraction)
};

// Derives the form of a table of n entries (n = 256 or 65536) from its
// entries; false when they cannot have one. The form still has to be
// checked at every index.
bool DeriveLutForm(const std::uint8_t* table, std::uint32_t n, LutChannelForm& form);
bool DeriveLutForm(const std::uint16_t* table, std::uint32_t n, LutChannelForm& form);

// The formula at index i, lane arithmetic as the vector passes compute it.
std::uint16_t EvalLutForm(const LutChannelForm& form, bool general, bool wide, std::uint16_t i);
// The exact form at index i, with form.scale.
std::uint16_t EvalLutExact(const LutChannelForm& form, std::uint16_t i);
// The corrected form at index i (fg == fh and kap == 0: the fast form).
std::uint16_t EvalLutCorrected(const LutChannelForm& form, std::uint16_t i);
// The byte the saturating form (LutFormPlan8::saturating) gives at index i.
std::uint8_t EvalLutSaturating8(const LutChannelForm& form, bool corrected, std::uint8_t i);
// The unit form of a byte table at index i: h and g the sums i + MulHi(i,
// fh) and i + MulHi(i, fg) saturated to 255, x = h + h*kap/2^16, and g where
// x passed the power of two above h, else h (corrected false: h).
std::uint8_t EvalLutUnit8(const LutChannelForm& form, bool corrected, std::uint8_t i);
// Up to six multipliers to try for the exact form (the doubles at and next
// to both ends of the interval); returns how many.
unsigned LutExactCandidates(const LutChannelForm& form, double (&scales)[6]);

// Lane parameters, in the order the vector kernels read them. The corrected
// form reads fg from the kLutFl lanes and kap from the kLutK lanes.
enum LutParam : unsigned { kLutK = 0, kLutA, kLutFh, kLutFl, kLutOff, kLutLimit, kLutParamCount };

// Scaled forms of byte tables with slopes from 1 up to 2, for kernels that
// hold the values to look up as signed 16-bit lanes v, |v| < 8192, and
// bring the results to 0-255 with a saturating pack (the YUV transform's
// unclamped results). With x = 4v and signed multiply-highs, which give
// floor(x * B / 2^16) = floor(v * B / 2^14):
//   fast:      r = h = MulHi(x, high)
//   corrected: g = MulHi(x, low), l = MulHi(x, cross),
//              r = l > (l ^ h) ? g : h   (g where l reaches h's top bit)
// The fast form costs two operations where the unit form (EvalLutUnit8)
// costs three, the corrected one seven where the unit form costs eleven
// (the unit forms need v clamped to 0-255 first). high and low are at
// least 2^14: v past 255 gives at least 256, v below 0 at most -1, so the
// pack gives 255 and 0, the entries a clamp to 0-255 before the table
// gives (entry 0 is 0 and entry 255 is 255 wherever a form exists).
// The corrected form is for gains just below a short decimal (1.4), whose
// tables some products were lifted in (see above): h misses them by one,
// g gives them, and l tells them apart by the power of two they lie under.
// A fast form has low = cross = 0.
struct LutScaledForm {
    std::uint16_t high, low, cross;
    bool valid, corrected;
};

// The scaled form of a 256-entry table; false (form.valid false) where it
// has none. Every form returned was evaluated at each index and matched.
bool DeriveLutScaledForm(const std::uint8_t* table, LutScaledForm& form);
// The byte the scaled form gives for the lane value v (|v| < 8192).
std::uint8_t EvalLutScaled8(const LutScaledForm& form, std::int32_t v);

// 8-bit tables on 3- or 4-byte pixels. A register of bytes is widened to
// 16-bit lanes by unpacking its low and high eight bytes of every 128-bit
// lane with zeros; lanes[p][h][q][j] is parameter q of 16-bit lane j of half
// h (0: low, 1: high) in a register that starts p bytes into a pixel. 32
// lanes cover 512-bit registers; narrower registers use the first lanes.
// The fourth byte of a 4-byte pixel takes the identity form.
// saturating: the fast or corrected form without its limit, leaving lanes
// past 255 to the pack's saturation (every table ends at 255).
// identity[p]: the table at byte p of a pixel gives every index itself
// (kernels that hold the channels apart skip it; FormPlan8 sets it).
// unit[p]: the table at byte p has slope 1 and no offset in a saturating
// plan and its unit form (EvalLutUnit8) gives it at every index (FormPlan8
// checks it; kernels may then evaluate that form instead).
// scaled[p]: the scaled form of the table at byte p (valid false where it
// has none; FormPlan8 sets it).
struct LutFormPlan8 {
    alignas(64) std::uint16_t lanes[3][2][kLutParamCount][32];
    unsigned pixelBytes;
    bool general, corrected, saturating;
    bool identity[3];
    bool unit[3];
    LutScaledForm scaled[3];
};

// 16-bit tables on RGB48 lines (red, green, blue words). lanes[p][q][j]:
// parameter q of word lane j in a register that starts p words into a pixel.
// exact: the exact form (k and delta in the lanes, the multiplier and the
// offset of each lane in scale and offset); corrected: the corrected form.
// identity[c]: channel c's table gives every index itself; identityBelow[c]:
// it gives every index below this count itself (the entries from 0 up to
// the first that differs; LutForm16Scope sets both). Kernels whose values
// in a block all lie below it may leave that channel as it is there.
// channel[c][q][j], channelScale[c][j], channelOffset[c][j]: channel c's
// parameters in every lane, for kernels that hold one channel a register
// (read straight from the plan: nothing to set up per line).
struct LutFormPlan16 {
    alignas(64) std::uint16_t lanes[3][kLutParamCount][32];
    alignas(64) double scale[3][32];
    alignas(64) double offset[3][32];
    alignas(64) std::uint16_t channel[3][kLutParamCount][32];
    alignas(64) double channelScale[3][32];
    alignas(64) double channelOffset[3][32];
    bool general, wide, exact, corrected;
    bool identity[3];
    std::uint32_t identityBelow[3];
    // Corrected plans: h and g differ by at most one at every index (every
    // channel's limit times fh - fg is below 2^16), so r = h - min(h - g,
    // sat(x ^ h - h)) is g where x ^ h > h and h elsewhere, which kernels
    // may compute with a compare and a select instead.
    bool pickable;
};

// RGB 5:6:5 words keep the top five bits of red and blue and the top six
// of green, so before packing a table needs to be matched only in those
// bits. fraction[c]: the fraction of the fast unit form
// h = min(255, i + (i * fraction >> 16)) (EvalLutUnit8 with fh = fraction)
// whose kept bits are table c's at every index; identity[c]: table c gives
// every index itself (its fraction is 0, which gives it too). Tables in
// the order red, green, blue (byte0..byte2).
struct LutRgb16Forms {
    std::uint16_t fraction[3];
    bool identity[3];
};

// Searches the fraction of one table whose unit form matches it in all but
// its low `dropBits` bits; false where there is none. Of the gains 1.00,
// 1.01, ... 1.99 (tables as ZoRGBFilter::SetMultipliers makes them), every
// one has such a form for red and blue's five bits, all but 1.4 for
// green's six, all but five for all eight bits.
bool PackedUnitFraction(const std::uint8_t* table, unsigned dropBits, std::uint16_t& fraction);

// The RGB16 forms of three tables, or null where one has none. The pointer
// stays valid on this thread until its next call of this function.
struct LutTables8;
const LutRgb16Forms* Rgb16Forms(const LutTables8& tables);

// The plan for 8-bit tables (byte order of the layout) on pixels of
// `pixelBytes` (fast, general or corrected forms), or null when a table has
// none. The pointer stays valid on this thread until its next call of this
// function.
struct LutTables8;
const LutFormPlan8* FormPlan8(const LutTables8& tables, unsigned pixelBytes);

// Plans the 16-bit tables (red, green, blue) of an area conversion for the
// calling thread while it lives: lines ask ScopedFormPlan16 for the tables
// they are given. `worth` false (or no form, or no arithmetic pass at this
// level) opens an empty scope. Scopes nest (the innermost one answers).
// `entries`: the caller guarantees that in each table every entry from
// index `entries` on equals the last one (a filter's entries past its entry
// count, which cannot be set); the forms are then checked at the indices up
// to `entries` only (4097 a channel for a 12-bit filter instead of 65536),
// and shown to hold past it by their shape. 0 or 65536 and more: all
// indices.
class LutForm16Scope {
public:
    LutForm16Scope(const std::uint16_t* red, const std::uint16_t* green, const std::uint16_t* blue, bool worth,
                   std::uint32_t entries = 65536);
    ~LutForm16Scope();
    LutForm16Scope(const LutForm16Scope&) = delete;
    LutForm16Scope& operator=(const LutForm16Scope&) = delete;

    const LutFormPlan16* Plan(const std::uint16_t* red, const std::uint16_t* green,
                              const std::uint16_t* blue) const;

private:
    LutFormPlan16 mPlan;
    const std::uint16_t* mTables[3];
    bool mValid;
    LutForm16Scope* mOuter;
};

// The innermost scope's plan on this thread if it was made for these tables.
const LutFormPlan16* ScopedFormPlan16(const std::uint16_t* red, const std::uint16_t* green,
                                      const std::uint16_t* blue);

// Fills a plan from three channel forms (index 0, 1, 2 = position in the
// pixel or word triple), for the planners. An exact plan reads k, delta and
// every form's scale; a corrected one (every form fast and narrow) fg and kap.
void FillFormPlan8(const LutChannelForm (&forms)[3], unsigned pixelBytes, bool general, bool corrected,
                   LutFormPlan8& plan);
void FillFormPlan16(const LutChannelForm (&forms)[3], bool general, bool wide, bool exact, bool corrected,
                    LutFormPlan16& plan);

}  // namespace simd
}  // namespace zo

#endif
