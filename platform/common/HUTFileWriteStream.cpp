#include "HUTFileWriteStream.h"

#include <array>
#include <cstddef>
#include <streambuf>

#include "base/FileReplacement.h"

namespace {

constexpr int kReplaceMode = 2;

} // namespace

class HUTFileWriteStream::Buffer : public std::streambuf {
public:
    explicit Buffer(const std::string& path) : m_file(path) {
        setp(m_block.begin(), m_block.end());
    }

    [[nodiscard]] bool isOpen() const { return m_file.isGood(); }
    bool commit() { return sync() == 0 && m_file.commit(); }

protected:
    int_type overflow(int_type byte) override {
        if (sync() != 0)
            return traits_type::eof();
        if (!traits_type::eq_int_type(byte, traits_type::eof()))
            sputc(traits_type::to_char_type(byte));
        return traits_type::not_eof(byte);
    }
    int sync() override {
        const bool isWritten = m_file.write({pbase(), static_cast<std::size_t>(pptr() - pbase())});
        setp(m_block.begin(), m_block.end());
        return isWritten ? 0 : -1;
    }

private:
    base::FileReplacement m_file;
    std::array<char, 4096> m_block;
};

HUTFileWriteStream::HUTFileWriteStream(const std::string& path, int mode) : std::ostream(nullptr) {
    if (mode == kReplaceMode)
        m_buffer = std::make_unique<Buffer>(path);
    rdbuf(m_buffer.get());
    if (m_buffer == nullptr || !m_buffer->isOpen())
        setstate(std::ios::failbit);
}

HUTFileWriteStream::~HUTFileWriteStream() = default;

bool HUTFileWriteStream::close() {
    if (!good() || !m_buffer->commit())
        setstate(std::ios::failbit);
    return good();
}
