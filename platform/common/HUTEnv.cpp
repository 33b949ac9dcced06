#include "HUTEnv.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <new>
#include <string_view>
#include <system_error>

#include "HUTFile.h"

std::string HUTEnv::getOBLDataDir(const std::string& relative) {
    const char* const list = std::getenv("TQ_DATA_PATH");
    std::string_view rest = list != nullptr ? list : "";
    while (!rest.empty()) {
        std::string directory(rest.substr(0, rest.find(':')));
        rest.remove_prefix(std::min(directory.size() + 1, rest.size()));
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
    if (error == std::errc::not_enough_memory)
        throw std::bad_alloc();
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
