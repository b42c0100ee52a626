#include "ImageFile.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include <sys/stat.h>
#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#define ZOIMG_FILENO _fileno
#else
#define ZOIMG_FILENO fileno
#endif

#if defined(ZOIMG_HAVE_PNG)
#include <png.h>
#endif

namespace zoimg {

std::string Extension(const std::string& path)
{
    const std::size_t dot = path.find_last_of('.');
    const std::size_t slash = path.find_last_of("/\\");
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
        return "";
    std::string ext = path.substr(dot + 1);
    for (char& c : ext)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return ext;
}

namespace {

struct FileCloser {
    void operator()(std::FILE* f) const
    {
        if (f)
            std::fclose(f);
    }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

File Open(const std::string& path, const char* mode, std::string& error)
{
    File f(std::fopen(path.c_str(), mode));
    if (!f)
        error = "cannot open '" + path + "': " + std::strerror(errno);
    return f;
}

// The image with the channel count a file format needs: gray is repeated
// into RGB, RGB is reduced to its luma (BT.601 weights).
Image WithChannels(const Image& image, int channels)
{
    if (image.channels == channels)
        return image;
    Image out = image;
    out.channels = channels;
    const std::size_t pixels = static_cast<std::size_t>(image.width) * image.height;
    const std::size_t bytes = image.bitDepth == 16 ? 2 : 1;
    out.data.assign(pixels * channels * bytes, 0);
    for (std::size_t i = 0; i < pixels; ++i) {
        if (channels == 3) {
            for (int c = 0; c < 3; ++c)
                std::memcpy(&out.data[(i * 3 + c) * bytes], &image.data[i * bytes], bytes);
        } else {
            std::uint32_t r, g, b;
            if (bytes == 2) {
                r = image.Sample16(i * 3), g = image.Sample16(i * 3 + 1), b = image.Sample16(i * 3 + 2);
                const std::uint16_t y = static_cast<std::uint16_t>((r * 77 + g * 150 + b * 29) >> 8);
                std::memcpy(&out.data[i * 2], &y, 2);
            } else {
                r = image.data[i * 3], g = image.data[i * 3 + 1], b = image.data[i * 3 + 2];
                out.data[i] = static_cast<std::uint8_t>((r * 77 + g * 150 + b * 29) >> 8);
            }
        }
    }
    return out;
}

// Netpbm: binary P5 (gray) or P6 (RGB); samples above 255 in two bytes, most
// significant first; maxval is the image's own maximum.
bool WriteNetpbm(const std::string& path, const Image& source, int channels, std::string& error)
{
    const Image image = WithChannels(source, channels);
    File f = Open(path, "wb", error);
    if (!f)
        return false;
    const std::uint32_t maxValue = image.bitDepth == 16 ? image.maxValue : 255;
    std::fprintf(f.get(), "P%d\n%u %u\n%u\n", channels == 3 ? 6 : 5, image.width, image.height, maxValue);
    const std::size_t samples = static_cast<std::size_t>(image.width) * image.height * channels;
    std::vector<std::uint8_t> bytes;
    if (image.bitDepth == 16) {
        bytes.resize(samples * 2);
        for (std::size_t i = 0; i < samples; ++i) {
            const std::uint16_t v = image.Sample16(i);
            bytes[2 * i] = static_cast<std::uint8_t>(v >> 8);
            bytes[2 * i + 1] = static_cast<std::uint8_t>(v);
        }
    } else {
        bytes.assign(image.data.begin(), image.data.begin() + samples);
    }
    if (std::fwrite(bytes.data(), 1, bytes.size(), f.get()) != bytes.size()) {
        error = "cannot write '" + path + "'";
        return false;
    }
    return true;
}

#if defined(ZOIMG_HAVE_PNG)
// PNG stores 16-bit samples most significant byte first. Every sample is
// scaled to the full range of its depth (a 12-bit 4095 becomes 65535, as a
// decoder that ignores sBIT expects), and the sBIT chunk records how many
// bits are significant, so a decoder that reads it gets the exact values
// back (the top bits of each scaled sample).
bool WritePng(const std::string& path, const Image& image, std::string& error)
{
    File f = Open(path, "wb", error);
    if (!f)
        return false;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!info) {
        png_destroy_write_struct(&png, nullptr);
        error = "cannot set up the PNG writer";
        return false;
    }
    const std::size_t rowSamples = static_cast<std::size_t>(image.width) * image.channels;
    std::vector<std::uint8_t> row(rowSamples * (image.bitDepth == 16 ? 2 : 1));
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        error = "cannot write '" + path + "'";
        return false;
    }
    png_init_io(png, f.get());
    png_set_IHDR(png, info, image.width, image.height, image.bitDepth,
                 image.channels == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_color_8 sig = {};
    const int significant = static_cast<int>(image.significantBits);
    if (image.rgb565) {
        sig.red = 5, sig.green = 6, sig.blue = 5;
        png_set_sBIT(png, info, &sig);
    } else if (significant > 0 && significant < image.bitDepth) {
        sig.red = sig.green = sig.blue = sig.gray = static_cast<png_byte>(significant);
        png_set_sBIT(png, info, &sig);
    }
    png_write_info(png, info);
    for (std::uint32_t y = 0; y < image.height; ++y) {
        const std::size_t first = y * rowSamples;
        if (image.bitDepth == 16) {
            for (std::size_t i = 0; i < rowSamples; ++i) {
                std::uint32_t v = image.Sample16(first + i);
                if (image.maxValue != 65535 && image.maxValue != 0)
                    v = (std::min(v, image.maxValue) * 65535u + image.maxValue / 2) / image.maxValue;
                row[2 * i] = static_cast<std::uint8_t>(v >> 8);
                row[2 * i + 1] = static_cast<std::uint8_t>(v);
            }
        } else {
            std::memcpy(row.data(), &image.data[first], rowSamples);
        }
        png_write_row(png, row.data());
    }
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return true;
}
#endif

}  // namespace

std::uint16_t Image::Sample16(std::size_t index) const
{
    std::uint16_t v;
    std::memcpy(&v, &data[index * 2], 2);
    return v;
}

bool IsImageFileName(const std::string& path)
{
    const std::string ext = Extension(path);
    return path != "-" && (ext == "png" || ext == "ppm" || ext == "pgm");
}

bool IsRawFileName(const std::string& path)
{
    // Image formats zoimg does not write: such a name would get raw bytes
    // that no viewer reads.
    static const char* const kOtherImages[] = {"jpg", "jpeg", "jpe", "jfif", "tif", "tiff", "bmp", "dib", "gif",
                                               "webp", "exr", "hdr", "heic", "heif", "avif", "jxl", "jp2", "tga",
                                               "pnm", "pam", "pfm", "ico", "qoi", "dng"};
    const std::string ext = Extension(path);
    if (path == "-")
        return true;
    for (const char* other : kOtherImages)
        if (ext == other)
            return false;
    return !IsImageFileName(path);
}

bool HavePng()
{
#if defined(ZOIMG_HAVE_PNG)
    return true;
#else
    return false;
#endif
}

bool WriteImage(const std::string& path, const Image& image, std::string& error)
{
    const std::string ext = Extension(path);
    if (ext == "ppm")
        return WriteNetpbm(path, image, 3, error);
    if (ext == "pgm")
        return WriteNetpbm(path, image, 1, error);
    if (ext == "png") {
#if defined(ZOIMG_HAVE_PNG)
        return WritePng(path, image, error);
#else
        error = "this zoimg was built without libpng; write .ppm or .pgm instead";
        return false;
#endif
    }
    error = "'" + path + "' is not a .png, .ppm or .pgm file name";
    return false;
}

bool WriteFile(const std::string& path, const std::uint8_t* data, std::size_t size, std::string& error)
{
    RawOutput out;
    return out.Open(path, error) && out.Write(data, size, error) && out.Close(error);
}

RawInput::~RawInput()
{
    if (mOwned && mFile)
        std::fclose(mFile);
}

bool RawInput::Open(const std::string& path, std::string& error)
{
    mPath = path == "-" ? "standard input" : "'" + path + "'";
    if (path == "-") {
        mFile = stdin;
#if defined(_WIN32)
        _setmode(_fileno(stdin), _O_BINARY);
#endif
        return true;
    }
    mFile = std::fopen(path.c_str(), "rb");
    if (!mFile) {
        error = "cannot open '" + path + "': " + std::strerror(errno);
        return false;
    }
    mOwned = true;
    struct stat status;
    if (fstat(ZOIMG_FILENO(mFile), &status) == 0 && S_ISREG(status.st_mode))
        mSize = static_cast<long long>(status.st_size);
    return true;
}

bool RawInput::Read(std::uint8_t* data, std::size_t size, std::size_t& got, std::string& error)
{
    got = size ? std::fread(data, 1, size, mFile) : 0;
    if (got < size && std::ferror(mFile)) {
        error = "cannot read " + mPath;
        return false;
    }
    return true;
}

RawOutput::~RawOutput()
{
    if (mOwned && mFile)
        std::fclose(mFile);
}

bool RawOutput::Open(const std::string& path, std::string& error)
{
    mPath = path == "-" ? "standard output" : "'" + path + "'";
    if (path == "-") {
        mFile = stdout;
#if defined(_WIN32)
        _setmode(_fileno(stdout), _O_BINARY);
#endif
        return true;
    }
    mFile = std::fopen(path.c_str(), "wb");
    if (!mFile) {
        error = "cannot open '" + path + "': " + std::strerror(errno);
        return false;
    }
    mOwned = true;
    return true;
}

bool RawOutput::Write(const std::uint8_t* data, std::size_t size, std::string& error)
{
    if (size && std::fwrite(data, 1, size, mFile) != size) {
        error = "cannot write " + mPath;
        return false;
    }
    return true;
}

bool RawOutput::Close(std::string& error)
{
    if (!mFile)
        return true;
    const bool ok = std::fflush(mFile) == 0 && !std::ferror(mFile);
    if (mOwned)
        std::fclose(mFile);
    mFile = nullptr;
    if (!ok)
        error = "cannot write " + mPath;
    return ok;
}

}  // namespace zoimg
