#include "HUTFile.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

namespace fs = std::filesystem;

namespace {

/// What stands at the path. The system would cut a path at a NUL byte and look at another file.
fs::file_type typeOf(const std::string& path) {
    if (path.find('\0') != std::string::npos)
        return fs::file_type::not_found;
    std::error_code error;
    return fs::status(path, error).type();
}

} // namespace

HUTFile::HUTFile(const std::string& path) : m_path(path) {}

bool HUTFile::exists() const {
    const fs::file_type type = typeOf(m_path);
    return type != fs::file_type::not_found && type != fs::file_type::none;
}

bool HUTFile::isFile() const {
    return typeOf(m_path) == fs::file_type::regular;
}

bool HUTFile::isDir() const {
    return typeOf(m_path) == fs::file_type::directory;
}

void HUTFile::getFullPath(std::string& path) const {
    path = getFullPath();
}

std::string HUTFile::getFullPath() const {
    if (m_path.empty())
        return {};
    std::error_code error;
    const fs::path full = fs::absolute(m_path, error);
    return error ? m_path : full.string();
}

std::string HUTFile::getCanonicalName() const {
    std::error_code error;
    const fs::path canonical = fs::weakly_canonical(getFullPath(), error);
    return error ? getFullPath() : canonical.string();
}

std::string HUTFile::getDirSeparator() {
    return "/";
}

HSTFwdIter<std::string>* HUTFile::createFileIter() const {
    std::vector<std::string> entries;
    std::error_code error;
    if (isDir())
        for (fs::directory_iterator it(m_path, error), end; !error && it != end;
             it.increment(error))
            entries.push_back(it->path().string());
    std::sort(entries.begin(), entries.end());
    return std::make_unique<HSTFwdSTLIter<std::string>>(std::move(entries)).release();
}
