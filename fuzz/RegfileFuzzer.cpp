// Register description files, plain and protected: any bytes give a table, a refusal or one of the
// two failures of a spirit:dim.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <vector>

#include "fuzz/MemoryFile.h"
#include "regfile/HBSRegFileParser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile file;
    std::cerr.setstate(std::ios::badbit); // the complaints would drown the fuzzer's own words
    file.fill(data, size);
    try {
        std::vector<hbs::HBSRegFileStop> stops;
        std::size_t findings = 0;
        const auto map = hbs::HBSRegFileParser::parseFile(
            file.path(), stops, [&](const tq::Diagnostic&) { ++findings; });
        const bool isReported = map == nullptr ? findings != 0 : findings == stops.size();
        if (!isReported)
            std::abort();
        for (const auto& stop : stops)
            if (stop.line == 0 || stop.column == 0)
                std::abort();
    } catch (const std::logic_error&) { // invalid_argument or out_of_range
    }
    return 0;
}
