// Hard block metadata: any bytes are read, and every port map that comes of them answers.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "ComMsgMgr.h"
#include "hardblock/MetadataReader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ComMsgMgr::setSink([](const ComMsg&) {});
    std::istringstream stream(std::string(reinterpret_cast<const char*>(data), size));
    hardblock::HardBlocks hardBlocks;
    hardblock::parseMetadataStream(stream, hardBlocks, "f", [](const tq::Diagnostic& finding) {
        if (finding.place.line == 0 && finding.id != "unreadable-file")
            std::abort();
    });
    for (const auto& block : hardBlocks)
        for (auto it = block->getInterfaceStartIterator(); it != block->getInterfaceEndIterator();
             ++it) {
            hardblock::Interface& interface = *it->second;
            for (auto map = interface.getPortMapStartIterator();
                 map != interface.getPortMapEndIterator(); ++map)
                for (const auto& raw : map->second->getMappedRawPorts())
                    (void)interface.getPortMapByName(raw.second);
        }
    return 0;
}
