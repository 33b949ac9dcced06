#include "HUTFile.h"

#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <new>
#include <string_view>
#include <system_error>
#include <vector>

namespace fs = std::filesystem;

namespace {

/// The kind of file at the path. The system would cut a path at a NUL byte and look at another
/// file.
fs::file_type typeOf(const std::string& path) {
    if (path.find('\0') != std::string::npos)
        return fs::file_type::not_found;
    std::error_code error;
    return fs::status(path, error).type();
}

struct FolderCloser {
    void operator()(DIR* folder) const { closedir(folder); }
};

using Folder = std::unique_ptr<DIR, FolderCloser>;

/// Null where there is no folder that can be read.
Folder openFolder(const std::string& path) {
    if (typeOf(path) != fs::file_type::directory)
        return nullptr;
    Folder folder(opendir(path.c_str()));
    if (folder == nullptr && errno == ENOMEM)
        throw std::bad_alloc();
    return folder;
}

/// Whether the system refused; where only memory was missing the caller learns that.
bool isRefused(const std::error_code& error) {
    if (error == std::errc::not_enough_memory)
        throw std::bad_alloc();
    return static_cast<bool>(error);
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
    return isRefused(error) ? m_path : full.string();
}

std::string HUTFile::getCanonicalName() const {
    std::error_code error;
    const fs::path canonical = fs::weakly_canonical(getFullPath(), error);
    return isRefused(error) ? getFullPath() : canonical.string();
}

std::string HUTFile::getDirSeparator() {
    return "/";
}

HSTFwdIter<std::string>* HUTFile::createFileIter() const {
    std::vector<std::string> entries;
    // Not by the standard library's iterator: it ends the process where an entry finds no memory.
    if (const Folder folder = openFolder(m_path))
        while (const dirent* const entry = readdir(folder.get())) {
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..")
                entries.push_back((fs::path(m_path) / name).string());
        }
    std::sort(entries.begin(), entries.end());
    return std::make_unique<HSTFwdSTLIter<std::string>>(std::move(entries)).release();
}
