#include "HUTEnv.h"

#include <array>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <sstream>
#include <system_error>

#include "HUTFile.h"

std::string HUTEnv::getOBLDataDir(const std::string& relative) {
    const char* list = std::getenv("TQ_DATA_PATH");
    std::istringstream directories(list != nullptr ? list : "");
    for (std::string directory; std::getline(directories, directory, ':');) {
        std::string path = directory;
        path.append(HUTFile::getDirSeparator()).append(relative);
        if (!directory.empty() && HUTFile(path).exists())
            return directory;
    }
    return {};
}

std::string HUTEnv::getPWD() {
    std::error_code error;
    const std::filesystem::path path = std::filesystem::current_path(error);
    return error ? "." : path.string();
}

void HUTEnv::getTimeStamp(std::string& stamp) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::array<char, 32> buffer;
    // Numbers alone: their form is the same in every locale.
    const std::size_t length =
        std::strftime(buffer.data(), buffer.size(), "%Y-%m-%d %H:%M:%S", &local);
    stamp.assign(buffer.data(), length);
}

std::string HUTEnv::getProductVersion() {
    return TQ_PRODUCT_VERSION;
}
