// Test support: the golden tables of tests/data (the catalogue of pixel
// types, the registered converters with their constructor parameters) read
// as rows of fields. Lines starting with '#' are comments; the last field
// takes the rest of the line, commas included.
#ifndef ZO_TEST_FAMILY_TABLES_H
#define ZO_TEST_FAMILY_TABLES_H

#include <cstdint>
#include <string>
#include <vector>

#include "support/ConvertSupport.h"

namespace zotest {

using TableRow = std::vector<std::string>;

// The rows of tests/data/<name>, `fields` fields each (none: the file is missing).
inline std::vector<TableRow> ReadTable(const std::string& name, std::size_t fields)
{
    const std::string path = __FILE__;
    return CsvRows((path.substr(0, path.find_last_of("/\\") + 1) + "../data/" + name).c_str(), fields);
}

inline std::int64_t Number(const std::string& field) { return std::stoll(field, nullptr, 0); }

// One registered converter (tests/data/registry.csv): its pair, class, pixel
// sizes and constructor parameters ("name=value" separated by spaces).
struct RegistryRow {
    std::int64_t source, destination;
    std::string className;
    std::uint32_t sourceBytes, destinationBytes;
    std::string parameters;

    bool Is(const char* classPrefix) const { return className.rfind(classPrefix, 0) == 0; }

    // The parameter's value (`fallback` if the row has none); Bayer patterns
    // by name, as their flags.
    std::int64_t Param(const std::string& name, std::int64_t fallback = 0) const
    {
        const std::size_t at = (" " + parameters).find(" " + name + "=");
        if (at == std::string::npos)
            return fallback;
        const std::string value = parameters.substr(at + name.size() + 1, parameters.find(' ', at) - at - name.size() - 1);
        const char* patterns[] = {"GRBG", "GBRG", "RGGB", "BGGR"};
        for (int i = 0; i < 4; ++i)
            if (value == patterns[i])
                return 0x10 << i;
        return Number(value);
    }
};

// Every registered pair between built-in types, in the registry's enumeration order.
inline const std::vector<RegistryRow>& RegistryTable()
{
    static const std::vector<RegistryRow> rows = [] {
        std::vector<RegistryRow> v;
        for (const TableRow& r : ReadTable("registry.csv", 6))
            v.push_back({Number(r[0]), Number(r[1]), r[2], std::uint32_t(Number(r[3])), std::uint32_t(Number(r[4])),
                         r.size() > 5 ? r[5] : ""});
        return v;
    }();
    return rows;
}

}  // namespace zotest

#endif
