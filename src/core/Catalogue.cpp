// The built-in pixel type catalogue: 121 types in fifteen groups. Each group
// registers its IDs in ascending order through a temporary object of the
// concrete class; a null name gives the generated display name.
#include "ZoPixelTypeFactory.h"
#include "core/StaticConverters.h"

namespace {

struct Entry {
    std::int64_t id;
    const char* name;  // null: generated
};

template <class Type, std::size_t N>
void Register(const Entry (&entries)[N])
{
    for (const Entry& e : entries) {
        Type temporary(e.id);
        ZoPixelTypeFactory::RegisterPixelType(e.id, &temporary, e.name);
    }
}

constexpr std::int64_t N = ZO_PIXEL_NORMALIZED, I = ZO_PIXEL_INTERLACED, P = ZO_PIXEL_PACKED,
                       PL = ZO_PIXEL_PLANAR, LR = ZO_PIXEL_TAP_DUAL_LR, LRI = ZO_PIXEL_TAP_DUAL_LR_INV,
                       LIR = ZO_PIXEL_TAP_DUAL_LINV_R, LIRI = ZO_PIXEL_TAP_DUAL_LINV_RINV,
                       LINES = ZO_PIXEL_TAP_DUAL_LINES;

// 10- and 12-bit grayscale share one set of IDs.
template <class Type>
void RegisterGrayscalePackable(std::int64_t base)
{
    const Entry entries[] = {
        {base, nullptr},          {base | N, nullptr},           {base | I, nullptr},
        {base | N | I, nullptr},  {base | P, nullptr},           {base | I | P, nullptr},
        {base | P | LR, nullptr}, {base | I | P | LR, nullptr},  {base | P | LRI, nullptr},
        {base | I | P | LRI, nullptr}, {base | P | LIR, nullptr}, {base | I | P | LIR, nullptr},
        {base | P | LIRI, nullptr}, {base | I | P | LIRI, nullptr},
    };
    Register<Type>(entries);
}

template <class Type>
void RegisterGrayscaleWide(std::int64_t base)
{
    const Entry entries[] = {{base, nullptr}, {base | N, nullptr}, {base | I, nullptr}, {base | N | I, nullptr}};
    Register<Type>(entries);
}

}  // namespace

void ZoRegisterRGB16Types()
{
    const Entry entries[] = {{ZO_PT_RGB16, nullptr}};
    Register<ZoRGB16>(entries);
}

void ZoRegisterBayer8Types()
{
    const Entry current[] = {
        {ZO_PT_BAYER_RGB8, nullptr},      {ZO_PT_BAYER_RGB8 | LR, nullptr},   {ZO_PT_BAYER_RGB8 | LRI, nullptr},
        {ZO_PT_BAYER_RGB8 | LIR, nullptr}, {ZO_PT_BAYER_RGB8 | LIRI, nullptr},
    };
    Register<ZoBayerRGB8>(current);
    // The two middle names deliberately disagree with the tap values of
    // their IDs (they are swapped); applications know them by these names.
    const Entry deprecated[] = {
        {ZO_PT_BAYER_RGGB8, "Bayer RGGB 8-bits (deprecated)"},
        {ZO_PT_BAYER_RGGB8 | LR, "Bayer RGGB, 8-bits, Dual Left+Right Output (deprecated)"},
        {ZO_PT_BAYER_RGGB8 | LRI, "Bayer RGGB 8-bits, Dual Left Inverted+Right Output (deprecated)"},
        {ZO_PT_BAYER_RGGB8 | LIR, "Bayer RGGB 8-bits, Dual Left+Right Inverted Output (deprecated)"},
        {ZO_PT_BAYER_RGGB8 | LIRI, "Bayer RGGB 8-bits, Dual Left Inverted+Right Inverted Output (deprecated)"},
    };
    Register<ZoBayerRGGB8>(deprecated);
}

