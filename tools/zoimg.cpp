// zoimg: the ZoImgLib command-line tool.
//
//   zoimg types [--pfnc]             the pixel type catalogue (or the PFNC names)
//   zoimg converters [SOURCE]        registered conversions
//   zoimg convert --from T --to T --width W --height H [options] IN OUT
//   zoimg demo [OUTDIR]              test chart through Bayer, packed Bayer and YUV
//   zoimg docs [FILE]                the converter reference in Markdown
//
// It uses the library through its public headers only.
#include <algorithm>
#include <chrono>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <io.h>
#define ZOIMG_ISATTY(fd) _isatty(fd)
#else
#include <unistd.h>
#define ZOIMG_ISATTY(fd) isatty(fd)
#endif

#include "ConverterNotes.h"
#include "Demo.h"
#include "FrameConvert.h"
#include "ImageFile.h"
#include "LibraryInfo.h"
#include "ZoImgLib.h"
#include "ZoImgLibExt.h"

using namespace zoimg;

namespace {

// Exit statuses: 1 for a failed operation, 2 for a command line that cannot
// be carried out as given.
constexpr int kFailed = 1;
constexpr int kUsage = 2;

const char kUsageText[] =
    "usage: zoimg COMMAND [ARGS]\n"
    "\n"
    "  types [--pfnc]              list the registered pixel types (or the PFNC names)\n"
    "  converters [SOURCE]         list the registered conversions (from SOURCE only)\n"
    "  convert --from TYPE --to TYPE --width W --height H [OPTIONS] IN OUT\n"
    "                              convert the raw frames in IN\n"
    "  demo [OUTDIR]               convert a synthetic chart through the Bayer, packed\n"
    "                              Bayer and YUV converters (default OUTDIR: zoimg-demo)\n"
    "  docs [FILE]                 write the converter reference (Markdown)\n"
    "  --version                   print the library's version\n"
    "\n"
    "TYPE: a hex ID (0x20010), a name from 'zoimg types' (quoted), a class name\n"
    "(BayerRGB8, RGB24, BGR32, Gray8, YUV8 ...) or a PFNC name (BayerRG12p, Mono8;\n"
    "a Bayer PFNC name also sets the pattern).\n"
    "\n"
    "convert options:\n"
    "  --flags F[,F...]   bayer-grbg, bayer-gbrg, bayer-rggb, bayer-bggr (one at\n"
    "                     most), interpolate, invert-deinterlacer, or a number\n"
    "  --gains R,G,B      red, green and blue multipliers through the library's\n"
    "                     filter (a warning when they cannot change the output)\n"
    "  --frames N         IN holds N frames (default: as many as its size holds)\n"
    "  --threads N        convert each frame in N bands at once (default 1)\n"
    "IN is a raw file ('-': standard input). OUT is .png, .ppm or .pgm for an image\n"
    "(RGB and gray destinations; samples scaled to the full range, PNG sBIT gives\n"
    "the significant bits); '-' or any other name (.raw, .yuv ...) gets the bytes\n"
    "as the library writes them, but not the name of an image format zoimg does\n"
    "not write (.jpg, .tif ...). Several frames give OUT-0000.png,\n"
    "OUT-0001.png ... or one raw stream. A Bayer source without a pattern uses\n"
    "its converter's default, named on stderr. In replicating Bayer mode an odd\n"
    "height converts the last line together with one past the frame: zoimg fills\n"
    "that line with a copy of line HEIGHT-2, so the last row gets the colours of\n"
    "the row above (the library alone would read whatever the buffer holds\n"
    "there). On success one line on stderr says what was written; the time is\n"
    "the conversion's.\n";

// A command line that cannot be carried out: the reason alone, or the whole
// usage text when there is none.
int Usage(const std::string& message = "")
{
    if (message.empty())
        std::fputs(kUsageText, stderr);
    else
        std::fprintf(stderr, "zoimg: %s\n('zoimg help' shows the usage)\n", message.c_str());
    return kUsage;
}

int Fail(const std::string& message)
{
    std::fprintf(stderr, "zoimg: %s\n", message.c_str());
    return kFailed;
}

int CommandPfnc()
{
    std::printf("%-22s  %-10s  %-10s  %-10s  %s\n", "PFNC name", "Code", "ID", "Flags", "Name");
    const char* name;
    std::uint32_t code, flags;
    std::int64_t id;
    for (std::uint32_t i = 0; ZoPfnc_GetEntry(i, &name, &code, &id, &flags); ++i) {
        char codeText[16];
        std::snprintf(codeText, sizeof codeText, "0x%08X", code);
        if (id == ZO_NO_PIXEL_TYPE_ID) {
            std::printf("%-22s  %-10s  %-10s  %-10s  %s\n", name, codeText, "-", "-", "(no type of the same bytes)");
            continue;
        }
        const std::string pattern = PatternWords(flags);
        std::printf("%-22s  %-10s  %-10s  %-10s  %s\n", name, codeText, HexId(id).c_str(),
                    pattern.empty() ? "-" : pattern.c_str(), TypeName(id).c_str());
    }
    return 0;
}

int CommandTypes(const std::vector<std::string>& args)
{
    if (args.size() == 1 && args[0] == "--pfnc")
        return CommandPfnc();
    if (!args.empty())
        return Usage("types takes no arguments but --pfnc");
    const std::vector<std::int64_t> ids = RegisteredTypes();
    std::size_t nameWidth = 4, classWidth = 5;
    for (std::int64_t id : ids) {
        nameWidth = std::max(nameWidth, std::strlen(ZoPixelTypeFactory::GetPixelTypeName(id)));
        classWidth = std::max(classWidth, TypeClass(id).size());
    }
    const int nw = static_cast<int>(nameWidth), cw = static_cast<int>(classWidth);
    std::printf("%-10s  %-*s  %-*s  %4s  %5s  %-5s  %-7s  %s\n", "ID", cw, "Class", nw, "Name", "Bits", "Bytes",
                "Bayer", "Source", "Flags");
    std::size_t idle = 0;
    for (std::int64_t id : ids) {
        const ZoPixelType& type = ZoPixelTypeFactory::GetPixelType(id);
        const bool source = IsConverterSource(id);
        idle += source ? 0 : 1;
        std::printf("%-10s  %-*s  %-*s  %4u  %5u  %-5s  %-7s  %s\n", HexId(id).c_str(), cw, TypeClass(id).c_str(), nw,
                    ZoPixelTypeFactory::GetPixelTypeName(id), static_cast<unsigned>(type.GetPixelBitSize()),
                    static_cast<unsigned>(type.GetPixelByteSize()), type.IsBayerPattern() ? "yes" : "no",
                    source ? "yes" : "NONE", FlagWords(id).c_str());
    }
    std::printf("\n%zu types; Source NONE: %zu are the source of no conversion.\n", ids.size(), idle);
    std::string outside;
    for (std::int64_t id : ConverterSources())
        if (!ZoPixelTypeFactory::HasPixelType(id)) {
            outside += "  " + HexId(id);
            const std::int64_t typed = id | ZO_PIXEL_PACKED;
            if (ZoPixelTypeFactory::HasPixelType(typed))
                outside += " (the bytes of " + HexId(typed) + " " + TypeName(typed) + ")";
            outside += "\n";
        }
    if (!outside.empty())
        std::printf("Converters are also registered from IDs that are not types:\n%s", outside.c_str());
    return 0;
}

int CommandConverters(const std::vector<std::string>& args)
{
    if (args.size() > 1)
        return Usage("converters takes at most one SOURCE");
    std::vector<std::int64_t> sources;
    if (args.empty()) {
        sources = ConverterSources();
    } else {
        std::int64_t id;
        std::uint32_t pattern;
        std::string error;
        if (!ParseType(args[0], id, pattern, error))
            return Usage(error);
        sources.push_back(id);
    }
    std::size_t pairs = 0;
    for (std::int64_t source : sources) {
        const std::vector<std::int64_t> destinations = ConverterDestinations(source);
        if (destinations.empty() && !args.empty())
            std::printf("%s  %s: no registered conversions\n", HexId(source).c_str(), TypeName(source).c_str());
        for (std::int64_t destination : destinations) {
            const ZoPixelConverter& converter = ZoPixelTypeFactory::GetConverter(source, destination);
            std::printf("%s -> %s  %s -> %s  [%s]\n", HexId(source).c_str(), HexId(destination).c_str(),
                        TypeName(source).c_str(), TypeName(destination).c_str(),
                        DescribeConverter(converter).c_str());
            ++pairs;
        }
    }
    if (args.empty())
        std::printf("%zu conversions from %zu source types\n", pairs, sources.size());
    return 0;
}

bool ParseUnsigned(const std::string& text, std::uint32_t& value)
{
    if (text.empty() || text[0] == '-')
        return false;
    char* rest = nullptr;
    const unsigned long long v = std::strtoull(text.c_str(), &rest, 10);
    if (!rest || *rest || v > 0xFFFFFFFFull)
        return false;
    value = static_cast<std::uint32_t>(v);
    return true;
}

bool ParseGains(const std::string& text, double gains[3])
{
    const char* p = text.c_str();
    for (int i = 0; i < 3; ++i) {
        char* end = nullptr;
        gains[i] = std::strtod(p, &end);
        if (end == p || gains[i] < 0 || !(gains[i] == gains[i]))
            return false;
        p = end;
        if (i < 2) {
            if (*p != ',')
                return false;
            ++p;
        }
    }
    return *p == '\0';
}

std::string Describe(std::int64_t id)
{
    return HexId(id) + (ZoPixelTypeFactory::HasPixelType(id) ? " (" + TypeName(id) + ")" : " (not a registered type)");
}

// OUT for frame `index` of a numbered series: "out.png" -> "out-0003.png".
std::string NumberedName(const std::string& path, std::uint64_t index)
{
    const std::string ext = Extension(path);
    const std::string stem = path.substr(0, path.size() - ext.size() - 1);
    char number[24];
    std::snprintf(number, sizeof number, "-%04llu.", static_cast<unsigned long long>(index));
    return stem + number + path.substr(path.size() - ext.size());
}

// The command line of 'zoimg convert', checked as a whole before anything is read.
struct ConvertRequest {
    std::int64_t source = 0, destination = 0;
    std::uint32_t width = 0, height = 0, flags = 0, frames = 0, threads = 1;
    bool haveGains = false;
    double gains[3] = {1, 1, 1};
    std::string in, out;
};

int ParseConvert(const std::vector<std::string>& args, ConvertRequest& r)
{
    std::string from, to, flagText;
    std::vector<std::string> files, seen;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        const bool option = a.size() > 1 && a[0] == '-';  // "-" alone is standard input or output
        if (!option) {
            files.push_back(a);
            continue;
        }
        static const char* const kOptions[] = {"--from", "--to", "--width", "--height", "--flags",
                                               "--gains", "--frames", "--threads"};
        if (std::find(std::begin(kOptions), std::end(kOptions), a) == std::end(kOptions))
            return Usage("unknown option " + a);
        if (std::find(seen.begin(), seen.end(), a) != seen.end())
            return Usage(a + " is given twice; give it once" + (a == "--flags" ? " with all flags, comma-separated" : ""));
        seen.push_back(a);
        if (i + 1 >= args.size())
            return Usage(a + " needs a value");
        const std::string& v = args[++i];
        std::string error;
        if (a == "--from") {
            from = v;
        } else if (a == "--to") {
            to = v;
        } else if (a == "--width" || a == "--height" || a == "--frames" || a == "--threads") {
            std::uint32_t& target =
                a == "--width" ? r.width : a == "--height" ? r.height : a == "--frames" ? r.frames : r.threads;
            if (!ParseUnsigned(v, target) || target == 0 || (a == "--threads" && target > 256))
                return Usage(a + (a == "--threads" ? " needs a whole number from 1 to 256" : " needs a positive whole number"));
        } else if (a == "--flags") {
            if (!ParseFlags(v, r.flags, error))
                return Usage(error);
            flagText = v;
        } else if (!ParseGains(v, r.gains)) {
            return Usage("--gains needs three non-negative numbers R,G,B");
        } else {
            r.haveGains = true;
        }
    }
    if (from.empty() || to.empty() || r.width == 0 || r.height == 0 || files.size() != 2)
        return Usage("convert needs --from, --to, --width, --height, IN and OUT");
    r.in = files[0];
    r.out = files[1];

