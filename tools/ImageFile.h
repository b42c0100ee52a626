// Writing images for the zoimg tool: PNG (when built with libpng), binary
// PPM and PGM. The format follows the file name's extension.
#ifndef ZOIMG_IMAGE_FILE_H
#define ZOIMG_IMAGE_FILE_H

#include <cstdint>
#include <string>
#include <vector>

namespace zoimg {

// An image in memory: channels 1 (gray) or 3 (RGB), samples of 8 or 16 bits
// (16-bit samples are stored as native uint16_t, two bytes each in `data`),
// maxValue the largest meaningful sample (255, 1023, 4095, 65535...).
struct Image {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    int channels = 3;
    int bitDepth = 8;
    std::uint32_t maxValue = 255;
    std::vector<std::uint8_t> data;

    std::uint16_t Sample16(std::size_t index) const;
};

// Whether the name ends in .png, .ppm or .pgm (case-insensitive).
bool IsImageFileName(const std::string& path);
// Whether PNG output is available in this build.
bool HavePng();

// Writes `image` to `path` in the format of its extension; a .ppm gets RGB,
// a .pgm gray (an image of the other kind is converted). On failure returns
// false and sets `error`.
bool WriteImage(const std::string& path, const Image& image, std::string& error);

bool WriteFile(const std::string& path, const std::uint8_t* data, std::size_t size, std::string& error);
bool ReadFile(const std::string& path, std::vector<std::uint8_t>& data, std::string& error);

}  // namespace zoimg

#endif
