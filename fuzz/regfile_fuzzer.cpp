// Register description files, plain and protected: any bytes give a table, a refusal or one of the
// two failures of a spirit:dim.

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include "regfile/HBSRegFileParser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path =
        std::filesystem::temp_directory_path() / ("regfile_fuzzer_" + std::to_string(getpid()));
    std::cerr.setstate(std::ios::badbit); // the complaints would drown the fuzzer's own words
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    try {
        (void)hbs::HBSRegFileParser::parseFile(path);
    } catch (const std::logic_error&) { // invalid_argument or out_of_range
    }
    std::filesystem::remove(path);
    return 0;
}
