#include "HUTFileWriteStream.h"

#include <filesystem>
#include <system_error>

namespace {

constexpr int kReplaceMode = 2;

bool mayBeOpened(const std::string& path) {
    std::error_code error;
    return path.find('\0') == std::string::npos && !std::filesystem::is_fifo(path, error);
}

} // namespace

HUTFileWriteStream::HUTFileWriteStream(const std::string& path, int mode) : std::ostream(nullptr) {
    rdbuf(&m_buffer);
    constexpr auto kOpenMode = std::ios::out | std::ios::trunc | std::ios::binary;
    if (mode != kReplaceMode || !mayBeOpened(path) || m_buffer.open(path, kOpenMode) == nullptr)
        setstate(std::ios::failbit);
}

HUTFileWriteStream::~HUTFileWriteStream() = default;

bool HUTFileWriteStream::close() {
    if (m_buffer.close() == nullptr)
        setstate(std::ios::failbit);
    return good();
}
