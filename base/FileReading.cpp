#include "base/FileReading.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <ios>
#include <streambuf>
#include <system_error>
#include <utility>

namespace base {

namespace {

constexpr std::size_t kBlockBytes = std::size_t{1} << 16U;

std::string systemText(int error) {
    return std::generic_category().message(error);
}

/// A file that is open for reading, or the reason why it isn't.
class InputDescriptor {
public:
    explicit InputDescriptor(const std::string& path) {
        // The system would cut the path at a NUL byte and open another file.
        if (path.find('\0') != std::string::npos) {
            refuse(EINVAL);
            return;
        }
        // O_NONBLOCK: opening a FIFO must not wait for a writer. It has no effect on regular files.
        m_descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (m_descriptor < 0 || ::fstat(m_descriptor, &m_status) != 0)
            refuse(errno);
        else if (!S_ISREG(m_status.st_mode))
            m_obstacle = {ReadOutcome::Unopened, "",
                          S_ISDIR(m_status.st_mode) ? "it is a folder" : "it isn't a file"};
    }
    ~InputDescriptor() {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    InputDescriptor(const InputDescriptor&) = delete;
    InputDescriptor& operator=(const InputDescriptor&) = delete;

    [[nodiscard]] const FileContent& obstacle() const { return m_obstacle; }
    [[nodiscard]] std::uint64_t size() const {
        return static_cast<std::uint64_t>(m_status.st_size);
    }

    /// The count of bytes read, 0 at the end, below 0 with `errno` set.
    ssize_t read(char* block, std::size_t bytes) const {
        ssize_t count = 0;
        do
            count = ::read(m_descriptor, block, bytes);
        while (count < 0 && errno == EINTR);
        return count;
    }

private:
    void refuse(int error) {
        const bool isMissing = error == ENOENT || error == ENOTDIR;
        m_obstacle = {isMissing ? ReadOutcome::Missing : ReadOutcome::Unopened, "",
                      systemText(error)};
    }

    int m_descriptor = -1;
    struct stat m_status {};
    FileContent m_obstacle; ///< whole if there is none
};

FileContent tooLarge(std::uint64_t mostBytes) {
    constexpr std::uint64_t kMebibyte = 1U << 20U;
    const std::string bound = mostBytes % kMebibyte == 0
                                  ? std::to_string(mostBytes / kMebibyte) + " MiB"
                                  : std::to_string(mostBytes) + " bytes";
    return {ReadOutcome::TooLarge, "", "it holds more than " + bound};
}

/// Appends the blocks that `read(block, bytes)` gives until it gives none.
template <class Read>
FileContent readBlocks(FileContent content, std::uint64_t mostBytes, Read read) {
    std::array<char, kBlockBytes> block;
    while (const std::size_t count = read(block.data(), block.size())) {
        if (content.text.size() + count > mostBytes)
            return tooLarge(mostBytes);
        content.text.append(block.data(), count);
    }
    return content;
}

} // namespace

std::optional<FileContent> findObstacle(const std::string& path) {
    const InputDescriptor file(path);
    if (file.obstacle().isWhole())
        return std::nullopt;
    return file.obstacle();
}

FileContent readFile(const std::string& path, std::uint64_t mostBytes) {
    const InputDescriptor file(path);
    if (!file.obstacle().isWhole())
        return file.obstacle();
    int error = 0;
    FileContent content;
    content.text.reserve(std::min(file.size(), mostBytes));
    content = readBlocks(std::move(content), mostBytes, [&](char* block, std::size_t bytes) {
        const ssize_t count = file.read(block, bytes);
        error = count < 0 ? errno : 0;
        return static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    });
    if (error != 0) {
        content.outcome = ReadOutcome::Failed;
        content.reason = systemText(error);
    }
    return content;
}

FileContent readStream(std::istream& stream, std::uint64_t mostBytes) {
    FileContent content;
    try {
        return readBlocks({}, mostBytes, [&](char* block, std::size_t bytes) {
            return static_cast<std::size_t>(
                stream.rdbuf()->sgetn(block, static_cast<std::streamsize>(bytes)));
        });
    } catch (const std::ios_base::failure& failure) {
        if (failure.code().category() == std::generic_category())
            return {ReadOutcome::Failed, "", failure.code().message()};
        return {ReadOutcome::Damaged, "", "what it is stored in is damaged or cut short"};
    }
}

} // namespace base