    std::uint32_t fromPattern = 0, toPattern = 0;
    std::string error;
    if (!ParseType(from, r.source, fromPattern, error) || !ParseType(to, r.destination, toPattern, error))
        return Usage(error);
    const std::uint32_t flagPattern = r.flags & kPatternFlags;
    if (fromPattern && flagPattern && fromPattern != flagPattern)
        return Usage("--from " + from + " is the " + PatternWords(fromPattern) + " pattern, but --flags " + flagText +
                     " says " + PatternWords(flagPattern));
    r.flags |= fromPattern;

    if (!IsImageFileName(r.out) && !IsRawFileName(r.out))
        return Usage("zoimg cannot write '." + Extension(r.out) + "' files: give OUT the extension .png, .ppm or "
                     ".pgm for an image, or .raw (any name but an image's, or '-') for the converted bytes");
    if (Extension(r.out) == "png" && !HavePng())
        return Usage("this zoimg was built without libpng; write .ppm or .pgm instead");
    return 0;
}

int CommandConvert(const std::vector<std::string>& args)
{
    ConvertRequest r;
    if (const int status = ParseConvert(args, r))
        return status;

    if (!ZoPixelTypeFactory::HasConverter(r.source, r.destination)) {
        if (!IsConverterSource(r.source)) {
            std::string message = Describe(r.source) + " is the source of no conversion";
            const std::vector<std::int64_t> nearest = NearestSources(r.source, 3);
            if (!nearest.empty()) {
                message += "; the nearest IDs that have converters are";
                for (std::size_t i = 0; i < nearest.size(); ++i)
                    message += (i ? ", " : " ") + Describe(nearest[i]);
                message += " ('zoimg converters ID' lists what each converts to)";
            }
            return Fail(message);
        }
        return Fail("no converter from " + Describe(r.source) + " to " + Describe(r.destination) +
                    "; 'zoimg converters " + HexId(r.source) + "' lists the destinations of that source");
    }
    const ZoPixelConverter& converter = ZoPixelTypeFactory::GetConverter(r.source, r.destination);

    // What the flags and gains do for this conversion, said before converting.
    const bool bayer = IsBayerConverter(converter);
    if (bayer && (r.flags & kPatternFlags) == 0) {
        std::string pattern = PatternWords(DefaultPattern(converter));
        for (char& c : pattern)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        std::fprintf(stderr,
                     "zoimg: note: no Bayer pattern given; this conversion reads %s as %s, its default (choose one "
                     "with --flags or a PFNC name such as BayerRG8)\n",
                     HexId(r.source).c_str(), pattern.empty() ? "?" : pattern.substr(6).c_str());
    }
    if (!bayer && (r.flags & (kPatternFlags | ZO_FLAG_BAYER_INTERPOLATE)))
        std::fprintf(stderr, "zoimg: warning: Bayer pattern and interpolate flags do nothing for this conversion\n");
    if (r.haveGains) {
        const ZoComplexConverter* chain = dynamic_cast<const ZoComplexConverter*>(&converter);
        if (!FilterApplies(converter))
            std::fprintf(stderr, "zoimg: warning: --gains do nothing here: %s applies no filter\n",
                         chain && chain->GetFirst()
                             ? ("the gains reach a chain's first stage only, and " + ClassName(*chain->GetFirst()))
                                   .c_str()
                             : ClassName(converter).c_str());
        else if (chain && chain->GetFirst())
            std::fprintf(stderr, "zoimg: note: this conversion is a chain; the gains reach its first stage (%s) only\n",
                         ClassName(*chain->GetFirst()).c_str());
    }

    FrameConverter frames;
    std::string error;
    if (!frames.Prepare(converter, r.width, r.height, r.flags, r.haveGains ? r.gains : nullptr, r.threads, error))
        return Fail(error);
    const bool image = IsImageFileName(r.out);
    const std::uint32_t significant = SignificantBits(r.source, r.destination);
    if (image) {
        Image probe;
        const std::vector<std::uint8_t> zeros(static_cast<std::size_t>(frames.DestinationFrameBytes()), 0);
        if (!FrameToImage(r.destination, zeros, r.width, r.height, significant, probe))
            return Fail(Describe(r.destination) + " cannot be written as an image; give OUT the extension .raw to "
                        "get the converted bytes");
    }

    RawInput input;
    if (!input.Open(r.in, error))
        return Fail(error);
    const std::uint64_t frameBytes = frames.SourceFrameBytes();
    const std::string inName = r.in == "-" ? "standard input" : "'" + r.in + "'";
    auto sizeError = [&](std::uint64_t size, const std::string& what) {
        return Fail(inName + " has " + std::to_string(size) + " bytes, but a " + std::to_string(r.width) + " x " +
                    std::to_string(r.height) + " frame of " + TypeName(r.source) + " takes " +
                    std::to_string(frameBytes) + " (" + std::to_string(frames.SourceLineBytes()) + " a line)" + what);
    };
    std::uint64_t total = r.frames;  // 0: not known before the end of a pipe
    if (input.Size() >= 0) {
        const std::uint64_t size = static_cast<std::uint64_t>(input.Size());
        if (r.frames && size != frameBytes * r.frames)
            return sizeError(size, ", so " + std::to_string(r.frames) + " frames take " +
                                       std::to_string(frameBytes * r.frames));
        if (size == 0 || size % frameBytes != 0)
            return sizeError(size, size > frameBytes ? ", and that is no whole number of frames" : "");
        total = size / frameBytes;
    }

    // Frames are read one ahead, so that a single frame from a pipe is named
    // like a single frame from a file.
    std::vector<std::uint8_t> current(static_cast<std::size_t>(frameBytes)), next(current.size()), output;
    std::size_t got = 0;
    if (!input.Read(current.data(), current.size(), got, error))
        return Fail(error);
    if (got != current.size())
        return sizeError(got, "");
    RawOutput raw;
    bool rawOpen = false;
    const bool progress = ZOIMG_ISATTY(2) != 0;
    std::string firstName, lastName;
    double seconds = 0;
    auto lastReport = std::chrono::steady_clock::now();
    std::uint64_t index = 0;
    for (bool more = true; more; ++index) {
        if (!input.Read(next.data(), next.size(), got, error))
            return Fail(error);
        more = got == next.size() && (total == 0 || index + 1 < total);
        if (got != 0 && got != next.size())
            return sizeError(frameBytes * (index + 1) + got, ", and that is no whole number of frames");
        if (got != 0 && r.frames && index + 1 >= r.frames)
            return Fail(inName + " holds more than the " + std::to_string(r.frames) + " frames of --frames");

        const auto start = std::chrono::steady_clock::now();
        const std::uint32_t result = frames.Convert(current.data(), output);
        seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        if (result != ZO_OK)
            return Fail("the conversion failed with result code " + std::to_string(result));

        const bool series = index > 0 || more;
        const std::string name = image && series ? NumberedName(r.out, index) : r.out;
        if (image) {
            Image picture;
            FrameToImage(r.destination, output, r.width, r.height, significant, picture);
            if (!WriteImage(name, picture, error))
                return Fail(error);
        } else {
            if (!rawOpen && !raw.Open(r.out, error))
                return Fail(error);
            rawOpen = true;
            if (!raw.Write(output.data(), output.size(), error))
                return Fail(error);
        }
        if (index == 0)
            firstName = name;
        lastName = name;
        std::swap(current, next);
        if (progress && series && std::chrono::steady_clock::now() - lastReport > std::chrono::milliseconds(200)) {
            lastReport = std::chrono::steady_clock::now();
            std::fprintf(stderr, "\rzoimg: frame %llu", static_cast<unsigned long long>(index + 1));
            if (total)
                std::fprintf(stderr, " of %llu", static_cast<unsigned long long>(total));
            std::fflush(stderr);
        }
    }
    if (r.frames && index != r.frames)
        return Fail(inName + " held " + std::to_string(index) + " frames, not the " + std::to_string(r.frames) +
                    " of --frames");
    if (rawOpen && !raw.Close(error))
        return Fail(error);
    if (progress && index > 1)
        std::fputs("\r\033[K", stderr);

    const std::string outName = r.out == "-" ? "standard output" : firstName;
    std::string what = std::to_string(r.width) + " x " + std::to_string(r.height) + " " + TypeName(r.destination);
    if (index > 1)
        what = std::to_string(index) + " frames of " + what;
    char time[32];
    std::snprintf(time, sizeof time, "%.1f ms", seconds * 1000);
    std::fprintf(stderr, "wrote %s%s: %s in %s\n", outName.c_str(),
                 firstName != lastName ? (" ... " + lastName).c_str() : "", what.c_str(), time);
    return 0;
}

