#include "addressing/DataArea.h"

#include "HPAParamMgr.h"
#include "HUTEnv.h"
#include "HUTFile.h"

namespace hbs_addressing {

std::string findHardblockDirectory() {
    return HUTEnv::getOBLDataDir("mirrel") + "/mirrel/hardblocks";
}

std::string hardblockFile(const std::string& directory, const std::string& name,
                          std::string_view extension) {
    return directory + "/" + name + "/" + name + std::string(extension);
}

bool isDebugOn() {
    try {
        return HPAParamMgr::getParamMgr()->getValueAsBool("vorn.writeAddressingJson");
    } catch (...) {
        return false;
    }
}

std::string workingFile(const std::string& name) {
    return HUTEnv::getPWD() + HUTFile::getDirSeparator() + name;
}

} // namespace hbs_addressing
