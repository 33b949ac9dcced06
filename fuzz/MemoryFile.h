// A file that takes its input from memory: writing to a disk for each input is what a fuzzer would
// spend its time on.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace fuzz {

/// Opened by its path like any regular file; filled anew for each input.
class MemoryFile {
public:
    MemoryFile() : m_descriptor(memfd_create("input", MFD_CLOEXEC)) {
        if (m_descriptor < 0)
            throw std::runtime_error("no file in memory");
    }
    ~MemoryFile() { close(m_descriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    [[nodiscard]] std::string path() const {
        return "/proc/self/fd/" + std::to_string(m_descriptor);
    }

    [[nodiscard]] int descriptor() const { return m_descriptor; }

    void fill(const std::uint8_t* data, std::size_t size) const {
        const bool isFilled = ftruncate(m_descriptor, 0) == 0 &&
                              pwrite(m_descriptor, data, size, 0) == static_cast<ssize_t>(size);
        if (!isFilled)
            throw std::runtime_error("the file in memory can't be filled");
    }

private:
    int m_descriptor;
};

} // namespace fuzz