std::string Cell(const std::vector<std::string>& notes)
{
    std::string text;
    for (const std::string& n : notes)
        text += (text.empty() ? "" : "; ") + n;
    return text.empty() ? "-" : text;
}

// The converter reference: for every source, its destinations, the
// converter behind each, the bytes a pixel on both sides and its quirks.
std::string ConverterDocument()
{
    std::string doc;
    const std::vector<std::int64_t> sources = ConverterSources();
    std::size_t pairs = 0, chains = 0;
    std::string body;
    for (std::int64_t source : sources) {
        body += "\n## " + HexId(source) + " " + TypeName(source) + "\n\n";
        if (!ZoPixelTypeFactory::HasPixelType(source))
            body += "Not a catalogue type: the catalogue lists these bytes as " + HexId(source | ZO_PIXEL_PACKED) +
                    " " + TypeName(source | ZO_PIXEL_PACKED) + ", from which no converter is registered.\n\n";
        body += "| Destination | Name | Converter | Bytes/px in | Bytes/px out | Caveats |\n|---|---|---|---|---|---|\n";
        for (std::int64_t destination : ConverterDestinations(source)) {
            const ZoPixelConverter& converter = ZoPixelTypeFactory::GetConverter(source, destination);
            std::string what;
            if (const ZoComplexConverter* chain = dynamic_cast<const ZoComplexConverter*>(&converter)) {
                auto stage = [](const ZoPixelConverter* c) {
                    return c ? "`" + ClassName(*c) + "` (" + HexId(c->GetSourceType()) + " -> " +
                                   HexId(c->GetDestinationType()) + ")"
                             : std::string("?");
                };
                what = "chain: " + stage(chain->GetFirst()) + " + " + stage(chain->GetSecond());
                ++chains;
            } else {
                what = "`" + ClassName(converter) + "`";
            }
            body += "| " + HexId(destination) + " | " + TypeName(destination) + " | " + what + " | " +
                    SourceBytesPerPixel(converter) + " | " + DestinationBytesPerPixel(converter) + " | " +
                    Cell(Caveats(source, destination, converter)) + " |\n";
            ++pairs;
        }
    }
    doc += "# Converters\n\n";
    doc += "Every conversion registered in ZoImgLib when it is loaded: for each source pixel type, the\n"
           "destinations it converts to, the converter class behind each pair (a chain names its two\n"
           "stages), the bytes a pixel the conversion reads and writes (1.5: three bytes per two pixels),\n"
           "and its caveats: each deliberate quirk of that converter in one phrase. Generated by\n"
           "`zoimg docs`; do not edit by hand.\n\n"
           "Caveats name what the output holds, found by converting probe frames where it is a matter of\n"
           "bytes (the pattern used without a pattern flag, packed depth changes). \"A\" and \"B\" are the\n"
           "first and second sample of a packed three-byte group. Buffer over-reads and over-writes are\n"
           "those of one area conversion; `ZoPixelConverter_GetAreaBufferSizes` gives the exact sizes.\n"
           "Interlaced sources are converted field by field: the first half of the buffer fills the even\n"
           "lines (the flag `invert-deinterlacer` swaps the halves). `zoimg convert` fills the line a\n"
           "replicating Bayer conversion reads past an odd-height frame with a copy of line height - 2, so\n"
           "that the last row gets the colours of the row above.\n\n";
    doc += std::to_string(pairs) + " registered pairs (" + std::to_string(chains) + " served by chains) from " +
           std::to_string(sources.size()) + " source IDs.\n";
    return doc + body;
}

