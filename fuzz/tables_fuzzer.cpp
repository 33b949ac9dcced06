// Hard block tables: any text, as each of the eight tables, makes a block that hangs together.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

#include "ComMsgMgr.h"
#include "HUTFile.h"
#include "addressing/HBSAddrParseUtil.h"
#include "blockmodel/HABM.h"

namespace {

/// The folder of one process, which the next run fills anew.
const std::filesystem::path& folder() {
    static const std::filesystem::path path = [] {
        ComMsgMgr::setSink([](const ComMsg&) {});
        auto made = std::filesystem::temp_directory_path() /
                    ("tq_tables_fuzzer_" + std::to_string(::getpid()));
        std::filesystem::create_directories(made / "hb/data");
        std::atexit([] { std::filesystem::remove_all(folder()); });
        return made;
    }();
    return path;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    for (const char* table : {"addrblocks", "registers", "addrsegments", "ports", "interfaces",
                              "parameters", "instances", "connections"})
        std::ofstream(folder() / "hb/data" / (table + std::string(".txt"))) << text;
    const auto block =
        HBSAddrParseUtil::buildHardblockDefinition(HUTFile(folder().string()), "hb", false);
    if (block == nullptr || !HABMBlockCheck::run(*block).faults.empty())
        std::abort();
    return 0;
}
