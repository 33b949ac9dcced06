// A program of a user of the installed library: one call into each island.

#include <HPAParamMgr.h>
#include <cdo/HBSCdoSequenceMgr.h>
#include <scripting/native_cache.h>
#include <scripting/py_native_cache.h>

int main() {
    if (HBSCdoSequenceMgr::getGlobal().getCdoSequence("none") != nullptr)
        return 1;
    return HPAParamMgr::getParamMgr()->getValueAsInt("general.maxThreads") > 0 ? 0 : 1;
}
