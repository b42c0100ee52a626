// zoimg demo: a synthetic colour chart run through the library's Bayer,
// packed Bayer and YUV converters, with PNGs and a PSNR report.
#ifndef ZOIMG_DEMO_H
#define ZOIMG_DEMO_H

#include <string>

namespace zoimg {

// Writes the chart, the mosaics/encodings as raw frames, the converted
// images and report.txt into `outputDirectory`; prints the report. Returns
// the process exit status: 0 when every conversion ran.
int RunDemo(const std::string& outputDirectory);

}  // namespace zoimg

#endif
