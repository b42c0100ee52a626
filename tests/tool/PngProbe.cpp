// Prints what a PNG holds, for the tool test: bit depth, channels, the
// significant bits of its sBIT chunk (0 without one) and the largest sample.
// Usage: zoimg_png_probe FILE
#include <png.h>

#include <algorithm>
#include <cstdio>
#include <vector>

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    std::FILE* f = std::fopen(argv[1], "rb");
    if (!f)
        return 1;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (setjmp(png_jmpbuf(png)))
        return 1;
    png_init_io(png, f);
    png_read_info(png, info);
    const unsigned depth = png_get_bit_depth(png, info), channels = png_get_channels(png, info);
    unsigned significant = 0;
    png_color_8p sig = nullptr;
    if (png_get_sBIT(png, info, &sig) && sig)
        significant = channels == 1 ? sig->gray : std::max({sig->red, sig->green, sig->blue});
    std::vector<png_byte> row(png_get_rowbytes(png, info));
    unsigned maximum = 0;
    for (png_uint_32 y = 0; y < png_get_image_height(png, info); ++y) {
        png_read_row(png, row.data(), nullptr);
        for (std::size_t i = 0; i < row.size(); i += depth / 8)
            maximum = std::max<unsigned>(maximum, depth == 16 ? (row[i] << 8) | row[i + 1] : row[i]);
    }
    std::printf("%u %u %u %u\n", depth, channels, significant, maximum);
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(f);
    return 0;
}
