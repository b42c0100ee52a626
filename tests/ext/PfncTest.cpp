// PFNC names and codes: the library's table against the PFNC list and its
// documentation page, and every mapping checked by decoding frames in the
// PFNC layout with decoders written here from the list's layout text.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdint>
#include <fstream>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"
#include "support/AreaSupport.h"
#include "support/ConvertSupport.h"
#include "yuv/YUVReference.h"

namespace {

struct Row {
    std::string name;
    std::uint32_t code;
    std::int64_t typeId;
    std::uint32_t flags;
};

std::vector<Row> LibraryTable()
{
    std::vector<Row> rows;
    const char* name;
    std::uint32_t code, flags;
    std::int64_t typeId;
    for (std::uint32_t i = 0; ZoPfnc_GetEntry(i, &name, &code, &typeId, &flags); ++i)
        rows.push_back({name, code, typeId, flags});
    return rows;
}

std::string PatternName(std::uint32_t flags)
{
    return flags == ZO_FLAG_BAYER_GRBG ? "GRBG" : flags == ZO_FLAG_BAYER_GBRG ? "GBRG"
         : flags == ZO_FLAG_BAYER_RGGB ? "RGGB" : flags == ZO_FLAG_BAYER_BGGR ? "BGGR" : "-";
}

std::string Hex(std::uint64_t v, int digits)
{
    char text[32];
    std::snprintf(text, sizeof text, "0x%0*llX", digits, static_cast<unsigned long long>(v));
    return text;
}

}  // namespace

TEST(Pfnc, TableFollowsThePfncListAndItsDocumentationAndAnswersEveryLookUp)
{
    // tests/data/pfnc.csv (name,code,layout) and docs/pfnc.md (| `name` |
    // code | type ID or - | pattern or - | ...) list the entries in table order.
    const auto csv = zotest::CsvRows(ZO_PFNC_CSV, 3);  // a header, then one row an entry
    std::ifstream doc(ZO_PFNC_DOC);
    ASSERT_TRUE(doc) << ZO_PFNC_DOC;
    std::string docLine;
    const std::vector<Row> table = LibraryTable();
    ASSERT_EQ(csv.size(), table.size() + 1) << ZO_PFNC_CSV;
    for (std::size_t index = 0; index < table.size(); ++index) {
        const Row& row = table[index];
        SCOPED_TRACE(row.name);
        EXPECT_EQ(std::make_tuple(csv[index + 1][0], std::stoul(csv[index + 1][1], nullptr, 16)),
                  std::make_tuple(row.name, static_cast<unsigned long>(row.code)));
        while (std::getline(doc, docLine) && docLine.rfind("| `", 0) != 0) {
        }
        const std::string typeId = row.typeId == ZO_NO_PIXEL_TYPE_ID ? "-" : Hex(std::uint64_t(row.typeId), 8);
        const std::string doc = "| `" + row.name + "` | " + Hex(row.code, 8) + " | " + typeId + " | " +
                                PatternName(row.flags) + " | ";
        EXPECT_EQ(docLine.substr(0, doc.size()), doc);

        // Unmapped names write nothing (and imply no pattern).
        const bool mapped = row.typeId != ZO_NO_PIXEL_TYPE_ID;
        std::int64_t byName = -1, byCode = -1;
        std::uint32_t nameFlags = 0, codeFlags = 0;
        EXPECT_EQ(ZoPfnc_FromName(row.name.c_str(), &byName, &nameFlags), mapped ? ZO_OK : ZO_ERR_NOT_SUPPORTED);
        EXPECT_EQ(ZoPfnc_FromCode(row.code, &byCode, &codeFlags), mapped ? ZO_OK : ZO_ERR_NOT_SUPPORTED);
        const std::int64_t id = mapped ? row.typeId : -1;
        EXPECT_EQ(std::make_tuple(byName, byCode, nameFlags, codeFlags), std::make_tuple(id, id, row.flags, row.flags));
        // And back: the same format, by the type and the flags it implies.
        const char* back = "";
        std::uint32_t backCode = 0;
        if (!mapped)
            continue;
        ASSERT_EQ(ZoPfnc_FromPixelType(row.typeId, row.flags | ZO_FLAG_BAYER_INTERPOLATE, &back, &backCode), ZO_OK);
        EXPECT_EQ(std::make_tuple(std::string(back), backCode), std::make_tuple(row.name, row.code));
    }
    while (std::getline(doc, docLine))
        EXPECT_NE(docLine.rfind("| `", 0), 0u) << "not in the table: " << docLine;

    std::int64_t id;
    std::uint32_t flags, code;
    const char* name;
    for (const char* unknown : {"mono8", "Mono8 ", "", "Mono9"})
        EXPECT_EQ(ZoPfnc_FromName(unknown, &id, &flags), ZO_ERR_BAD_ARGUMENT) << unknown;
    EXPECT_EQ(ZoPfnc_FromCode(0x01080002, &id, &flags), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoPfnc_FromName(nullptr, &id, &flags), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoPfnc_FromName("Mono8", nullptr, &flags), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoPfnc_FromCode(0x01080001, &id, nullptr), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoPfnc_FromPixelType(ZO_PT_GRAY8, 0, nullptr, &code), ZO_ERR_BAD_ARGUMENT);
    EXPECT_FALSE(ZoPfnc_GetEntry(0, &name, &code, &id, nullptr));
}

