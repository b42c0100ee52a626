// PFNC names and codes: the library's table against the PFNC list and its
// documentation page, and every mapping checked by decoding frames in the
// PFNC layout with decoders written here from the list's layout text.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <functional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"

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

std::vector<std::string> Split(const std::string& line, char separator)
{
    std::vector<std::string> cells;
    std::stringstream in(line);
    for (std::string cell; std::getline(in, cell, separator);) {
        const auto first = cell.find_first_not_of(' '), last = cell.find_last_not_of(' ');
        cells.push_back(first == std::string::npos ? "" : cell.substr(first, last - first + 1));
    }
    return cells;
}

std::string PatternName(std::uint32_t flags)
{
    switch (flags) {
    case ZO_FLAG_BAYER_GRBG: return "GRBG";
    case ZO_FLAG_BAYER_GBRG: return "GBRG";
    case ZO_FLAG_BAYER_RGGB: return "RGGB";
    case ZO_FLAG_BAYER_BGGR: return "BGGR";
    default: return "-";
    }
}

std::string Hex(std::uint64_t v, int digits)
{
    char text[32];
    std::snprintf(text, sizeof text, "0x%0*llX", digits, static_cast<unsigned long long>(v));
    return text;
}

}  // namespace

TEST(Pfnc, TableFollowsThePfncListAndAnswersEveryLookUp)
{
    std::ifstream csv(ZO_PFNC_CSV);
    ASSERT_TRUE(csv) << ZO_PFNC_CSV;
    std::string line;
    std::getline(csv, line);  // header
    const std::vector<Row> table = LibraryTable();
    std::size_t index = 0, mapped = 0;
    for (; std::getline(csv, line); ++index) {
        const std::vector<std::string> cells = Split(line, ',');
        ASSERT_LT(index, table.size());
        const Row& row = table[index];
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.name, cells.at(0));
        EXPECT_EQ(row.code, std::stoul(cells.at(1), nullptr, 16));

        std::int64_t byName = -1, byCode = -1;
        std::uint32_t nameFlags = 7, codeFlags = 7;
        const std::uint32_t expected = row.typeId == ZO_NO_PIXEL_TYPE_ID ? ZO_ERR_NOT_SUPPORTED : ZO_OK;
        EXPECT_EQ(ZoPfnc_FromName(row.name.c_str(), &byName, &nameFlags), expected);
        EXPECT_EQ(ZoPfnc_FromCode(row.code, &byCode, &codeFlags), expected);
        if (expected != ZO_OK) {
            EXPECT_EQ(byName, -1);  // nothing written
            EXPECT_EQ(byCode, -1);
            EXPECT_EQ(row.flags, 0u);
            continue;
        }
        ++mapped;
        EXPECT_TRUE(ZoPixelTypeFactory_HasPixelType(row.typeId));
        EXPECT_EQ(byName, row.typeId);
        EXPECT_EQ(byCode, row.typeId);
        EXPECT_EQ(nameFlags, row.flags);
        EXPECT_EQ(codeFlags, row.flags);
        // And back: the same format, by the type and the flags it implies.
        const char* back = nullptr;
        std::uint32_t backCode = 0;
        ASSERT_EQ(ZoPfnc_FromPixelType(row.typeId, row.flags | ZO_FLAG_BAYER_INTERPOLATE, &back, &backCode), ZO_OK);
        EXPECT_STREQ(back, row.name.c_str());
        EXPECT_EQ(backCode, row.code);
    }
    EXPECT_EQ(index, table.size());
    EXPECT_EQ(mapped, 28u);

    std::int64_t id;
    std::uint32_t flags;
    const char* name;
    std::uint32_t code;
    for (const char* unknown : {"mono8", "Mono8 ", "", "Mono9"})
        EXPECT_EQ(ZoPfnc_FromName(unknown, &id, &flags), ZO_ERR_BAD_ARGUMENT) << unknown;
    EXPECT_EQ(ZoPfnc_FromCode(0x01080002, &id, &flags), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoPfnc_FromName(nullptr, &id, &flags), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoPfnc_FromName("Mono8", nullptr, &flags), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoPfnc_FromCode(0x01080001, &id, nullptr), ZO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(ZoPfnc_FromPixelType(ZO_PT_GRAY8, 0, nullptr, &code), ZO_ERR_BAD_ARGUMENT);
    EXPECT_FALSE(ZoPfnc_GetEntry(0, &name, &code, &id, nullptr));
    EXPECT_FALSE(ZoPfnc_GetEntry(static_cast<std::uint32_t>(table.size()), &name, &code, &id, &flags));
}

