// The addressing of any block: its report, its map and the picture of that. Nothing is run.

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "addressing/HBSAddressing.h"
#include "base/RapidJson.h"
#include "blockmodel/HABM.h"
#include "blockmodel/HABMBmj.h"
#include "fuzz/Expect.h"
#include "workbench/addressing/AddressMap.h"
#include "workbench/addressing/AddressMapPicture.h"
#include "workbench/addressing/AddressMapTables.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        std::string text(data, data + size);
        const auto block = habm::bmj::fromText(text);
        rapidjson::Document document;
        HBSAddressing::generateSurfaceLevelAddressing(*block, document);
        const tq::AddressMap map(*block, *block);
        std::ostringstream tables;
        tq::printAddressMap(tables, map);
        fuzz::expectXml(tq::drawAddressMap(map, block->getModuleName()));
    } catch (const habm::bmj::Fault&) { // no block
    }
    return 0;
}
