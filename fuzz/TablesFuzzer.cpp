// Hard block tables: any text, as each of the eight tables, makes a block that hangs together.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "ComMsgMgr.h"
#include "HUTFile.h"
#include "addressing/HBSAddrParseUtil.h"
#include "blockmodel/HABM.h"
#include "fuzz/MemoryFile.h"
#include "support/temp_dir.h"

namespace {

/// A folder whose tables all lead to one file in memory.
class TablesFolder {
public:
    TablesFolder() {
        ComMsgMgr::setSink([](const ComMsg&) {});
        const auto data = m_folder.path() / "hb/data";
        std::filesystem::create_directories(data);
        for (const char* table : {"addrblocks", "registers", "addrsegments", "ports", "interfaces",
                                  "parameters", "instances", "connections"})
            std::filesystem::create_symlink(m_file.path(), data / (table + std::string(".txt")));
    }
    [[nodiscard]] std::string path() const { return m_folder.path().string(); }
    [[nodiscard]] const fuzz::MemoryFile& file() const { return m_file; }

private:
    support::TempDir m_folder;
    fuzz::MemoryFile m_file;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TablesFolder folder;
    folder.file().fill(data, size);
    std::vector<HBSTableReport> report;
    tq::DiagnosticList findings;
    const auto block = HBSAddrParseUtil::buildHardblockDefinition(HUTFile(folder.path()), "hb",
                                                                  false, findings.sink(), &report);
    for (const HBSTableReport& table : report)
        if (table.used > table.rows)
            std::abort();
    if (block == nullptr || !HABMBlockCheck::run(*block).faults.empty())
        std::abort();
    return 0;
}