TEST(Pfnc, FromPixelTypeTakesThePatternAndTheTypesWithTheSameBytes)
{
    const struct {
        std::int64_t typeId;
        std::uint32_t flags;
        const char* name;  // null: no exact counterpart (26)
    } cases[] = {
        {ZO_PT_BAYER_RGB8, 0, "BayerGR8"},  // no pattern flag: the converters' default
        {ZO_PT_BAYER_RGGB8, 0, "BayerRG8"},
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
        {ZO_PT_RGB48, 0, nullptr},
        {ZO_PT_GRAY8 | ZO_PIXEL_INTERLACED, 0, nullptr},
        {0x7700000001LL, 0, nullptr},
    };
    for (const auto& t : cases) {
        const char* name = "untouched";
        std::uint32_t code = 0;
        const std::uint32_t r = ZoPfnc_FromPixelType(t.typeId, t.flags, &name, &code);
        SCOPED_TRACE(Hex(static_cast<std::uint64_t>(t.typeId), 8));
        if (t.name) {
            ASSERT_EQ(r, ZO_OK);
            EXPECT_STREQ(name, t.name);
        } else {
            EXPECT_EQ(r, ZO_ERR_NOT_SUPPORTED);
            EXPECT_STREQ(name, "untouched");
        }
    }
}

TEST(Pfnc, DocumentationListsTheTable)
{
    // docs/pfnc.md: one row per entry, in table order: | `name` | code |
    // type ID or - | pattern or - | ...
    std::ifstream doc(ZO_PFNC_DOC);
    ASSERT_TRUE(doc) << ZO_PFNC_DOC;
    const std::vector<Row> table = LibraryTable();
    std::size_t i = 0;
    for (std::string line; std::getline(doc, line);) {
        if (line.rfind("| `", 0) != 0)
            continue;
        const std::vector<std::string> cells = Split(line, '|');  // cells[0] is empty
        ASSERT_GE(cells.size(), 5u) << line;
        ASSERT_LT(i, table.size()) << line;
        const Row& row = table[i++];
        EXPECT_EQ(cells[1], "`" + row.name + "`");
        EXPECT_EQ(cells[2], Hex(row.code, 8));
        EXPECT_EQ(cells[3], row.typeId == ZO_NO_PIXEL_TYPE_ID ? "-" : Hex(static_cast<std::uint64_t>(row.typeId), 8));
        EXPECT_EQ(cells[4], PatternName(row.flags));
    }
    EXPECT_EQ(i, table.size());
}

// ---------------------------------------------------------------------------
// Decoding. Each mapped format: a random frame in its PFNC layout, decoded
// here into pixel values (one or three channels), and the library's
// conversion of the same bytes from the mapped type, with the flags the
// name implies, compared with what the decoded values must give.

