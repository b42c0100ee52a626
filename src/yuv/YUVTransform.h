// The one home of the YUV-to-RGB colour transform: ITU-R BT.601 studio range
// (Y 16..235, U and V 16..240 centred on 128) in 8.8 fixed point.
//
//   C = Y - 16, D = U - 128, E = V - 128
//   R = (298 C         + 409 E + 128) >> 8
//   G = (298 C - 100 D - 208 E + 128) >> 8
//   B = (298 C + 516 D         + 128) >> 8
//
// The shifts are arithmetic (they round toward minus infinity, so -18.1
// becomes -19) on 32-bit signed sums; each result is then clamped to 0..255.
// Every kernel of the family, scalar or vector, computes exactly this.
#ifndef ZO_YUV_TRANSFORM_H
#define ZO_YUV_TRANSFORM_H

#include <cstdint>

namespace zo {
namespace bt601 {

constexpr std::int32_t kLumaOffset = 16;     // black level of Y
constexpr std::int32_t kChromaOffset = 128;  // zero of U and V
constexpr std::int32_t kLumaScale = 298;     // 255 / 219 in 8.8
constexpr std::int32_t kRedFromV = 409;
constexpr std::int32_t kGreenFromU = 100;    // subtracted
constexpr std::int32_t kGreenFromV = 208;    // subtracted
constexpr std::int32_t kBlueFromU = 516;
constexpr std::int32_t kRound = 128;         // half of the 8.8 unit
constexpr int kFractionBits = 8;

// Largest and smallest unclamped results for 8-bit inputs (the ranges a
// clamping table would have to cover).
constexpr std::int32_t kRedMin = -223, kRedMax = 481;
constexpr std::int32_t kGreenMin = -171, kGreenMax = 432;
constexpr std::int32_t kBlueMin = -277, kBlueMax = 534;

// Arithmetic right shift of a signed value (floor division by 2^bits). The
// compilers this library supports shift negative values by sign extension;
// the assertion stops a build where that does not hold.
constexpr std::int32_t FloorShift(std::int32_t v, int bits) { return v >> bits; }
static_assert((-19 >> 1) == -10 && (-4640 >> 8) == -19, "signed >> must be arithmetic");

constexpr std::int32_t RedUnclamped(std::int32_t y, std::int32_t, std::int32_t v)
{
    return FloorShift(kLumaScale * (y - kLumaOffset) + kRedFromV * (v - kChromaOffset) + kRound, kFractionBits);
}

constexpr std::int32_t GreenUnclamped(std::int32_t y, std::int32_t u, std::int32_t v)
{
    return FloorShift(kLumaScale * (y - kLumaOffset) - kGreenFromU * (u - kChromaOffset) -
                          kGreenFromV * (v - kChromaOffset) + kRound,
                      kFractionBits);
}

constexpr std::int32_t BlueUnclamped(std::int32_t y, std::int32_t u, std::int32_t)
{
    return FloorShift(kLumaScale * (y - kLumaOffset) + kBlueFromU * (u - kChromaOffset) + kRound, kFractionBits);
}

// Plain clamp to 0..255 (the same result as a clamping table over the
// ranges above).
constexpr std::uint8_t Clamp255(std::int32_t v)
{
    return static_cast<std::uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v));
}

static_assert(RedUnclamped(0, 0, 0) == kRedMin && RedUnclamped(255, 255, 255) == kRedMax, "red range");
static_assert(GreenUnclamped(0, 255, 255) == kGreenMin && GreenUnclamped(255, 0, 0) == kGreenMax, "green range");
static_assert(BlueUnclamped(0, 0, 0) == kBlueMin && BlueUnclamped(255, 255, 255) == kBlueMax, "blue range");
static_assert(RedUnclamped(16, 128, 128) == 0 && GreenUnclamped(235, 128, 128) == 255, "black and white");
static_assert(RedUnclamped(0, 128, 128) == -19, "arithmetic shift rounds toward minus infinity");

// ---------------------------------------------------------------------------
// 16-bit form for vector kernels. Splitting off multiples of 256 from each
// coefficient (298 = 256 + 42, 409 = 256 + 153, -208 = -256 + 48,
// 516 = 512 + 4) moves whole units out of the shifted sum, and
// floor((a + 256 k) / 256) = k + floor(a / 256), so
//   R = C + E      + ((42 C + 153 E + 128) >> 8)
//   G = C - E      + ((42 C - 100 D + 48 E + 128) >> 8)
//   B = C + 2 D    + ((42 C + 4 D + 128) >> 8)
// gives the same integers while every sum stays within signed 16 bits.
constexpr std::int32_t kLumaFraction = kLumaScale - 256;            // 42
constexpr std::int32_t kRedFromVFraction = kRedFromV - 256;         // 153
constexpr std::int32_t kGreenFromVFraction = 256 - kGreenFromV;     // 48 (added)
constexpr std::int32_t kBlueFromUWhole = kBlueFromU >> 8;           // 2
constexpr std::int32_t kBlueFromUFraction = kBlueFromU - 512;       // 4

constexpr bool FitsInt16(std::int32_t v) { return v >= -32768 && v <= 32767; }
static_assert(FitsInt16(kLumaFraction * 239 + kRedFromVFraction * 127 + kRound) &&
                  FitsInt16(kLumaFraction * -16 + kRedFromVFraction * -128 + kRound),
              "red fraction fits in 16 bits");
static_assert(FitsInt16(kLumaFraction * 239 + kGreenFromU * 128 + kGreenFromVFraction * 127 + kRound) &&
                  FitsInt16(kLumaFraction * -16 - kGreenFromU * 127 + kGreenFromVFraction * -128 + kRound),
              "green fraction fits in 16 bits");