TEST(Pfnc, FromPixelTypeTakesThePatternAndTheTypesWithTheSameBytes)
{
    const struct {
        std::int64_t typeId;
        std::uint32_t flags;
        const char* name;  // null: no exact counterpart (26)
    } cases[] = {
        {ZO_PT_BAYER_RGB8, 0, "BayerGR8"},  // no pattern flag: the converters' default
        {ZO_PT_BAYER_RGGB8, ZO_FLAG_BAYER_BGGR, "BayerBG8"},
        {ZO_PT_BAYER_RGB10, ZO_FLAG_BAYER_GBRG | ZO_FLAG_BAYER_BGGR, "BayerGB10"},  // GBRG wins
        {ZO_PT_BAYER_RGGB12, 0, "BayerGR12"},  // its 16-bit converters read GRBG without a flag
        {ZO_PT_BAYER_RGGB12 | ZO_PIXEL_PACKED, ZO_FLAG_BAYER_RGGB, "BayerRG12p"},
        {ZO_PT_GRAY16 | ZO_PIXEL_NORMALIZED, 0, "Mono16"},
        {ZO_PT_RGB24, 0, "RGB8"},
        {ZO_PT_RGB8_3, 0, "RGB8"},
        {ZO_PT_BGR24 | ZO_PIXEL_PACKED, 0, "BGR8"},
        {ZO_PT_GRAY12 | ZO_PIXEL_NORMALIZED, 0, nullptr},  // MSB-aligned
        {ZO_PT_GRAY10 | ZO_PIXEL_PACKED, 0, nullptr},       // B in bits 12-21 of a group
        {ZO_PT_BAYER_RGB10 | ZO_PIXEL_PACKED, ZO_FLAG_BAYER_RGGB, nullptr},
        {ZO_PT_RGB32, 0, nullptr},  // fourth byte is padding, not alpha
        {ZO_PT_GRAY8 | ZO_PIXEL_INTERLACED, 0, nullptr},
        {0x7700000001LL, 0, nullptr},
    };
    for (const auto& t : cases) {
        const char* name = "untouched";
        std::uint32_t code = 0;
        EXPECT_EQ(ZoPfnc_FromPixelType(t.typeId, t.flags, &name, &code), t.name ? ZO_OK : ZO_ERR_NOT_SUPPORTED)
            << std::hex << t.typeId;
        EXPECT_STREQ(name, t.name ? t.name : "untouched") << std::hex << t.typeId;
    }
}

// ---------------------------------------------------------------------------
// Decoding. Each mapped format: a random frame in its PFNC layout, decoded
// here into 8-bit pixel values, against the library's conversion of the
// same bytes from the mapped type to RGB24 with the flags the name implies.
// The output layouts BGR8 and RGB8_Planar are checked the other way: an
// RGB8 frame converted to them and decoded back.

