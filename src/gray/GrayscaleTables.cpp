#include "gray/GrayscaleTables.h"

namespace zo {

constexpr std::array<std::uint16_t, 256> kGrayToRGB16_8 = GrayTable<0>::MakeRGB16();
constexpr std::array<std::uint16_t, 1024> kGrayToRGB16_Shift2 = GrayTable<2>::MakeRGB16();
constexpr std::array<std::uint16_t, 4096> kGrayToRGB16_Shift4 = GrayTable<4>::MakeRGB16();
constexpr std::array<std::uint16_t, 16384> kGrayToRGB16_Shift6 = GrayTable<6>::MakeRGB16();
constexpr std::array<std::uint32_t, 256> kGrayToRGB32_8 = GrayTable<0>::MakeRGB32();
constexpr std::array<std::uint32_t, 1024> kGrayToRGB32_Shift2 = GrayTable<2>::MakeRGB32();
constexpr std::array<std::uint32_t, 4096> kGrayToRGB32_Shift4 = GrayTable<4>::MakeRGB32();
constexpr std::array<std::uint32_t, 16384> kGrayToRGB32_Shift6 = GrayTable<6>::MakeRGB32();

}  // namespace zo
