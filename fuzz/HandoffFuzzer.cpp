// Connectivity files: any text gives a document or an error that names the file.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>

#include "HEXError.h"
#include "HPAParamMgr.h"
#include "fuzz/MemoryFile.h"
#include "handoff/HBSGenerateService.h"
#include "handoff/HBSHandoff.h"
#include "support/temp_dir.h"

namespace {

/// Asks for all that a handoff knows.
void check(const HBSHandoff& handoff) {
    for (std::size_t i = 0; i < handoff.moduleCount(); ++i)
        (void)handoff.ranges(i);
    for (std::size_t i = 0; i < handoff.portCount(); ++i)
        if ((void)handoff.connections(i), handoff.port(i).namedBy >= handoff.portCount())
            std::abort();
    for (std::size_t i = 0; i < handoff.externalPortCount(); ++i)
        if (handoff.externalPort(i).ports.empty())
            std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile input;
    static const support::TempDir folder;
    input.fill(data, size);
    HPAParamMgr::getParamMgr()->setValue("project.allowPSSubCoreSplit", "true");
    std::map<std::string, std::string> design{{"A", "{B 1  C}"}, {"A_B_FREQMHZ", "4e9"}};
    for (const char* core : {"core", "tovak"}) {
        std::map<std::string, std::string> system{
            {"ps_core_name", core}, {"device", "qmzt4401"}, {"cell_name", "x_a"}};
        try {
            HBSGenerateService::generateHWH(design, system, input.path(), folder.file("out.hwh"));
            check(HBSHandoff(design, system, input.path(), [](const tq::Diagnostic& finding) {
                if (finding.place.line == 0)
                    std::abort();
            }));
        } catch (const HEXError&) { // the one way to fail
        }
    }
    return 0;
}