int CommandDocs(const std::vector<std::string>& args)
{
    if (args.size() > 1)
        return Usage("docs takes at most one FILE");
    const std::string doc = ConverterDocument();
    if (args.empty()) {
        std::fputs(doc.c_str(), stdout);
        return 0;
    }
    std::string error;
    if (!WriteFile(args[0], reinterpret_cast<const std::uint8_t*>(doc.data()), doc.size(), error))
        return Fail(error);
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc < 2)
        return Usage();
    const std::string command = argv[1];
    const std::vector<std::string> args(argv + 2, argv + argc);
    if (command == "types")
        return CommandTypes(args);
    if (command == "converters")
        return CommandConverters(args);
    if (command == "convert")
        return CommandConvert(args);
    if (command == "demo") {
        if (args.size() > 1)
            return Usage("demo takes at most one OUTDIR");
        return RunDemo(args.empty() ? "zoimg-demo" : args[0]);
    }
    if (command == "docs")
        return CommandDocs(args);
    if (command == "--version" || command == "version") {
        std::printf("zoimg %s\n", ZoImgLib_GetVersion());
        return 0;
    }
    if (command == "help" || command == "--help" || command == "-h") {
        std::fputs(kUsageText, stdout);
        return 0;
    }
    return Usage("unknown command '" + command + "'");
}
