#include "basic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <system_error>

namespace isl::iostreams {

struct basic_file::Descriptor {
    explicit Descriptor(int number) : value(number) {}
    ~Descriptor() { ::close(value); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    const int value;
};

basic_file::basic_file(const std::string& path) {
    // The system would cut the path at a NUL byte and open another file.
    if (path.find('\0') != std::string::npos)
        return;
    // O_NONBLOCK: the opening of a FIFO must not wait for a writer. It means nothing for the
    // regular files that are kept.
    const int number = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (number < 0)
        return;
    auto descriptor = std::make_shared<Descriptor>(number);
    struct stat status {};
    if (fstat(number, &status) == 0 && S_ISREG(status.st_mode))
        m_descriptor = std::move(descriptor);
}

bool basic_file::is_open() const {
    return m_descriptor != nullptr;
}

std::streamsize basic_file::read(char* buffer, std::streamsize count) {
    if (!is_open())
        throw std::ios_base::failure("the file isn't open");
    ssize_t got = 0;
    do
        got = ::read(m_descriptor->value, buffer, static_cast<std::size_t>(count));
    while (got < 0 && errno == EINTR);
    if (got < 0)
        throw std::ios_base::failure("the file can't be read",
                                     std::error_code(errno, std::generic_category()));
    return got == 0 && count > 0 ? -1 : got;
}

void basic_file::close() {
    m_descriptor.reset();
}

} // namespace isl::iostreams
