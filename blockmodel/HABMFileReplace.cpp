#include "blockmodel/HABMFileReplace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {

/// As many as the system follows.
constexpr int kMostLinks = 40;

bool writeAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t count = ::write(descriptor, content.data(), content.size());
        if (count < 0 && errno != EINTR)
            return false;
        if (count > 0)
            content.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

/// A file of its own in the folder of another, which goes away unless it is put in place.
class FreshFile {
public:
    explicit FreshFile(const std::string& beside) {
        static std::atomic<unsigned> made{0};
        do {
            m_path = beside + "." + std::to_string(::getpid()) + "." +
                     std::to_string(made.fetch_add(1)) + ".tmp";
            m_descriptor = ::open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        } while (m_descriptor < 0 && errno == EEXIST);
        m_isWhole = m_descriptor >= 0;
    }
    ~FreshFile() {
        if (m_descriptor < 0)
            return;
        ::close(m_descriptor);
        if (!m_isPlaced)
            ::unlink(m_path.c_str());
    }
    FreshFile(const FreshFile&) = delete;
    FreshFile& operator=(const FreshFile&) = delete;

    [[nodiscard]] bool isWhole() const { return m_isWhole; }
    bool write(std::string_view piece) {
        m_isWhole = m_isWhole && writeAll(m_descriptor, piece);
        return m_isWhole;
    }
    void takeModeOf(const std::string& path) {
        struct stat status = {};
        if (::stat(path.c_str(), &status) == 0)
            (void)!::fchmod(m_descriptor, status.st_mode & 07777U);
    }
    bool place(const std::string& path) {
        m_isPlaced =
            m_isWhole && ::fsync(m_descriptor) == 0 && ::rename(m_path.c_str(), path.c_str()) == 0;
        return m_isPlaced;
    }

private:
    std::string m_path;
    int m_descriptor = -1;
    bool m_isWhole; ///< so far
    bool m_isPlaced = false;
};

/// Where a path leads in the end, whether something stands there or not.
fs::path behindLinks(fs::path path) {
    std::error_code error;
    for (int link = 0; link < kMostLinks && fs::is_symlink(fs::symlink_status(path, error)); ++link)
        path = path.parent_path() / fs::read_symlink(path, error);
    return path;
}

/// Makes a rename last. Some file systems can't, which is no failure of the write.
void syncFolder(const fs::path& folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}

} // namespace

bool habm::writeWholeFile(const std::string& path, bool replaces,
                          const std::function<bool(const Sink&)>& produce) {
    if (path.empty() || path.find('\0') != std::string::npos)
        return false;
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    const bool isThere = fs::exists(status);
    const bool isUnknown = status.type() == fs::file_type::none; // such as links in a ring
    if (isUnknown || (isThere && (!replaces || !fs::is_regular_file(status))))
        return false;
    const std::string target = behindLinks(path).string();

    FreshFile file(target);
    if (!file.isWhole())
        return false;
    if (isThere)
        file.takeModeOf(target);
    if (!produce([&file](std::string_view piece) { return file.write(piece); }) ||
        !file.place(target))
        return false;
    const fs::path folder = fs::path(target).parent_path();
    syncFolder(folder.empty() ? fs::path(".") : folder);
    return true;
}
