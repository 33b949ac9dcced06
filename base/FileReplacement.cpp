#include "base/FileReplacement.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <system_error>
#include <utility>

namespace base {

namespace {

constexpr std::size_t kBufferBytes = std::size_t{1} << 16U;
constexpr mode_t kRights = 07777;
/// As many links as the system follows.
constexpr int kMostLinks = 40;
/// Room for the rest of a new file's name among the 255 bytes that a name may have.
constexpr std::size_t kMostNameBytes = 200;
/// Names that are looked at for files of dead processes: more processes seldom write one path.
constexpr int kSweptNames = 8;
constexpr int kMostNames = 100;

std::filesystem::path folderOf(const std::string& path) {
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    return folder.empty() ? "." : folder;
}

bool isSame(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// The descriptor of the standard output or error if one of them goes to this file, else -1.
int standardStreamTo(const struct stat& file) {
    for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO}) {
        struct stat status {};
        if (::fstat(descriptor, &status) == 0 && isSame(status, file))
            return descriptor;
    }
    return -1;
}

/// True if this process holds the lock afterwards. No process holds that of a file whose writer
/// died.
bool lock(int descriptor) {
    return ::flock(descriptor, LOCK_EX | LOCK_NB) == 0;
}

/// Removes the new file of a process that died. The lock was taken from the file that the name now
/// leads to: another process may have put it in place or removed it in between.
void removeAbandoned(const std::string& newPath) {
    const int descriptor =
        ::open(newPath.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0)
        return;
    struct stat opened {};
    struct stat named {};
    if (lock(descriptor) && ::fstat(descriptor, &opened) == 0 && S_ISREG(opened.st_mode) &&
        ::lstat(newPath.c_str(), &named) == 0 && isSame(opened, named))
        ::unlink(newPath.c_str());
    ::close(descriptor);
}

/// Some file systems have nothing to sync, which is no failure.
bool syncs(int descriptor) {
    return ::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP;
}

/// Makes a rename last, as far as the file system can.
void syncFolder(const std::filesystem::path& folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}

} // namespace

FileReplacement::FileReplacement(std::string path, Special special, Existing existing)
    : m_path(std::move(path)) {
    m_buffer.reserve(kBufferBytes); // before the file is made, which would stay if this failed
    open(special, existing);
}

FileReplacement::~FileReplacement() {
    if (m_descriptor < 0)
        return;
    if (!m_newPath.empty())
        ::unlink(m_newPath.c_str());
    ::close(m_descriptor); // gives the lock up, so it comes last
}

bool FileReplacement::fail(int error) {
    return fail(std::generic_category().message(error).c_str());
}

bool FileReplacement::fail(const char* reason) {
    if (m_reason.empty())
        m_reason = reason;
    return false;
}

void FileReplacement::open(Special special, Existing existing) {
    // The system would cut the path at a NUL byte and write another file.
    if (m_path.find('\0') != std::string::npos) {
        fail(EINVAL);
        return;
    }
    struct stat status {};
    const bool exists = ::stat(m_path.c_str(), &status) == 0;
    if (!exists && errno != ENOENT) {
        fail(errno);
        return;
    }
    if (exists && S_ISDIR(status.st_mode)) {
        fail(EISDIR);
        return;
    }
    const int standardStream = exists ? standardStreamTo(status) : -1;
    const bool isSpecial = exists && (!S_ISREG(status.st_mode) || standardStream >= 0);
    if (isSpecial && special == Special::WriteThrough) {
        openDirectly(standardStream);
        return;
    }
    if (exists && !S_ISREG(status.st_mode))
        fail("Not a regular file");
    else if (exists && existing == Existing::Keep)
        fail(EEXIST);
    else if (exists && ::access(m_path.c_str(), W_OK) != 0)
        fail(errno);
    m_replaces = exists;
    m_mode = status.st_mode & kRights;
    m_owner = status.st_uid;
    m_group = status.st_gid;
    if (isGood())
        followLinks();
    if (isGood())
        openBeside();
}

