// Connectivity files: any text gives a document or an error that names the file.

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "HEXError.h"
#include "HPAParamMgr.h"
#include "handoff/HBSGenerateService.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string input =
        std::filesystem::temp_directory_path() / ("handoff_fuzzer." + std::to_string(getpid()));
    std::ofstream(input, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    HPAParamMgr::getParamMgr()->setValue("project.allowPSSubCoreSplit", "true");
    std::map<std::string, std::string> design{{"A", "{B 1  C}"}, {"A_B_FREQMHZ", "4e9"}};
    for (const char* core : {"core", "tovak"}) {
        std::map<std::string, std::string> system{
            {"ps_core_name", core}, {"device", "qmzt4401"}, {"cell_name", "x_a"}};
        try {
            HBSGenerateService::generateHWH(design, system, input, input + ".hwh");
        } catch (const HEXError&) { // the one way to fail
        }
    }
    std::filesystem::remove(input);
    std::filesystem::remove(input + ".hwh");
    return 0;
}
