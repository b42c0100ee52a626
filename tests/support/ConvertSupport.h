// Test converters shared by the conversion framework tests.
//
// Every test converter registers itself when it is the first for its pair,
// and the registry never forgets a pair. So test converters use IDs of their
// own (format numbers from 0xE000 up, handed out once per process) that no
// built-in converter or registry-wide test ever looks at.
#ifndef ZO_TESTS_CONVERT_TEST_SUPPORT_H
#define ZO_TESTS_CONVERT_TEST_SUPPORT_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "ZoGenericConverters.h"
#include "ZoPixelConverter.h"
#include "ZoPixelTypeIDs.h"
#include "ZoRGBFilter.h"

namespace zotest {

constexpr std::uint32_t kTestFormatBase = 0xE000;

// A fresh ID in the test range with the given attribute bits.
inline std::int64_t FreshTestId(std::uint32_t bits = 0)
{
    static std::atomic<std::uint32_t> next{kTestFormatBase};
    return static_cast<std::int64_t>(ZO_PIXEL_COLORSPACE_RGB | bits | next++);
}

inline bool IsTestId(std::int64_t id)
{
    return (static_cast<std::uint32_t>(id) & ZO_PIXEL_FORMAT_MASK) >= kTestFormatBase;
}

// What the thread's context record held at one moment (a copy of it).
using ContextSnapshot = ZoPixelConverterContext;

// One call of a line form: where it read and wrote (byte offsets from the
// buffers the test gave), the count, and the context as the line saw it.
struct LineCall {
    std::ptrdiff_t source, destination;
    std::uint32_t count;
    ContextSnapshot context;
    const ZoRGBFilter* active;  // the filter a line converter would apply
};

// Records its line calls and writes nothing. Not for concurrent use.
class RecordingConverter : public ZoPixelConverter {
public:
    RecordingConverter(std::int64_t source, std::int64_t destination, std::uint32_t sourceSize,
                       std::uint32_t destinationSize, std::uint32_t linesPerConvert = 1,
                       std::uint32_t pipelining = 1)
        : ZoPixelConverter(source, destination, sourceSize, destinationSize, pipelining, linesPerConvert)
    {
    }

    using ZoPixelConverter::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override
    {
        ContextHold hold(*this);
        const ZoPixelConverterContext& c = hold.Context();
        calls.push_back({source - sourceBase, destination - destinationBase, count, c, &ActiveFilter(c)});
        return lineResult;
    }

    // The context a line converter of this object would see right now.
    ContextSnapshot Probe() const
    {
        ContextHold hold(*this);
        return hold.Context();
    }
    using ZoPixelConverter::GetLinesPerConvert;
    using ZoPixelConverter::GetPipeliningSize;

    const unsigned char* sourceBase = nullptr;
    const unsigned char* destinationBase = nullptr;
    std::uint32_t lineResult = ZO_OK;
    mutable std::vector<LineCall> calls;
};

// A one-byte-to-N-byte converter that applies the filter in force and the
// current line, so that a test can see which filter acted where:
//   out[k] = red8[in] ^ (k * 0x3B) ^ (line * salt)   for k < N.
// The single-pixel form gives the line form's result for line 0.
class FilterStage : public ZoPixelConverter {
public:
    FilterStage(std::int64_t source, std::int64_t destination, std::uint32_t destinationSize,
                std::uint32_t salt = 0)
        : ZoPixelConverter(source, destination, 1, destinationSize, 1, 1), mSalt(salt)
    {
    }

    using ZoPixelConverter::Convert;
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination,
                          std::uint32_t count) const override
    {
        ContextHold hold(*this);
        const ZoPixelConverterContext& c = hold.Context();
        const std::uint8_t* red = ActiveFilter(c).RedTable8();
        const std::uint32_t line = c.currentLine;
        Apply(red, line, mSalt, GetDestinationByteSize(), source, destination, count);
        lineCalls.fetch_add(1, std::memory_order_relaxed);
        return ZO_OK;
    }
    std::uint32_t Convert(const unsigned char* source, unsigned char* destination) const override
    {
        Apply(DefaultFilter(1).RedTable8(), 0, mSalt, GetDestinationByteSize(), source, destination, 1);
        return ZO_OK;
    }

    static void Apply(const std::uint8_t* red, std::uint32_t line, std::uint32_t salt, std::uint32_t size,
                      const unsigned char* source, unsigned char* destination, std::uint32_t count)
    {
        for (std::uint32_t i = 0; i < count; ++i)
            for (std::uint32_t k = 0; k < size; ++k)
                destination[i * size + k] =
                    static_cast<unsigned char>(red[source[i]] ^ (k * 0x3B) ^ (line * salt));
    }

    mutable std::atomic<std::uint32_t> lineCalls{0};

private:
    std::uint32_t mSalt;
};

// Runs body(t) on `threads` threads at once, `rounds` times each; body
// returns true on a mismatch. Gives the mismatch count of every thread.
template <class Body>
std::vector<int> CountThreadMismatches(int threads, int rounds, Body body)
{
    std::vector<int> mismatches(threads, 0);
    std::vector<std::thread> pool;
    for (int t = 0; t < threads; ++t)
        pool.emplace_back([&, t] {
            for (int round = 0; round < rounds; ++round)
                mismatches[t] += body(t) ? 1 : 0;
        });
    for (auto& th : pool)
        th.join();
    return mismatches;
}

// The rows of a data file, `fields` fields each: lines that are empty or
// start with '#' are skipped, the last field takes the rest of the line
// (commas included). No rows when the file is missing.
inline std::vector<std::vector<std::string>> CsvRows(const char* path, std::size_t fields)
{
    std::vector<std::vector<std::string>> rows;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.empty() || line[0] == '#')
            continue;
        std::vector<std::string> row;
        std::size_t start = 0;
        for (std::size_t comma; row.size() + 1 < fields && (comma = line.find(',', start)) != std::string::npos;
             start = comma + 1)
            row.push_back(line.substr(start, comma - start));
        row.push_back(line.substr(start));
        rows.push_back(row);
    }
    return rows;
}

}  // namespace zotest

#endif
