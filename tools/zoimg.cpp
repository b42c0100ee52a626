// zoimg: the ZoImgLib command-line tool.
//
//   zoimg types                      the pixel type catalogue
//   zoimg converters [SOURCE]        registered conversions
//   zoimg convert --from T --to T --width W --height H [--flags F] [--gains R,G,B] IN OUT
//   zoimg demo [OUTDIR]              test chart through Bayer, packed Bayer and YUV
//   zoimg docs [FILE]                the converter reference in Markdown
//
// It uses the library through its public headers only.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "Demo.h"
#include "FrameConvert.h"
#include "ImageFile.h"
#include "LibraryInfo.h"
#include "ZoImgLib.h"

using namespace zoimg;

namespace {

// Exit statuses: 1 for a failed operation, 2 for a command line that cannot
// be carried out as given.
constexpr int kFailed = 1;
constexpr int kUsage = 2;

const char kUsageText[] =
    "usage: zoimg COMMAND [ARGS]\n"
    "\n"
    "  types                       list the registered pixel types\n"
    "  converters [SOURCE]         list the registered conversions (from SOURCE only)\n"
    "  convert --from TYPE --to TYPE --width W --height H\n"
    "          [--flags F[,F...]] [--gains R,G,B] IN OUT\n"
    "                              convert the raw frame IN; OUT is an image (.png, .ppm,\n"
    "                              .pgm) for RGB and gray destinations, else raw bytes\n"
    "  demo [OUTDIR]               convert a synthetic chart through the Bayer, packed\n"
    "                              Bayer and YUV converters (default OUTDIR: zoimg-demo)\n"
    "  docs [FILE]                 write the converter reference (Markdown)\n"
    "\n"
    "TYPE: a hex ID (0x20010), a name from 'zoimg types' (quoted) or a class name\n"
    "(BayerRGB8, RGB24, BGR32, Gray8, YUV8 ...).\n"
    "Flags: bayer-grbg, bayer-gbrg, bayer-rggb, bayer-bggr, interpolate,\n"
    "invert-deinterlacer, or a number.\n";

int Usage(const char* message = nullptr)
{
    if (message)
        std::fprintf(stderr, "zoimg: %s\n\n", message);
    std::fputs(kUsageText, stderr);
    return kUsage;
}

int Fail(const std::string& message)
{
    std::fprintf(stderr, "zoimg: %s\n", message.c_str());
    return kFailed;
}

int CommandTypes()
{
    const std::vector<std::int64_t> ids = RegisteredTypes();
    std::size_t nameWidth = 4;
    for (std::int64_t id : ids)
        nameWidth = std::max(nameWidth, std::strlen(ZoPixelTypeFactory::GetPixelTypeName(id)));
    std::printf("%-10s  %-*s  %4s  %5s  %-5s  %s\n", "ID", static_cast<int>(nameWidth), "Name", "Bits", "Bytes",
                "Bayer", "Flags");
    for (std::int64_t id : ids) {
        const ZoPixelType& type = ZoPixelTypeFactory::GetPixelType(id);
        std::printf("%-10s  %-*s  %4u  %5u  %-5s  %s\n", HexId(id).c_str(), static_cast<int>(nameWidth),
                    ZoPixelTypeFactory::GetPixelTypeName(id), static_cast<unsigned>(type.GetPixelBitSize()),
                    static_cast<unsigned>(type.GetPixelByteSize()), type.IsBayerPattern() ? "yes" : "no",
                    FlagWords(id).c_str());
    }
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
        std::string error;
        if (!ParseType(args[0], id, error))
            return Usage(error.c_str());
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

int CommandConvert(const std::vector<std::string>& args)
{
    std::string from, to, flagText;
    std::uint32_t width = 0, height = 0, flags = 0;
    double gains[3];
    bool haveGains = false, haveWidth = false, haveHeight = false;
    std::vector<std::string> files;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        auto value = [&](std::string& out) {
            if (i + 1 >= args.size())
                return false;
            out = args[++i];
            return true;
        };
        std::string v;
        if (a == "--from") {
            if (!value(from))
                return Usage("--from needs a TYPE");
        } else if (a == "--to") {
            if (!value(to))
                return Usage("--to needs a TYPE");
        } else if (a == "--width" || a == "--height") {
            std::uint32_t& target = a == "--width" ? width : height;
            if (!value(v) || !ParseUnsigned(v, target) || target == 0)
                return Usage((a + " needs a positive whole number").c_str());
            (a == "--width" ? haveWidth : haveHeight) = true;
        } else if (a == "--flags") {
            std::string error;
            if (!value(flagText) || !ParseFlags(flagText, flags, error))
                return Usage(error.empty() ? "--flags needs a value" : error.c_str());
        } else if (a == "--gains") {
            if (!value(v) || !ParseGains(v, gains))
                return Usage("--gains needs three non-negative numbers R,G,B");
            haveGains = true;
        } else if (a.size() > 1 && a[0] == '-') {
            return Usage(("unknown option " + a).c_str());
        } else {
            files.push_back(a);
        }
    }
    if (from.empty() || to.empty() || !haveWidth || !haveHeight || files.size() != 2)
        return Usage("convert needs --from, --to, --width, --height, IN and OUT");

    std::int64_t source, destination;
    std::string error;
    if (!ParseType(from, source, error) || !ParseType(to, destination, error))
        return Usage(error.c_str());
    if (!ZoPixelTypeFactory::HasConverter(source, destination))
        return Fail("no converter from " + HexId(source) + " (" + TypeName(source) + ") to " + HexId(destination) +
                    " (" + TypeName(destination) + "); 'zoimg converters " + HexId(source) +
                    "' lists the destinations of that source");
    const ZoPixelConverter& converter = ZoPixelTypeFactory::GetConverter(source, destination);

    const std::uint64_t expected = SourceFrameBytes(converter, width, height);
    if (expected == 0 || DestinationFrameBytes(converter, width, height) == 0)
        return Fail("a " + std::to_string(width) + " x " + std::to_string(height) + " frame is too large");
    std::vector<std::uint8_t> input;
    if (!ReadFile(files[0], input, error))
        return Fail(error);
    if (input.size() != expected)
        return Fail("'" + files[0] + "' has " + std::to_string(input.size()) + " bytes, but a " +
                    std::to_string(width) + " x " + std::to_string(height) + " frame of " + TypeName(source) +
                    " takes " + std::to_string(expected) + " (" + std::to_string(converter.GetSourceByteSize(width)) +
                    " a line)");

    if (haveGains) {
        // The library hands a caller's filter to a chain's first stage only.
        if (const ZoComplexConverter* chain = dynamic_cast<const ZoComplexConverter*>(&converter))
            if (chain->GetFirst())
                std::fprintf(stderr,
                             "zoimg: note: this conversion is a chain; the gains reach its first stage (%s) only\n",
                             ClassName(*chain->GetFirst()).c_str());
    }
    std::vector<std::uint8_t> output;
    const std::uint32_t result =
        ConvertFrame(converter, input.data(), width, height, flags, haveGains ? gains : nullptr, output);
    if (result != ZO_OK)
        return Fail("the conversion failed with result code " + std::to_string(result));

    const std::string& out = files[1];
    if (IsImageFileName(out)) {
        Image image;
        if (!FrameToImage(destination, output, width, height, image))
            return Fail(HexId(destination) + " (" + TypeName(destination) +
                        ") cannot be written as an image; give OUT another extension to get raw bytes");
        if (!WriteImage(out, image, error))
            return Fail(error);
    } else if (!WriteFile(out, output.data(), output.size(), error)) {
        return Fail(error);
    }
    return 0;
}

// The converter reference: for every source, its destinations and the
// converter behind each.
std::string ConverterDocument()
{
    std::string doc;
    const std::vector<std::int64_t> sources = ConverterSources();
    std::size_t pairs = 0, chains = 0;
    std::string body;
    for (std::int64_t source : sources) {
        body += "\n## " + HexId(source) + " " + TypeName(source) + "\n\n";
        body += "| Destination | Name | Converter |\n|---|---|---|\n";
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
            body += "| " + HexId(destination) + " | " + TypeName(destination) + " | " + what + " |\n";
            ++pairs;
        }
    }
    doc += "# Converters\n\n";
    doc += "Every conversion registered in ZoImgLib when it is loaded: for each source pixel type, the\n"
           "destinations it converts to and the converter class behind each pair (a chain names its two\n"
           "stages). Generated by `zoimg docs`; do not edit by hand.\n\n";
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
        return args.empty() ? CommandTypes() : Usage("types takes no arguments");
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
    if (command == "help" || command == "--help" || command == "-h") {
        std::fputs(kUsageText, stdout);
        return 0;
    }
    return Usage(("unknown command '" + command + "'").c_str());
}
