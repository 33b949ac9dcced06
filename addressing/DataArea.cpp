#include "addressing/DataArea.h"

#include "HEXError.h"
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
    } catch (const HEXError&) {
        return false;
    }
}

std::optional<std::chrono::milliseconds> findScriptTimeLimit() {
    int milliseconds = 60000;
    try {
        milliseconds = HPAParamMgr::getParamMgr()->getValueAsInt("vorn.addressingTclTimeLimitMs");
    } catch (const HEXError&) {
        // The limit for a parameter that can't be read.
    }
    if (milliseconds <= 0)
        return std::nullopt;
    return std::chrono::milliseconds(milliseconds);
}

std::string workingFile(const std::string& name) {
    return HUTEnv::getPWD() + HUTFile::getDirSeparator() + name;
}

} // namespace hbs_addressing
