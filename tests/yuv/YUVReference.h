// Plain per-pixel reference of the YUV converters, written from the rules
// (reader / formula / writer), independent of the library's kernels.
#ifndef ZO_TESTS_YUV_REFERENCE_H
#define ZO_TESTS_YUV_REFERENCE_H

#include <cstdint>
#include <vector>

#include "support/AreaSupport.h"
#include "support/FamilyTables.h"

namespace yuvref {

struct RGB {
    int r, g, b;
};

inline int Clamp(int v) { return v < 0 ? 0 : (v > 255 ? 255 : v); }

inline RGB Unclamped(int y, int u, int v)
{
    const int c = y - 16, d = u - 128, e = v - 128;
    // Arithmetic shifts: floor(x / 256) for either sign.
    return RGB{(298 * c + 409 * e + 128) >> 8, (298 * c - 100 * d - 208 * e + 128) >> 8, (298 * c + 516 * d + 128) >> 8};
}

inline RGB Convert(int y, int u, int v)
{
    const RGB x = Unclamped(y, u, v);
    return RGB{Clamp(x.r), Clamp(x.g), Clamp(x.b)};
}

enum class Family { YUV8, YUV10, YUV444 };

// One registered converter as the rules describe it.
struct Instance {
    std::int64_t source;
    std::int64_t dest;
    Family family;
    unsigned param;  // extra bytes (YUV8, YUV444) or shift (YUV10)
    unsigned y, u, v;  // YUV444 byte offsets

    unsigned SourcePixelBytes() const  // stride of one pixel in a line
    {
        switch (family) {
        case Family::YUV8: return 2 * (param + 1);
        case Family::YUV10: return 4;
        default: return 3 * (param + 1);
        }
    }
};

// The bytes a line call writes, at their place in `dst`.
inline void Line(const Instance& in, const unsigned char* src, unsigned char* dst, unsigned count,
                 const ZoRGBFilter& f)
{
    const int db = zotest::RGBBytes(in.dest);
    if (in.family == Family::YUV444) {
        const unsigned blocked = count / 4 * 4;
        for (unsigned i = 0; i < count; ++i) {
            const unsigned char* p = src + i * 3 * (in.param + 1) + in.param;
            const RGB c = Convert(p[in.y], p[in.u], p[in.v]);
            int g = f.GetGreenValue8(c.g), b = f.GetBlueValue8(c.b);
            if (in.dest == 0x20001 && i < blocked) {  // RGB16: tables swapped in the blocks of four
                g = f.GetBlueValue8(c.g);
                b = f.GetGreenValue8(c.b);
            }
            zotest::WriteRGB(in.dest, dst + i * db, f.GetRedValue8(c.r), g, b);
        }
        return;
    }
    const unsigned pixels = (count + 1) / 2 * 2;  // 4:2:2 writes whole pairs
    for (unsigned i = 0; i < pixels; ++i) {
        const unsigned pair = i / 2;
        int sample[4];
        for (int k = 0; k < 4; ++k) {
            if (in.family == Family::YUV8) {
                sample[k] = src[(pair * 4 + k) * (in.param + 1) + in.param];
            } else {
                const unsigned char* w = src + (pair * 4 + k) * 2;
                sample[k] = ((w[0] | (w[1] << 8)) >> in.param) & 0xFF;
            }
        }
        const RGB c = Convert(sample[i % 2 == 0 ? 0 : 2], sample[1], sample[3]);
        zotest::WriteRGB(in.dest, dst + i * db, f.GetRedValue8(c.r), f.GetGreenValue8(c.g), f.GetBlueValue8(c.b));
    }
}

// The 50 registered instances (tests/data/registry.csv): the class gives the family.
inline std::vector<Instance> RegisteredInstances()
{
    std::vector<Instance> out;
    for (const zotest::RegistryRow& r : zotest::RegistryTable()) {
        const Family family = r.Is("ZoYUV8444To") ? Family::YUV444 : r.Is("ZoYUV10To") ? Family::YUV10 : Family::YUV8;
        if (r.Is("ZoYUV"))
            out.push_back({r.source, r.destination, family, unsigned(r.Param("extra") + r.Param("shift")),
                           unsigned(r.Param("y", 0)), unsigned(r.Param("u", 1)), unsigned(r.Param("v", 2))});
    }
    return out;
}

}  // namespace yuvref

#endif
