#include "Demo.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "FrameConvert.h"
#include "ImageFile.h"
#include "LibraryInfo.h"
#include "ZoImgLib.h"

namespace zoimg {

namespace {

constexpr std::uint32_t kWidth = 384;
constexpr std::uint32_t kHeight = 256;

struct Rgb {
    std::uint8_t r, g, b;
};

// The chart: 24 colour patches (6 x 4, 64 x 40 pixels each) in the colours
// of a classic colour checker, a full-saturation hue sweep and a gray ramp.
// Flat patches show colour accuracy, their borders the edge behaviour of
// demosaicing, the sweep and ramp any banding or seams.
Image MakeChart()
{
    static const Rgb kPatches[24] = {
        {115, 82, 68},   {194, 150, 130}, {98, 122, 157},  {87, 108, 67},   {133, 128, 177}, {103, 189, 170},
        {214, 126, 44},  {80, 91, 166},   {193, 90, 99},   {94, 60, 108},   {157, 188, 64},  {224, 163, 46},
        {56, 61, 150},   {70, 148, 73},   {175, 54, 60},   {231, 199, 31},  {187, 86, 149},  {8, 133, 161},
        {243, 243, 242}, {200, 200, 200}, {160, 160, 160}, {122, 122, 121}, {85, 85, 85},    {52, 52, 52},
    };
    Image chart;
    chart.width = kWidth;
    chart.height = kHeight;
    chart.channels = 3;
    chart.data.resize(static_cast<std::size_t>(kWidth) * kHeight * 3);
    for (std::uint32_t y = 0; y < kHeight; ++y)
        for (std::uint32_t x = 0; x < kWidth; ++x) {
            Rgb c;
            if (y < 159) {
                // Patch borders fall at odd coordinates, inside 2x2 Bayer cells.
                c = kPatches[std::min((y + 1) / 40, 3u) * 6 + std::min((x + 1) / 64, 5u)];
            } else if (y < 207) {
                // Hue from 0 to 360 degrees across the width.
                const double h = 6.0 * x / kWidth;
                const int sector = static_cast<int>(h);
                const auto up = static_cast<std::uint8_t>(std::lround(255 * (h - sector)));
                const auto down = static_cast<std::uint8_t>(255 - up);
                switch (sector % 6) {
                case 0: c = {255, up, 0}; break;
                case 1: c = {down, 255, 0}; break;
                case 2: c = {0, 255, up}; break;
                case 3: c = {0, down, 255}; break;
                case 4: c = {up, 0, 255}; break;
                default: c = {255, 0, down}; break;
                }
            } else {
                const auto v = static_cast<std::uint8_t>(x * 255 / (kWidth - 1));
                c = {v, v, v};
            }
            std::uint8_t* p = &chart.data[(static_cast<std::size_t>(y) * kWidth + x) * 3];
            p[0] = c.r, p[1] = c.g, p[2] = c.b;
        }
    return chart;
}

// Channel (0 red, 1 green, 2 blue) that a GRBG mosaic samples at (x, y):
//   G R G R ...
//   B G B G ...
int GrbgChannel(std::uint32_t x, std::uint32_t y)
{
    if ((y & 1) == 0)
        return (x & 1) ? 0 : 1;
    return (x & 1) ? 1 : 2;
}

std::vector<std::uint8_t> MosaicBayer8(const Image& chart)
{
    std::vector<std::uint8_t> frame(static_cast<std::size_t>(kWidth) * kHeight);
    for (std::uint32_t y = 0; y < kHeight; ++y)
        for (std::uint32_t x = 0; x < kWidth; ++x)
            frame[y * kWidth + x] = chart.data[(y * kWidth + x) * 3 + GrbgChannel(x, y)];
    return frame;
}

// Packed 12-bit Bayer: each pair of samples A, B in three bytes, A in bits
// 0-11 and B in bits 12-23 of the little-endian 24-bit group. The 8-bit chart
// value v becomes the 12-bit value v * 4095 / 255 (v << 4 | v >> 4).
std::vector<std::uint8_t> MosaicBayer12Packed(const Image& chart)
{
    std::vector<std::uint8_t> frame;
    frame.reserve(static_cast<std::size_t>(kWidth) * kHeight * 3 / 2);
    for (std::uint32_t y = 0; y < kHeight; ++y)
        for (std::uint32_t x = 0; x < kWidth; x += 2) {
            std::uint32_t s[2];
            for (int i = 0; i < 2; ++i) {
                const std::uint32_t v = chart.data[(y * kWidth + x + i) * 3 + GrbgChannel(x + i, y)];
                s[i] = (v << 4) | (v >> 4);
            }
            const std::uint32_t group = s[0] | (s[1] << 12);
            frame.push_back(static_cast<std::uint8_t>(group));
            frame.push_back(static_cast<std::uint8_t>(group >> 8));
            frame.push_back(static_cast<std::uint8_t>(group >> 16));
        }
    return frame;
}

// YUV 4:2:2, bytes Y0 U Y1 V per pixel pair, BT.601 studio range; the pair
// shares the mean of its two pixels' chroma.
std::vector<std::uint8_t> EncodeYuv422(const Image& chart)
{
    std::vector<std::uint8_t> frame;
    frame.reserve(static_cast<std::size_t>(kWidth) * kHeight * 2);
    for (std::uint32_t y = 0; y < kHeight; ++y)
        for (std::uint32_t x = 0; x < kWidth; x += 2) {
            int luma[2], u = 0, v = 0;
            for (int i = 0; i < 2; ++i) {
                const std::uint8_t* p = &chart.data[(y * kWidth + x + i) * 3];
                const int r = p[0], g = p[1], b = p[2];
                luma[i] = 16 + ((66 * r + 129 * g + 25 * b + 128) >> 8);
                u += -38 * r - 74 * g + 112 * b;
                v += 112 * r - 94 * g - 18 * b;
            }
            const int cb = 128 + ((u / 2 + 128) >> 8);
            const int cr = 128 + ((v / 2 + 128) >> 8);
            frame.push_back(static_cast<std::uint8_t>(luma[0]));
            frame.push_back(static_cast<std::uint8_t>(std::clamp(cb, 0, 255)));
            frame.push_back(static_cast<std::uint8_t>(luma[1]));
            frame.push_back(static_cast<std::uint8_t>(std::clamp(cr, 0, 255)));
        }
    return frame;
}

// Peak signal-to-noise ratio of `image` against `chart` over all three
// channels of the pixels at least `border` pixels from the frame's edge.
double Psnr(const Image& chart, const Image& image, std::uint32_t border)
{
    double sum = 0;
    std::size_t count = 0;
    for (std::uint32_t y = border; y + border < kHeight; ++y)
        for (std::uint32_t x = border; x + border < kWidth; ++x)
            for (int c = 0; c < 3; ++c) {
                const std::size_t i = (static_cast<std::size_t>(y) * kWidth + x) * 3 + c;
                const double d = static_cast<double>(chart.data[i]) - image.data[i];
                sum += d * d;
                ++count;
            }
    if (sum == 0)
        return INFINITY;
    return 10.0 * std::log10(255.0 * 255.0 / (sum / count));
}

std::string FormatPsnr(double psnr)
{
    if (std::isinf(psnr))
        return "inf";
    char text[16];
    std::snprintf(text, sizeof text, "%.2f", psnr);
    return text;
}

struct Run {
    const char* title;
    const char* output;  // file name without extension
    const char* input;   // raw input file
    std::int64_t source;
    std::uint32_t flags;
    const char* flagWords;
};

}  // namespace

int RunDemo(const std::string& outputDirectory)
{
    namespace fs = std::filesystem;
    std::error_code ec;
    fs::create_directories(outputDirectory, ec);
    if (ec) {
        std::fprintf(stderr, "zoimg demo: cannot create '%s': %s\n", outputDirectory.c_str(), ec.message().c_str());
        return 1;
    }
    const std::string ext = HavePng() ? ".png" : ".ppm";
    auto path = [&](const std::string& name) { return (fs::path(outputDirectory) / name).string(); };

    std::string error;
    const Image chart = MakeChart();
    if (!WriteImage(path("chart" + ext), chart, error)) {
        std::fprintf(stderr, "zoimg demo: %s\n", error.c_str());
        return 1;
    }

    const std::vector<std::uint8_t> bayer8 = MosaicBayer8(chart);
    const std::vector<std::uint8_t> bayer12 = MosaicBayer12Packed(chart);
    const std::vector<std::uint8_t> yuv = EncodeYuv422(chart);
    struct Input {
        const char* file;
        const std::vector<std::uint8_t>* bytes;
    } inputs[] = {{"bayer8-grbg.raw", &bayer8}, {"bayer12-packed-grbg.raw", &bayer12}, {"yuv422.raw", &yuv}};
    for (const Input& in : inputs)
        if (!WriteFile(path(in.file), in.bytes->data(), in.bytes->size(), error)) {
            std::fprintf(stderr, "zoimg demo: %s\n", error.c_str());
            return 1;
        }

    const std::int64_t packed12 = ZO_PT_BAYER_RGB12 | ZO_PIXEL_PACKED;
    const Run runs[] = {
        {"Bayer 8-bit, 2x2 replication", "bayer8-nearest", "bayer8-grbg.raw", ZO_PT_BAYER_RGB8, ZO_FLAG_BAYER_GRBG,
         "bayer-grbg"},
        {"Bayer 8-bit, interpolation", "bayer8-interpolated", "bayer8-grbg.raw", ZO_PT_BAYER_RGB8,
         ZO_FLAG_BAYER_GRBG | ZO_FLAG_BAYER_INTERPOLATE, "bayer-grbg,interpolate"},
        {"Bayer 12-bit packed, 2x2 replication", "bayer12packed-nearest", "bayer12-packed-grbg.raw", packed12,
         ZO_FLAG_BAYER_GRBG, "bayer-grbg"},
        {"Bayer 12-bit packed, interpolation", "bayer12packed-interpolated", "bayer12-packed-grbg.raw", packed12,
         ZO_FLAG_BAYER_GRBG | ZO_FLAG_BAYER_INTERPOLATE, "bayer-grbg,interpolate"},
        {"YUV 4:2:2 8-bit", "yuv422", "yuv422.raw", ZO_PT_YUV8, 0, ""},
    };

    std::string report;
    char line[512];
    std::snprintf(line, sizeof line,
                  "ZoImgLib demo: a %u x %u colour chart (chart%s) mosaiced or encoded, then converted back to "
                  "RGB 24-bits by the library.\nPSNR in dB against the chart over all pixels, and without a "
                  "4-pixel border (inner).\n\n%-32s %-10s %7s %7s  %s\n",
                  kWidth, kHeight, ext.c_str(), "output", "source", "PSNR", "inner", "conversion");
    report += line;
    int status = 0;
    std::string converters, commands;
    for (const Run& run : runs) {
        const std::vector<std::uint8_t>& input = run.source == ZO_PT_BAYER_RGB8 ? bayer8
                                                 : run.source == packed12       ? bayer12
                                                                                : yuv;
        const std::string file = std::string(run.output) + ext;
        auto row = [&](const char* psnr, const char* inner, const std::string& note) {
            std::snprintf(line, sizeof line, "%-32s %-10s %7s %7s  %s%s\n", file.c_str(), HexId(run.source).c_str(),
                          psnr, inner, run.title, note.c_str());
            report += line;
        };
        if (!ZoPixelTypeFactory::HasConverter(run.source, ZO_PT_RGB24)) {
            row("-", "-", ": no converter registered");
            status = 1;
            continue;
        }
        const ZoPixelConverter& converter = ZoPixelTypeFactory::GetConverter(run.source, ZO_PT_RGB24);
        std::vector<std::uint8_t> frame;
        Image image;
        FrameConverter frames;
        std::uint32_t result = ZO_ERR_BAD_ARGUMENT;
        if (frames.Prepare(converter, kWidth, kHeight, run.flags, nullptr, 1, error) &&
            frames.SourceFrameBytes() == input.size())
            result = frames.Convert(input.data(), frame);
        if (result != ZO_OK || !FrameToImage(ZO_PT_RGB24, frame, kWidth, kHeight, 0, image)) {
            row("-", "-", ": conversion failed (result " + std::to_string(result) + ")");
            status = 1;
            continue;
        }
        if (!WriteImage(path(file), image, error)) {
            std::fprintf(stderr, "zoimg demo: %s\n", error.c_str());
            return 1;
        }
        row(FormatPsnr(Psnr(chart, image, 0)).c_str(), FormatPsnr(Psnr(chart, image, 4)).c_str(), "");
        converters += "  " + file + ": " + DescribeConverter(converter) + "\n";
        std::snprintf(line, sizeof line, "  zoimg convert --from %s --to RGB24 --width %u --height %u%s%s %s %s\n",
                      HexId(run.source).c_str(), kWidth, kHeight, *run.flagWords ? " --flags " : "",
                      run.flagWords, run.input, file.c_str());
        commands += line;
    }
    report += "\nConverters used:\n" + converters;
    report += "\nThe same conversions from the raw frames in this directory:\n" + commands;
    if (status != 0)
        report += "\nSome conversions are not available in this build of the library.\n";
    std::fputs(report.c_str(), stdout);
    if (!WriteFile(path("report.txt"), reinterpret_cast<const std::uint8_t*>(report.data()), report.size(),
                   error)) {
        std::fprintf(stderr, "zoimg demo: %s\n", error.c_str());
        return 1;
    }
    std::printf("\nWrote %s\n", outputDirectory.c_str());
    return status;
}

}  // namespace zoimg