namespace {

constexpr std::uint32_t kWidth = 12, kHeight = 6;

struct Pixel {
    int r, g, b;
};
using Image = std::vector<Pixel>;  // kWidth x kHeight

std::uint16_t Word(const std::vector<unsigned char>& f, std::size_t i)
{
    return static_cast<std::uint16_t>(f[2 * i] | f[2 * i + 1] << 8);
}

// "one little-endian 16-bit word a pixel; value in bits 0-(n-1)": random
// values below 2^n.
std::vector<unsigned char> WordFrame(std::mt19937& random, std::uint32_t pixels, int bits)
{
    std::vector<unsigned char> f(2 * pixels);
    for (std::uint32_t i = 0; i < pixels; ++i) {
        const std::uint32_t v = random() & ((1u << bits) - 1);
        f[2 * i] = static_cast<unsigned char>(v);
        f[2 * i + 1] = static_cast<unsigned char>(v >> 8);
    }
    return f;
}

std::vector<unsigned char> ByteFrame(std::mt19937& random, std::size_t bytes)
{
    std::vector<unsigned char> f(bytes);
    for (auto& b : f)
        b = static_cast<unsigned char>(random());
    return f;
}

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

// A Bayer name's first two lines: "BayerGR..." has G R on the first line
// and B G on the second.
std::string FirstLines(const std::string& name)
{
    const std::string two = name.substr(5, 2);
    return two == "GR" ? "GRBG" : two == "RG" ? "RGGB" : two == "GB" ? "GBRG" : "BGGR";
}

// What replicating demosaicing gives from samples laid out as `layout`
// (colours of cell positions (0,0) (0,1) (1,0) (1,1)): every pixel of a 2x2
// cell takes the cell's red and blue; the left column the green of the
// first line, the right column the green of the second.
Image Replicate(const std::vector<int>& samples, const std::string& layout)
{
    Image out(kWidth * kHeight);
    for (std::uint32_t y = 0; y < kHeight; y += 2)
        for (std::uint32_t x = 0; x < kWidth; x += 2) {
            int r = 0, b = 0, g[2] = {0, 0};
            for (int k = 0; k < 4; ++k) {
                const int v = samples[(y + k / 2) * kWidth + x + k % 2];
                if (layout[k] == 'R') r = v;
                else if (layout[k] == 'B') b = v;
                else g[k / 2] = v;
            }
            for (int k = 0; k < 4; ++k)
                out[(y + k / 2) * kWidth + x + k % 2] = {r, g[k % 2], b};
        }
    return out;
}

// BT.601 studio range (Y 16-235, Cb and Cr 16-240) to RGB, rounded.
Pixel Studio601(int y, int cb, int cr)
{
    const double c = 255.0 / 219.0 * (y - 16), d = 255.0 / 224.0 * (cb - 128), e = 255.0 / 224.0 * (cr - 128);
    const auto clamp = [](double v) { return static_cast<int>(std::lround(std::fmin(255.0, std::fmax(0.0, v)))); };
    return {clamp(c + 1.402 * e), clamp(c - 0.344136 * d - 0.714136 * e), clamp(c + 1.772 * d)};
}

// Converts `frame` from the type the PFNC name maps to (with the flags it
// implies) to `destination`.
std::vector<unsigned char> ConvertByName(const std::string& name, const std::vector<unsigned char>& frame,
                                         std::int64_t destination, std::size_t destinationBytes)
{
    std::int64_t typeId = 0;
    std::uint32_t flags = 0;
    EXPECT_EQ(ZoPfnc_FromName(name.c_str(), &typeId, &flags), ZO_OK);
    const ZoPixelConverter* c = ZoPixelTypeFactory_GetConverter(typeId, destination);
    EXPECT_NE(c, nullptr) << name;
    std::vector<unsigned char> out(destinationBytes, 0xEE);
    if (c) {
        EXPECT_EQ(ZoPixelConverter_ConvertArea(c, frame.data(), kWidth, kHeight, out.data(), kWidth, kHeight,
                                               kWidth, kHeight, flags, 0),
                  ZO_OK);
    }
    return out;
}

// RGB24 bytes as pixels.
Image FromRGB24(const std::vector<unsigned char>& f)
{
    Image out(kWidth * kHeight);
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] = {f[3 * i], f[3 * i + 1], f[3 * i + 2]};
    return out;
}

void ExpectImage(const Image& got, const Image& expected, int tolerance, const std::string& name)
{
    int bad = 0;
    for (std::size_t i = 0; i < expected.size() && bad < 5; ++i) {
        const Pixel &g = got[i], &e = expected[i];
        if (std::abs(g.r - e.r) > tolerance || std::abs(g.g - e.g) > tolerance || std::abs(g.b - e.b) > tolerance) {
            ++bad;
            ADD_FAILURE() << name << " pixel " << i << ": got " << g.r << ' ' << g.g << ' ' << g.b << ", expected "
                          << e.r << ' ' << e.g << ' ' << e.b;
        }
    }
}

Image Gray(const std::vector<int>& v, int shift)
{
    Image out;
    for (int x : v)
        out.push_back({(x >> shift) & 0xFF, (x >> shift) & 0xFF, (x >> shift) & 0xFF});
    return out;
}

}  // namespace