void FileReplacement::openDirectly(int standardStream) {
    m_descriptor = standardStream >= 0 ? ::fcntl(standardStream, F_DUPFD_CLOEXEC, 0)
                                       : ::open(m_path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    if (m_descriptor < 0)
        fail(errno);
}

void FileReplacement::followLinks() {
    std::error_code error;
    for (int links = 0; std::filesystem::is_symlink(m_path, error); ++links) {
        const std::filesystem::path link(m_path);
        m_path = (link.parent_path() / std::filesystem::read_symlink(link, error)).string();
        if (error || links == kMostLinks) {
            fail(error ? error.value() : ELOOP);
            return;
        }
    }
}

void FileReplacement::openBeside() {
    const std::filesystem::path target(m_path);
    const std::string name = target.filename().string().substr(0, kMostNameBytes);
    if (name.empty()) {
        fail(ENOENT);
        return;
    }
    const std::string prefix = (target.parent_path() / ("." + name + ".tq-")).string();
    for (int number = 0; number < kSweptNames; ++number)
        removeAbandoned(prefix + std::to_string(number));
    for (int number = 0; isGood() && number < kMostNames; ++number) {
        m_newPath = prefix + std::to_string(number);
        if (create())
            return;
    }
    m_newPath.clear();
    fail(EEXIST);
}

/// False, without a failure, if the name is another process's.
bool FileReplacement::create() {
    // What replaces a file isn't open to more people than the file is.
    const mode_t mode = m_replaces ? 0600 : 0666;
    const int descriptor =
        ::open(m_newPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode);
    if (descriptor < 0)
        return errno == EEXIST ? false : fail(errno);
    // Between the two calls another process may have taken the file for an abandoned one. Where
    // there are no locks nothing is ever taken for abandoned.
    struct stat status {};
    const bool isLocked = lock(descriptor) || errno != EWOULDBLOCK;
    if (isLocked && ::fstat(descriptor, &status) == 0 && status.st_nlink > 0) {
        m_descriptor = descriptor;
        return true;
    }
    ::close(descriptor);
    return false;
}

bool FileReplacement::write(std::string_view piece) {
    if (!isGood())
        return false;
    if (m_buffer.size() + piece.size() > kBufferBytes) {
        if (!writeOut(m_buffer))
            return false;
        m_buffer.clear();
    }
    if (piece.size() > kBufferBytes)
        return writeOut(piece);
    m_buffer.append(piece);
    return true;
}

bool FileReplacement::writeOut(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(m_descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR)
            return fail(errno);
        bytes.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
    return true;
}

bool FileReplacement::commit() {
    if (m_descriptor < 0)
        fail(EBADF);
    if (!isGood() || !writeOut(m_buffer))
        return false;
    if (!m_newPath.empty()) {
        if (!takeRights())
            return false;
        if (!syncs(m_descriptor))
            return fail(errno);
        // Nothing after the renaming may fail for want of memory.
        const std::filesystem::path folder = folderOf(m_path);
        if (::rename(m_newPath.c_str(), m_path.c_str()) != 0)
            return fail(errno);
        m_newPath.clear();
        syncFolder(folder);
    }
    return ::close(std::exchange(m_descriptor, -1)) == 0 || fail(errno);
}

bool FileReplacement::takeRights() {
    if (!m_replaces)
        return true;
    // Only the administrator may give a file away. The rights come last, as a new owner clears some
    // of them.
    if (::fchown(m_descriptor, m_owner, m_group) != 0)
        (void)!::fchown(m_descriptor, static_cast<uid_t>(-1), m_group);
    return ::fchmod(m_descriptor, m_mode) == 0 || fail(errno);
}

std::string writeOutputFile(const std::string& path, std::string_view text) {
    FileReplacement file(path, FileReplacement::Special::WriteThrough);
    file.write(text);
    return file.commit() ? std::string() : file.reason();
}

} // namespace base