void ZoRegisterBayer10Types()
{
    const std::int64_t b = ZO_PT_BAYER_RGB10, d = ZO_PT_BAYER_RGGB10;
    const Entry current[] = {
        {b, nullptr},          {b | N, nullptr},       {b | I, nullptr},        {b | N | I, nullptr},
        {b | P, nullptr},      {b | P | LR, nullptr},  {b | P | LRI, nullptr},  {b | P | LIR, nullptr},
        {b | P | LIRI, nullptr},
    };
    Register<ZoBayerRGB10>(current);
    const Entry deprecated[] = {
        {d, "Bayer RGGB, 10-bits (deprecated)"},
        {d | N, "Bayer RGGB 10-bits, Normalized (deprecated)"},
        {d | I, "Bayer RGGB 10-bits, Interlaced (deprecated)"},
        {d | N | I, "Bayer RGGB 10-bits, Normalized, Interlaced (deprecated)"},
        {d | P, "Bayer RGGB 10-bits, Packed (deprecated)"},
        {d | P | LR, "Bayer RGGB, 10-bits, Packed, Dual Left+Right Output (deprecated)"},
        {d | P | LRI, "Bayer RGGB, 10-bits, Packed, Dual Left+Right Inverted Output (deprecated)"},
        {d | P | LIR, "Bayer RGGB, 10-bits, Packed, Dual Left Inverted+Right Output (deprecated)"},
        {d | P | LIRI, "Bayer RGGB, 10-bits, Packed, Dual Left Inverted+Right Inverted Output (deprecated)"},
    };
    Register<ZoBayerRGGB10>(deprecated);
}

void ZoRegisterBayer12Types()
{
    const std::int64_t b = ZO_PT_BAYER_RGB12, d = ZO_PT_BAYER_RGGB12;
    const Entry current[] = {
        {b, nullptr},         {b | N, nullptr},       {b | P, nullptr},       {b | P | LR, nullptr},
        {b | P | LRI, nullptr}, {b | P | LIR, nullptr}, {b | P | LIRI, nullptr},
    };
    Register<ZoBayerRGB12>(current);
    const Entry deprecated[] = {
        {d, "Bayer RGGB, 12-bits (deprecated)"},
        {d | N, "Bayer RGGB 12-bits, Normalized (deprecated)"},
        {d | P, "Bayer RGGB 12-bits, Packed (deprecated)"},
        {d | P | LR, "Bayer RGGB, 12-bits, Packed, Dual Left+Right Output (deprecated)"},
        {d | P | LRI, "Bayer RGGB, 12-bits, Packed, Dual Left+Right Inverted Output (deprecated)"},
        {d | P | LIR, "Bayer RGGB, 12-bits, Packed, Dual Left Inverted+Right Output (deprecated)"},
        {d | P | LIRI, "Bayer RGGB, 12-bits, Packed, Dual Left Inverted+Right Inverted Output (deprecated)"},
    };
    Register<ZoBayerRGGB12>(deprecated);
}

void ZoRegisterGrayscale10Types() { RegisterGrayscalePackable<ZoGrayscale10>(ZO_PT_GRAY10); }
void ZoRegisterGrayscale12Types() { RegisterGrayscalePackable<ZoGrayscale12>(ZO_PT_GRAY12); }
void ZoRegisterGrayscale14Types() { RegisterGrayscaleWide<ZoGrayscale14>(ZO_PT_GRAY14); }
void ZoRegisterGrayscale16Types() { RegisterGrayscaleWide<ZoGrayscale16>(ZO_PT_GRAY16); }

void ZoRegisterGrayscale8Types()
{
    const std::int64_t g = ZO_PT_GRAY8;
    const Entry entries[] = {
        {g, nullptr},        {g | I, nullptr},    {g | LR, nullptr},    {g | LRI, nullptr},
        {g | LIR, nullptr},  {g | LIRI, nullptr}, {g | LINES, nullptr},
    };
    Register<ZoGrayscale8>(entries);
}

void ZoRegisterRGB24Types()
{
    const Entry rgb[] = {{ZO_PT_RGB24, nullptr}, {ZO_PT_RGB24 | P, nullptr}, {ZO_PT_RGB24 | PL, nullptr}};
    Register<ZoRGB24>(rgb);
    const Entry bgr[] = {{ZO_PT_BGR24, "BGR 24-bits"}, {ZO_PT_BGR24 | P, "BGR 24-bits, Packed"}};
    Register<ZoBGR24>(bgr);
    const Entry rgb8[] = {{ZO_PT_RGB8_3, "RGB 24-bits (3 X 8-bits)"},
                          {ZO_PT_RGB8_3 | P, "RGB 24-bits (3 X 8-bits), Packed"},
                          {ZO_PT_RGB8_3 | PL, "RGB 24-bits (3 X 8-bits), Planar"}};
    Register<ZoRGB8_3>(rgb8);
}