TEST(Pfnc, MappedFormatsDecodeAsTheLibraryConverts)
{
    std::mt19937 random(2024);
    const std::uint32_t n = kWidth * kHeight;
    const std::size_t rgb24 = 3 * n;
    std::vector<std::string> checked;
    const auto check = [&](const std::string& name, const Image& got, const Image& expected, int tolerance = 0) {
        checked.push_back(name);
        ExpectImage(got, expected, tolerance, name);
    };

    // Mono8: one byte a pixel, expanded to gray RGB24.
    {
        const auto f = ByteFrame(random, n);
        check("Mono8", FromRGB24(ConvertByName("Mono8", f, ZO_PT_RGB24, rgb24)),
              Gray(std::vector<int>(f.begin(), f.end()), 0));
    }
    // MonoN: words with the value in bits 0..N-1, shifted to 8 bits.
    for (int bits : {10, 12, 14, 16}) {
        const std::string name = "Mono" + std::to_string(bits);
        const auto f = WordFrame(random, n, bits);
        std::vector<int> v;
        for (std::uint32_t i = 0; i < n; ++i)
            v.push_back(Word(f, i));
        const auto out = ConvertByName(name, f, ZO_PT_GRAY8, n);
        Image got;
        for (unsigned char g : out)
            got.push_back({g, g, g});
        check(name, got, Gray(v, bits - 8));
    }
    // Mono12p: unpacked to 12-bit words.
    {
        const auto f = ByteFrame(random, n / 2 * 3);
        const auto out = ConvertByName("Mono12p", f, ZO_PT_GRAY12, 2 * n);
        std::vector<int> words;
        for (std::uint32_t i = 0; i < n; ++i)
            words.push_back(Word(out, i));
        check("Mono12p", Gray(words, 0), Gray(Decode12p(f), 0));
        EXPECT_EQ(words, Decode12p(f));  // all 12 bits, not only the low 8 compared above
    }
    // Bayer formats: replicating demosaic to RGB24 with the implied pattern.
    for (const char* lines : {"GR", "RG", "GB", "BG"}) {
        const std::string base = std::string("Bayer") + lines;
        const std::string layout = FirstLines(base);
        {
            const auto f = ByteFrame(random, n);
            check(base + "8", FromRGB24(ConvertByName(base + "8", f, ZO_PT_RGB24, rgb24)),
                  Replicate(std::vector<int>(f.begin(), f.end()), layout));
        }
        for (int bits : {10, 12}) {
            const auto f = WordFrame(random, n, bits);
            std::vector<int> v;
            for (std::uint32_t i = 0; i < n; ++i)
                v.push_back(Word(f, i) >> (bits - 8));
            const std::string name = base + std::to_string(bits);
            check(name, FromRGB24(ConvertByName(name, f, ZO_PT_RGB24, rgb24)), Replicate(v, layout));
        }
        {
            const auto f = ByteFrame(random, n / 2 * 3);
            std::vector<int> v = Decode12p(f);
            for (int& x : v)
                x >>= 4;
            check(base + "12p", FromRGB24(ConvertByName(base + "12p", f, ZO_PT_RGB24, rgb24)), Replicate(v, layout));
        }
    }
    // RGB8 "R G B", read by the library into RGB32; its output layouts BGR8
    // "B G R" and RGB8_Planar "all R then all G then all B" decoded back.
    {
        const auto f = ByteFrame(random, rgb24);
        const Image rgb = FromRGB24(f);
        const auto rgb32 = ConvertByName("RGB8", f, ZO_PT_RGB32, 4 * n);
        Image got;
        for (std::uint32_t i = 0; i < n; ++i)
            got.push_back({rgb32[4 * i], rgb32[4 * i + 1], rgb32[4 * i + 2]});
        check("RGB8", got, rgb);

        std::int64_t bgr = 0, planar = 0;
        std::uint32_t flags = 0;
        ASSERT_EQ(ZoPfnc_FromName("BGR8", &bgr, &flags), ZO_OK);
        ASSERT_EQ(ZoPfnc_FromName("RGB8_Planar", &planar, &flags), ZO_OK);
        const auto b = ConvertByName("RGB8", f, bgr, rgb24);
        got.clear();
        for (std::uint32_t i = 0; i < n; ++i)
            got.push_back({b[3 * i + 2], b[3 * i + 1], b[3 * i]});
        check("BGR8", got, rgb);
        const auto p = ConvertByName("RGB8", f, planar, rgb24);
        got.clear();
        for (std::uint32_t i = 0; i < n; ++i)
            got.push_back({p[i], p[n + i], p[2 * n + i]});
        check("RGB8_Planar", got, rgb);
    }
    // RGB10, RGB12: three words R G B with the values in the low bits.
    for (int bits : {10, 12}) {
        const std::string name = "RGB" + std::to_string(bits);
        const auto f = WordFrame(random, 3 * n, bits);
        Image expected;
        for (std::uint32_t i = 0; i < n; ++i)
            expected.push_back({Word(f, 3 * i) >> (bits - 8), Word(f, 3 * i + 1) >> (bits - 8),
                                Word(f, 3 * i + 2) >> (bits - 8)});
        check(name, FromRGB24(ConvertByName(name, f, ZO_PT_RGB24, rgb24)), expected);
    }
    // YCbCr601_422_8: Y0 Cb Y1 Cr, BT.601 studio range; the library's 8.8
    // fixed-point transform is within one level of the exact one.
    {
        const auto f = ByteFrame(random, 2 * n);
        Image expected;
        for (std::uint32_t i = 0; i < n; i += 2) {
            expected.push_back(Studio601(f[2 * i], f[2 * i + 1], f[2 * i + 3]));
            expected.push_back(Studio601(f[2 * i + 2], f[2 * i + 1], f[2 * i + 3]));
        }
        check("YCbCr601_422_8", FromRGB24(ConvertByName("YCbCr601_422_8", f, ZO_PT_RGB24, rgb24)), expected, 1);
    }

    // Every mapped entry of the table was decoded above.
    std::size_t mapped = 0;
    for (const Row& row : LibraryTable())
        if (row.typeId != ZO_NO_PIXEL_TYPE_ID) {
            ++mapped;
            EXPECT_NE(std::find(checked.begin(), checked.end(), row.name), checked.end()) << row.name;
        }
    EXPECT_EQ(mapped, checked.size());
}
