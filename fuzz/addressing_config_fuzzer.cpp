// Configs of hbs addressing, read against a small subsystem and applied to it.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "host/AddressMap.h"
#include "host/AddressMapPicture.h"
#include "host/AddressingConfig.h"

namespace {

std::unique_ptr<HABMBlock> makeSubsystem() {
    auto top = HABMBlock::createTopBlock("soc");
    HABMBlock& uart = *top->createSubBlock("u0", "u", false);
    uart.createMemoryMap("m")->createAddrBlock("b")->createRegister("R");
    uart.createAddrSpace("s")->createAddrSegment("g");
    return top;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto subsystem = makeSubsystem();
    try {
        const auto config =
            host::AddressingConfig::read(host::JsonFile::parse("config", text), *subsystem);
        config.addAssignsTo(*subsystem);
        const host::AddressMap map = host::surveyAddressing(*subsystem, *subsystem);
        (void)host::drawAddressMap(map, text);
    } catch (const host::BadInput&) {
        // The complaint is the answer.
    }
    return 0;
}