// With the raw samples y, u, v the offsets move into constants (the same
// integers again), which is the form the vector kernels compute:
//   R = (y + v - 144)    + ((42 y + 153 v + kRedSumOffset) >> 8)
//   G = (y - v + 112)    + ((42 y - 100 u + 48 v + kGreenSumOffset) >> 8)
//   B = (y + 2 u - 272)  + ((42 y + 4 u + kBlueSumOffset) >> 8)
// In 16-bit lanes the products may wrap (153 x 255 does), but each sum lies
// in signed 16-bit range, so wrapping arithmetic still gives it exactly.
constexpr std::int32_t kFoldedRound = kRound - kLumaFraction * kLumaOffset;                     // -544
constexpr std::int32_t kRedSumOffset = kFoldedRound - kRedFromVFraction * kChromaOffset;        // -20128
constexpr std::int32_t kGreenSumOffset =
    kFoldedRound + kGreenFromU * kChromaOffset - kGreenFromVFraction * kChromaOffset;            // 6112
constexpr std::int32_t kBlueSumOffset = kFoldedRound - kBlueFromUFraction * kChromaOffset;      // -1056
constexpr std::int32_t kRedWholeOffset = -(kLumaOffset + kChromaOffset);                        // -144
constexpr std::int32_t kGreenWholeOffset = kChromaOffset - kLumaOffset;                         // 112 (y - v + 112)
constexpr std::int32_t kBlueWholeOffset = -(kLumaOffset + kBlueFromUWhole * kChromaOffset);     // -272

// A second split for vector kernels that multiply byte pairs (signed byte
// coefficients, at most 127 in size): 409 = 512 - 103 gives
//   R = (y + 2 v - 272)  + ((42 y - 103 v + kRedPairSumOffset) >> 8)
// with G and B as above. Every coefficient, whole or fraction, then fits a
// signed byte, and every product pair and sum stays within signed 16 bits.
constexpr std::int32_t kRedFromVPairWhole = 2;
constexpr std::int32_t kRedFromVPairFraction = kRedFromVPairWhole * 256 - kRedFromV;                 // 103 (subtracted)
constexpr std::int32_t kRedPairSumOffset = kFoldedRound + kRedFromVPairFraction * kChromaOffset;     // 12640
constexpr std::int32_t kRedPairWholeOffset = -(kLumaOffset + kRedFromVPairWhole * kChromaOffset);   // -272
static_assert(kRedFromVPairFraction <= 128 && kLumaFraction <= 127 && kGreenFromU <= 128 &&
                  kGreenFromVFraction <= 127 && kBlueFromUFraction <= 127,
              "byte-pair coefficients fit a signed byte");
static_assert(FitsInt16(kLumaFraction * 255 + kRedPairSumOffset) &&
                  FitsInt16(-kRedFromVPairFraction * 255 + kRedPairSumOffset) &&
                  FitsInt16(kLumaFraction * 255 + kGreenFromVFraction * 255 + kGreenSumOffset) &&
                  FitsInt16(-kGreenFromU * 255 + kGreenSumOffset),
              "byte-pair sums fit in 16 bits");

// The vector form in scalar code, every step wrapped to a 16-bit lane as the
// vector kernels do (for testing it over the whole domain).
constexpr std::int32_t Lane(std::int32_t v) { return static_cast<std::int16_t>(static_cast<std::uint16_t>(v & 0xFFFF)); }
constexpr std::int32_t RedLanes(std::int32_t y, std::int32_t, std::int32_t v)
{
    const std::int32_t sum = Lane(Lane(kLumaFraction * y) + Lane(Lane(kRedFromVFraction * v) + kRedSumOffset));
    return Lane(y + v + kRedWholeOffset + FloorShift(sum, kFractionBits));
}
constexpr std::int32_t GreenLanes(std::int32_t y, std::int32_t u, std::int32_t v)
{
    const std::int32_t chroma = Lane(Lane(kGreenFromVFraction * v) - Lane(kGreenFromU * u));
    const std::int32_t sum = Lane(Lane(kLumaFraction * y) + Lane(chroma + kGreenSumOffset));
    return Lane(y - v + kGreenWholeOffset + FloorShift(sum, kFractionBits));
}
constexpr std::int32_t BlueLanes(std::int32_t y, std::int32_t u, std::int32_t)
{
    const std::int32_t sum = Lane(Lane(kLumaFraction * y) + Lane(kBlueFromUFraction * u + kBlueSumOffset));
    return Lane(y + kBlueFromUWhole * u + kBlueWholeOffset + FloorShift(sum, kFractionBits));
}

// The byte-pair red in scalar code, wrapped to 16-bit lanes (green and
// blue of that form are GreenLanes and BlueLanes).
constexpr std::int32_t RedBytePairLanes(std::int32_t y, std::int32_t, std::int32_t v)
{
    const std::int32_t sum = Lane(Lane(kLumaFraction * y - kRedFromVPairFraction * v) + kRedPairSumOffset);
    return Lane(Lane(y + kRedFromVPairWhole * v + kRedPairWholeOffset) + FloorShift(sum, kFractionBits));
}

}  // namespace bt601

// One pixel through the transform and the clamp.
struct RGB8 {
    std::uint8_t r, g, b;
};

inline RGB8 YUVToRGB8(std::int32_t y, std::int32_t u, std::int32_t v)
{
    return RGB8{bt601::Clamp255(bt601::RedUnclamped(y, u, v)), bt601::Clamp255(bt601::GreenUnclamped(y, u, v)),
                bt601::Clamp255(bt601::BlueUnclamped(y, u, v))};
}

}  // namespace zo

#endif
