#include "HXMLWInterface.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "HEXError.h"
#include "HXMLWDocument.h"

namespace {

[[noreturn]] void raise(const std::string& path, const std::string& cause) {
    throw HEXError("can't write '" + path + "': " + cause);
}

[[noreturn]] void raise(const std::string& path, int error) {
    raise(path, std::generic_category().message(error));
}

/// Where the new file has to go, with the access rights of the one that stands there.
struct Target {
    std::string path;
    bool exists = false;
    mode_t mode = 0;
};

Target findTarget(const std::string& path) {
    // The system would cut the path at a NUL byte and write another file.
    if (path.find('\0') != std::string::npos)
        raise(path, EINVAL);
    std::error_code error;
    Target target{path, false, 0};
    // Through links, of which the last may lead to nothing yet.
    for (int hops = 0; std::filesystem::is_symlink(target.path, error); ++hops) {
        if (hops == 40)
            raise(path, ELOOP);
        const std::filesystem::path link(target.path);
        target.path = (link.parent_path() / std::filesystem::read_symlink(link, error)).string();
    }
    struct stat status {};
    if (stat(target.path.c_str(), &status) != 0)
        return target;
    if (!S_ISREG(status.st_mode))
        raise(path, S_ISDIR(status.st_mode) ? std::generic_category().message(EISDIR)
                                            : "Not a regular file");
    if (access(target.path.c_str(), W_OK) != 0)
        raise(path, errno);
    target.exists = true;
    target.mode = status.st_mode & 07777U;
    return target;
}

/// A new file beside the target, removed again unless it takes the target's place.
class NewFile : public pugi::xml_writer {
public:
    NewFile(const std::string& path, const Target& target) : m_path(path), m_target(target) {
        m_buffer.reserve(kBufferBytes); // ahead of the file, which would stay if this failed
        const std::filesystem::path folder = std::filesystem::path(target.path).parent_path();
        for (int number = 0; m_file < 0; ++number) {
            const std::string name =
                ".hxmlw-" + std::to_string(getpid()) + "-" + std::to_string(number);
            m_newPath = (folder / name).string();
            m_file = open(m_newPath.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
            if (m_file < 0 && errno != EEXIST)
                raise(path, errno);
        }
    }
    ~NewFile() override {
        if (m_file >= 0)
            close(m_file);
        if (!m_placed)
            unlink(m_newPath.c_str());
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    void write(const void* data, std::size_t size) override {
        if (m_buffer.size() + size > kBufferBytes)
            flush();
        m_buffer.append(static_cast<const char*>(data), size);
    }

    void place() {
        flush();
        if (m_target.exists && fchmod(m_file, m_target.mode) != 0)
            raise(m_path, errno);
        // Some file systems report a full disk no earlier than here.
        if (close(std::exchange(m_file, -1)) != 0)
            raise(m_path, errno);
        if (rename(m_newPath.c_str(), m_target.path.c_str()) != 0)
            raise(m_path, errno);
        m_placed = true;
    }

private:
    static constexpr std::size_t kBufferBytes = std::size_t{256} * 1024;

    void flush() {
        for (std::string_view rest = m_buffer; !rest.empty();) {
            const ssize_t written = ::write(m_file, rest.data(), rest.size());
            if (written < 0 && errno != EINTR)
                raise(m_path, errno);
            rest.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
        }
        m_buffer.clear();
    }

    const std::string& m_path;
    const Target& m_target;
    std::string m_newPath;
    std::string m_buffer;
    int m_file = -1;
    bool m_placed = false;
};

} // namespace

std::shared_ptr<HXMLWElement> HXMLWInterface::createRoot(const char* name) {
    auto document = std::make_shared<HXMLWDocument>();
    HXMLWElement* root = document->appendTo(document->root(), name == nullptr ? "" : name);
    return root == nullptr ? nullptr : document->shared(root);
}

// The shared pointer and the path come by value, as the tool's library has it.
void HXMLWInterface::writeToFile(std::shared_ptr<HXMLWElement> root, std::string path) {
    if (root == nullptr)
        raise(path, "there is no document");
    const Target target = findTarget(path);
    NewFile file(path, target);
    constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    file.write(kDeclaration.data(), kDeclaration.size());
    pugi::xml_node(root->m_node).print(file, "\t", pugi::format_indent, pugi::encoding_utf8);
    file.place();
}
