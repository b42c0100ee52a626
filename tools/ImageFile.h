// Writing images for the zoimg tool: PNG (when built with libpng), binary
// PPM and PGM. The format follows the file name's extension.
#ifndef ZOIMG_IMAGE_FILE_H
#define ZOIMG_IMAGE_FILE_H

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace zoimg {

// An image in memory: channels 1 (gray) or 3 (RGB), samples of 8 or 16 bits
// (16-bit samples are stored as native uint16_t, two bytes each in `data`),
// maxValue the largest meaningful sample (255, 1023, 4095, 65535...).
// Image files hold samples scaled to their full range (8 or 16 bits) and,
// where the format can (PNG sBIT), the significant bits of the source:
// `significantBits` for samples narrower than bitDepth (0: all bits), or
// 5, 6, 5 when `rgb565` (8-bit samples widened from RGB16 words).
struct Image {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    int channels = 3;
    int bitDepth = 8;
    std::uint32_t maxValue = 255;
    std::uint32_t significantBits = 0;
    bool rgb565 = false;
    std::vector<std::uint8_t> data;

    std::uint16_t Sample16(std::size_t index) const;
};

// Whether the name ends in .png, .ppm or .pgm (case-insensitive).
bool IsImageFileName(const std::string& path);
// Whether the name gets the converted bytes as they are: "-" (standard
// output) or any name but those of images, including image formats zoimg
// does not write (.jpg, .tif, .bmp ...).
bool IsRawFileName(const std::string& path);
// The extension, lower case, without its dot ("" for none).
std::string Extension(const std::string& path);
// Whether PNG output is available in this build.
bool HavePng();

// Writes `image` to `path` in the format of its extension; a .ppm gets RGB,
// a .pgm gray (an image of the other kind is converted). On failure returns
// false and sets `error`.
bool WriteImage(const std::string& path, const Image& image, std::string& error);

// "-" is standard output.
bool WriteFile(const std::string& path, const std::uint8_t* data, std::size_t size, std::string& error);

// A raw input file read in pieces; "-" is standard input.
class RawInput {
public:
    ~RawInput();
    bool Open(const std::string& path, std::string& error);
    // The file's size in bytes, or -1 when it cannot be known beforehand (a pipe).
    long long Size() const { return mSize; }
    // Reads up to `size` bytes; fewer only at the end of the input or on an
    // error (then false with a message).
    bool Read(std::uint8_t* data, std::size_t size, std::size_t& got, std::string& error);

private:
    std::string mPath;
    std::FILE* mFile = nullptr;
    bool mOwned = false;
    long long mSize = -1;
};

// A raw output file written in pieces; "-" is standard output.
class RawOutput {
public:
    ~RawOutput();
    bool Open(const std::string& path, std::string& error);
    bool Write(const std::uint8_t* data, std::size_t size, std::string& error);
    bool Close(std::string& error);

private:
    std::string mPath;
    std::FILE* mFile = nullptr;
    bool mOwned = false;
};

}  // namespace zoimg

#endif