namespace {

constexpr std::uint32_t kWidth = 12, kHeight = 6, kPixels = kWidth * kHeight;

using Pixel = std::array<int, 3>;  // red, green, blue
using Image = std::vector<Pixel>;  // kWidth x kHeight

// "2 pixels in 3 bytes b0 b1 b2; p0 = b0 | (b1 & 0x0F) << 8; p1 = (b1 >> 4) | b2 << 4"
std::vector<int> Decode12p(const std::vector<unsigned char>& f)
{
    std::vector<int> v;
    for (std::size_t i = 0; i + 2 < f.size(); i += 3) {
        v.push_back(f[i] | (f[i + 1] & 0x0F) << 8);
        v.push_back(f[i + 1] >> 4 | f[i + 2] << 4);
    }
    return v;
}

// What replicating demosaicing gives from samples whose first two lines are
// `layout` ("GRBG": G R on the first line, B G on the second): every pixel
// of a 2x2 cell takes the cell's red and blue; the left column the green of
// the first line, the right column the green of the second.
Image Replicate(const std::vector<int>& samples, const std::string& layout)
{
    Image out(kPixels);
    for (std::uint32_t y = 0; y < kHeight; y += 2)
        for (std::uint32_t x = 0; x < kWidth; x += 2) {
            int r = 0, b = 0, g[2] = {0, 0};
            for (int k = 0; k < 4; ++k) {
                const int v = samples[(y + k / 2) * kWidth + x + k % 2];
                (layout[k] == 'R' ? r : layout[k] == 'B' ? b : g[k / 2]) = v;
            }
            for (int k = 0; k < 4; ++k)
                out[(y + k / 2) * kWidth + x + k % 2] = {r, g[k % 2], b};
        }
    return out;
}

// A random frame in the named layout (word values below 2^bits).
std::vector<unsigned char> RandomFrame(const std::string& name, std::mt19937& rng)
{
    const std::string format = name.rfind("Bayer", 0) == 0 ? "Mono" + name.substr(7) : name;
    // Y0 Cb Y1 Cr: two bytes a pixel.
    const int bits = format[0] == 'Y' ? 16 : std::atoi(format.c_str() + format.find_first_of("0123456789"));
    const std::size_t samples = (format[0] == 'R' || format[0] == 'B' ? 3 : 1) * kPixels;
    std::vector<unsigned char> f =
        zotest::RandomBytes(format.back() == 'p' ? samples / 2 * 3 : samples * ((bits + 7) / 8), rng);
    for (std::size_t i = 1; bits > 8 && format.back() != 'p' && i < f.size(); i += 2)
        f[i] &= static_cast<unsigned char>((1u << (bits - 8)) - 1);
    return f;
}

// The pixels a frame in the named layout holds, at 8 bits (the top bits).
Image Decode(const std::string& name, const std::vector<unsigned char>& f)
{
    const bool bayer = name.rfind("Bayer", 0) == 0;
    const std::string format = bayer ? "Mono" + name.substr(7) : name;
    const int bits = std::atoi(format.c_str() + format.find_first_of("0123456789"));
    Image out;
    if (format == "YCbCr601_422_8") {  // Y0 Cb Y1 Cr
        for (std::uint32_t i = 0; i < kPixels; i += 2) {
            for (int k : {0, 2}) {  // BT.601 studio range
                const yuvref::RGB c = yuvref::Convert(f[2 * i + k], f[2 * i + 1], f[2 * i + 3]);
                out.push_back({c.r, c.g, c.b});
            }
        }
        return out;
    }
    std::vector<int> v;
    if (format.back() == 'p')
        v = Decode12p(f);
    else
        for (std::size_t i = 0; i < f.size() / (bits == 8 ? 1 : 2); ++i)
            v.push_back(bits == 8 ? f[i] : int(zotest::Word(&f[2 * i])));
    for (int& x : v)
        x >>= bits - 8;
    if (bayer)
        return Replicate(v, name.substr(5, 2) == "GR" ? "GRBG" : name.substr(5, 2) == "RG" ? "RGGB"
                            : name.substr(5, 2) == "GB" ? "GBRG" : "BGGR");
    for (std::uint32_t i = 0; i < kPixels; ++i)
        out.push_back(format.rfind("Mono", 0) == 0 ? Pixel{v[i], v[i], v[i]}
                      : format == "BGR8"           ? Pixel{v[3 * i + 2], v[3 * i + 1], v[3 * i]}
                      : format == "RGB8_Planar"    ? Pixel{v[i], v[kPixels + i], v[2 * kPixels + i]}
                                                   : Pixel{v[3 * i], v[3 * i + 1], v[3 * i + 2]});
    return out;
}

// Converts a frame between two types (flags from the PFNC name) into a
// buffer of `bytes`.
std::vector<unsigned char> Convert(const std::vector<unsigned char>& frame, std::int64_t from, std::int64_t to,
                                   std::uint32_t flags, std::size_t bytes)
{
    std::vector<unsigned char> out(bytes, 0xEE);
    EXPECT_EQ(ZoPixelConverter_ConvertArea(ZoPixelTypeFactory_GetConverter(from, to), frame.data(), kWidth, kHeight,
                                           out.data(), kWidth, kHeight, kWidth, kHeight, flags, 0),
              ZO_OK)
        << std::hex << from << " -> " << to;
    return out;
}

}  // namespace

TEST(Pfnc, MappedFormatsDecodeAsTheLibraryConverts)
{
    std::mt19937 rng(2024);
    std::size_t checked = 0;
    for (const Row& row : LibraryTable()) {
        if (row.typeId == ZO_NO_PIXEL_TYPE_ID)
            continue;
        SCOPED_TRACE(row.name);
        ++checked;
        if (row.name != "BGR8" && row.name != "RGB8_Planar") {
            const auto frame = RandomFrame(row.name, rng);
            EXPECT_EQ(Decode("RGB8", Convert(frame, row.typeId, ZO_PT_RGB24, row.flags, 3 * kPixels)),
                      Decode(row.name, frame));
        } else {
            const auto rgb = RandomFrame("RGB8", rng);
            std::int64_t rgb8 = 0;
            std::uint32_t flags = 0;
            ASSERT_EQ(ZoPfnc_FromName("RGB8", &rgb8, &flags), ZO_OK);
            EXPECT_EQ(Decode(row.name, Convert(rgb, rgb8, row.typeId, 0, 3 * kPixels)), Decode("RGB8", rgb));
        }
    }
    EXPECT_EQ(checked, 28u);
}
