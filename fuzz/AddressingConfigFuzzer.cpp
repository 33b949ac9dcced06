// Configs of hbs addressing: read against a small subsystem, made into an instance, reported and
// drawn. The expressions are fixed: they are code, which may call any command.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "ComMsgMgr.h"
#include "addressing/HBSAddressing.h"
#include "base/RapidJson.h"
#include "blockmodel/HABM.h"
#include "fuzz/Expect.h"
#include "workbench/addressing/AddressMap.h"
#include "workbench/addressing/AddressMapPicture.h"
#include "workbench/addressing/AddressingConfig.h"

namespace {

std::unique_ptr<HABMBlock> makeSubsystem() {
    auto top = HABMBlock::createTopBlock("soc");
    top->setModuleVlnv("v:l:soc:1");
    for (const char* name : {"u0", "u1"}) {
        HABMBlock& unit = *top->createSubBlock(name, "u", false);
        unit.setModuleVlnv("v:l:u:1");
        unit.setEnablement("register_value(R) != 2");
        HABMAddrBlock& regs = *unit.createMemoryMap("m")->createAddrBlock("b");
        regs.setAperture({HABMAddrValue("0x1000"), HABMAddrValue("64K")});
        HABMRegister& reg = *regs.createRegister("R");
        reg.setValue(HABMAddrValue("0x1"));
        reg.setWidth(32);
        unit.setParameter("P", "1", false);
        HABMAddrSpace& space = *unit.createAddrSpace("s");
        space.setRange(HABMAddrValue("4G"));
        space.createAddrSegment("g")->setAperture({HABMAddrValue("0x0"), HABMAddrValue("2G")});
        HABMInterface& port = *unit.createInterface("S", false);
        port.setMemoryMapRef("m");
        port.setEnablement("$::" + std::string(name) + "::R < 9");
        const std::string outside = std::string("S_") + name;
        top->createInterface(outside, false);
        HABMInterfaceConnection& connection = *top->createInterfaceConnection("", false);
        connection.setSourcePath(outside);
        connection.setTargetPath(std::string(name) + "/S");
    }
    return top;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    static const auto definition = makeSubsystem();
    ComMsgMgr::setSink([](const ComMsg&) {});
    tq::DiagnosticList findings;
    try {
        const auto config = tq::AddressingConfig::read(tq::JsonFile::parse("config", text),
                                                       *definition, findings.sink());
        const auto instance = HBSAddressing::createSubsystemInstance(*definition, config.block());
        config.addAssignsTo(*instance);
        if (!HABMBlockCheck::run(*instance).faults.empty())
            std::abort();
        rapidjson::Document document;
        HBSAddressing::generateSurfaceLevelAddressing(*instance, document);
        fuzz::expectXml(tq::drawAddressMap(tq::AddressMap(*definition, *instance), text));
    } catch (const tq::InputError&) {
        // The complaint is the answer.
    }
    return 0;
}
