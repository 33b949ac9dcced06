// A program of a user of the installed library: one call into each island.

#include <HPAParamMgr.h>
#include <cdo/HBSCdoSequenceMgr.h>
#include <clocking/HBSClockingAlgo1Pll.h>
#include <clocking/HBSClockingAlgoMgr.h>
#include <hardblock/HBSHardBlockDataMgr.h>
#include <scripting/native_cache.h>
#include <scripting/py_native_cache.h>

int main() {
    if (HBSClockingAlgoMgr::getGlobal()->getClockingAlgo("none") != nullptr ||
        hbs_clocking::HBSClockingAlgo1Pll("tree").is_result_found())
        return 1;
    if (HBSCdoSequenceMgr::getGlobal().getCdoSequence("none") != nullptr)
        return 1;
    if (HBSHardBlockDataMgr::getHardBlockDataMgr()->createHardBlocks("none"))
        return 1;
    return HPAParamMgr::getParamMgr()->getValueAsInt("general.maxThreads") > 0 ? 0 : 1;
}