void ZoRegisterRGB32Types()
{
    const Entry rgb[] = {{ZO_PT_RGB32, nullptr}};
    Register<ZoRGB32>(rgb);
    const Entry bgr[] = {{ZO_PT_BGR32, nullptr}};  // generated: "RGB 32-bits", like RGB32
    Register<ZoBGR32>(bgr);
    const Entry rgb8[] = {{ZO_PT_RGB8_4, "RGB 32-bits (4 X 8-bits)"},
                          {ZO_PT_RGB8_4 | P, "RGB 32-bits (4 X 8-bits), Packed"},
                          {ZO_PT_RGB8_4 | PL, "RGB 32-bits (4 X 8-bits), Planar"}};
    Register<ZoRGB8_4>(rgb8);
}

void ZoRegisterRGB48Types()
{
    const Entry rgb[] = {{ZO_PT_RGB48, nullptr}, {ZO_PT_RGB48 | N, nullptr}};
    Register<ZoRGB48>(rgb);
    const Entry rgb10[] = {{ZO_PT_RGB48_10BITS, "RGB 48-bits (3 x 10 bits)"},
                           {ZO_PT_RGB48_10BITS | N, "RGB 48-bits (3 x 10 bits), Normalized"}};
    Register<ZoRGB48_10Bits>(rgb10);
    const Entry rgb12[] = {{ZO_PT_RGB48_12BITS, "RGB 48-bits (3 x 12 bits)"},
                           {ZO_PT_RGB48_12BITS | N, "RGB 48-bits (3 x 12 bits), Normalized"}};
    Register<ZoRGB48_12Bits>(rgb12);
}

void ZoRegisterRGB64Types()
{
    const Entry rgb[] = {{ZO_PT_RGB64, nullptr}, {ZO_PT_RGB64 | N, nullptr}};
    Register<ZoRGB64>(rgb);
    const Entry rgb10[] = {{ZO_PT_RGB64_10BITS, "RGB 64-bits (4 x 10 bits)"},
                           {ZO_PT_RGB64_10BITS | N, "RGB 64-bits (4 x 10 bits), Normalized"}};
    Register<ZoRGB64_10Bits>(rgb10);
    const Entry rgb12[] = {{ZO_PT_RGB64_12BITS, "RGB 64-bits (4 x 12 bits)"},
                           {ZO_PT_RGB64_12BITS | N, "RGB 64-bits (4 x 12 bits), Normalized"}};
    Register<ZoRGB64_12Bits>(rgb12);
}

void ZoRegisterYUV10Types()
{
    const std::int64_t y = ZO_PT_YUV10;
    const Entry entries[] = {{y, "YUV 10-bits 4:2:2"},
                             {y | N, "YUV 10-bits 4:2:2, Normalized"},
                             {y | I, "YUV 10-bits 4:2:2, Interlaced"},
                             {y | N | I, "YUV 10-bits 4:2:2, Normalized, Interlaced"}};
    Register<ZoYUV10>(entries);
}

void ZoRegisterYUV8Types()
{
    const Entry yuv8[] = {{ZO_PT_YUV8, "YUV 8-bits 4:2:2"}, {ZO_PT_YUV8 | I, "YUV 8-bits 4:2:2, Interlaced"}};
    Register<ZoYUV8>(yuv8);
    // The unflagged 4:4:4 IDs are not registered: only their Packed forms.
    const Entry yuv444[] = {{ZO_PT_YUV8_444 | P, "YUV 8-bits 4:4:4, Packed"},
                            {ZO_PT_YUV8_444 | P | I, "YUV 8-bits 4:4:4, Packed, Interlaced"}};
    Register<ZoYUV8_444>(yuv444);
    const Entry ycrcb[] = {{ZO_PT_YCRCB | P, "YCrCb 8-bits 4:4:4, Packed"},
                           {ZO_PT_YCRCB | P | I, "YCrCb 8-bits 4:4:4, Packed, Interlaced"}};
    Register<ZoYCrCb>(ycrcb);
}
