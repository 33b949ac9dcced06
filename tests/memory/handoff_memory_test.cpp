// Handoff documents while memory runs out.

#include <gtest/gtest.h>

#include <map>
#include <stdexcept>

#include "HEXError.h"
#include "HPAParamMgr.h"
#include "handoff/HBSGenerateService.h"
#include "memory/trial.h"
#include "support/support.h"

namespace {

using Texts = std::map<std::string, std::string>;

constexpr const char* kConnectivity = R"({"metadata": {
    "slaves": [{"uart0": {"SDKNAME": "uart0", "MODTYPE": "a_module_type_of_a_longer_name",
        "BASE_ADDR": "0xFF000000", "HIGH_ADDR": "0xFF00FFFF", "IP_TYPE": "PERIPHERAL",
        "PARAMETERS": {"C_FREQ": "PS_CLK_FREQMHZ", "C_MODE": "PS_ETH_MODE"},
        "PORTS": [{"NAME": "axi", "DIR": "I", "SIG_IS": "CLK", "IRQID": "3",
            "CONNECTIONS": [{"INSTANCE": "cpu0", "PORT": "axi"}]}]}}],
    "masters": [{"cpu0": {"SDKNAME": "cpu0", "MODTYPE": "cpu", "excluded_slaves": ["none"],
        "EXCLUDED_INTERFACES": [{"S_AXI": {"EN_PARAM": "PS_ETH_ENABLE", "APERTURE": ["0x0"]}}],
        "PORTS": [{"NAME": "axi", "DIR": "O", "SIG_IS": "", "IRQID": "",
            "CONNECTIONS": [{"INSTANCE": "uart0", "PORT": "axi"}]}]}}],
    "external_addressing": [{"gp0": {"ENPARAM": "PS_GP0", "VLNV": "a:b:c:1.0", "MODE": "master",
        "ADDRESS_SPACE": [{"low": {"BASE": "0x0", "HIGH": "0xFFFF"}}]}}]}})";

void tryToWrite(bool fresh) {
    const support::TempDir folder;
    const memory::NoMessages quiet;
    HPAParamMgr::getParamMgr()->setValue("project.NoTimeStamp", "true");
    const std::string input = folder.write("connectivity.json", kConnectivity);
    const std::string output = folder.file("out.hwh");
    const Texts design{{"PS_CLK_FREQMHZ", "400"}, {"PS_ETH", "{ENABLE 1 MODE rgmii}"}};
    const Texts system{{"ps_core_name", "core"}, {"family", "mirrel"}};
    memory::run({.operation = [&](const memory::Attempt& attempt) -> std::optional<std::string> {
                     folder.write("out.hwh", "old");
                     Texts designNow = design;
                     Texts systemNow = system;
                     const auto check = [&] {
                         if (support::readFile(output) != "old" || designNow != design ||
                             systemNow != system)
                             throw std::logic_error("something has changed");
                         return std::nullopt;
                     };
                     try {
                         attempt([&] {
                             HBSGenerateService::generateHWH(designNow, systemNow, input, output);
                         });
                     } catch (const HEXError&) {
                         return check();
                     } catch (const std::bad_alloc&) {
                         check();
                         throw;
                     }
                     return support::readFile(output);
                 },
                 .fresh = fresh});
}

TEST(Handoff, IsWrittenWholeOrNotAtAll) {
    tryToWrite(false);
}

} // namespace
