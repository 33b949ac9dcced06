// A program of a user of the installed library: one call into each island.

#include <HEXError.h>
#include <addressing/HBSAddressing.h>
#include <blockmodel/HABM.h>
#include <cdo/HBSCdoSequenceMgr.h>
#include <clocking/HBSClockingAlgo6Pll.h>
#include <clocking/HBSClockingAlgoMgr.h>
#include <handoff/HBSGenerateService.h>
#include <hardblock/HBSHardBlockDataMgr.h>
#include <regfile/HBSRegFileParser.h>
#include <scripting/native_cache.h>
#include <scripting/py_native_cache.h>
#include <tq_version.h>

static_assert(TQ_VERSION >= 10000 && TQ_VERSION_MAJOR == 1);

namespace {

bool refusesAMissingConnectivityFile() {
    std::map<std::string, std::string> designParams;
    std::map<std::string, std::string> systemInfo;
    try {
        HBSGenerateService::generateHWH(designParams, systemInfo, "none", "none.hwh");
    } catch (const HEXError&) {
        return true; // thrown in one library, caught in another program
    }
    return false;
}

bool reportsAnEmptyBlock() {
    rapidjson::Document document;
    HBSAddressing::generateSurfaceLevelAddressing(*HABMBlock::createTopBlock("empty"), document);
    return document.IsObject() && document.ObjectEmpty();
}

} // namespace

int main() {
    const bool good = HBSClockingAlgoMgr::getGlobal()->getClockingAlgo("none") == nullptr &&
                      !hbs_clocking::HBSClockingAlgo6Pll("tree").is_result_found() &&
                      reportsAnEmptyBlock() && refusesAMissingConnectivityFile() &&
                      HBSCdoSequenceMgr::getGlobal().getCdoSequence("none") == nullptr &&
                      !HBSHardBlockDataMgr::getHardBlockDataMgr()->createHardBlocks("none") &&
                      hbs::HBSRegFileParser::parseFile("") == nullptr;
    return good ? 0 : 1;
}
