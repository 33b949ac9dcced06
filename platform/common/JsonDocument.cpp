#include "JsonDocument.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "HSTStringUtils.h"

namespace {

using Document = rapidjson::GenericDocument<rapidjson::UTF8<>, JsonPool, JsonAllocator>;

template <class Integer>
bool fits(std::string_view text, Integer& value) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc{} && stop == end;
}

/// Passes what the reader finds on to the document, counts the levels and reads the numbers.
class Guard {
public:
    explicit Guard(Document& document) : m_document(document) {}

    bool Null() { return m_document.Null(); }
    bool Bool(bool value) { return m_document.Bool(value); }
    // Numbers come as text (kParseNumbersAsStringsFlag), so these are never called.
    bool Int(int) { return false; }
    bool Uint(unsigned) { return false; }
    bool Int64(std::int64_t) { return false; }
    bool Uint64(std::uint64_t) { return false; }
    bool Double(double) { return false; }
    bool RawNumber(const char* text, rapidjson::SizeType length, bool) {
        const std::string_view number(text, length);
        std::int64_t negative = 0;
        std::uint64_t positive = 0;
        if (fits(number, positive))
            return m_document.Uint64(positive);
        if (fits(number, negative))
            return m_document.Int64(negative);
        return m_document.Double(HSTStringUtils::to_double(std::string(number)));
    }
    bool String(const char* text, rapidjson::SizeType length, bool copy) {
        return m_document.String(text, length, copy);
    }
    bool Key(const char* text, rapidjson::SizeType length, bool copy) {
        return m_document.Key(text, length, copy);
    }
    bool StartObject() { return enter() && m_document.StartObject(); }
    bool EndObject(rapidjson::SizeType count) { return leave() && m_document.EndObject(count); }
    bool StartArray() { return enter() && m_document.StartArray(); }
    bool EndArray(rapidjson::SizeType count) { return leave() && m_document.EndArray(count); }

private:
    bool enter() { return ++m_levels <= JsonDocument::kMostLevels; }
    bool leave() {
        --m_levels;
        return true;
    }

    Document& m_document;
    std::size_t m_levels = 0;
};

/// A stream as RapidJSON reads it, fetched in blocks: asking a `std::istream` for single bytes
/// takes longer than parsing them. Behind the end stand zeros.
class BlockStream {
public:
    using Ch = char;

    explicit BlockStream(std::istream& stream)
        : m_stream(stream), m_block(static_cast<std::size_t>(kBlockBytes)) {
        fetch();
    }

    [[nodiscard]] char Peek() const { return m_next == m_end ? '\0' : *m_next; }
    char Take() {
        if (m_next == m_end)
            return '\0';
        const char byte = *m_next++;
        if (m_next == m_end)
            fetch();
        return byte;
    }
    [[nodiscard]] std::size_t Tell() const {
        return m_before + static_cast<std::size_t>(m_next - m_block.data());
    }
    // What only streams for output and for parsing in place need.
    char* PutBegin() { return nullptr; }
    std::size_t PutEnd(char*) { return 0; }
    void Put(char) {}

private:
    static constexpr std::streamsize kBlockBytes = 1 << 16;

    /// RapidJSON counts a text's bytes in 32 bits; a stream seems to end before they run out.
    static constexpr std::size_t kMostBytes = 0xFFFFFFFFU - std::size_t{kBlockBytes};

    void fetch() {
        if (m_before + m_count > kMostBytes || m_stream.peek() == std::istream::traits_type::eof())
            return;
        // No more than the stream holds ready: damage further on would swallow the bytes before it.
        const std::streamsize ready =
            std::clamp<std::streamsize>(m_stream.rdbuf()->in_avail(), 1, kBlockBytes);
        m_stream.read(m_block.data(), ready);
        m_before += m_count;
        m_count = static_cast<std::size_t>(m_stream.gcount());
        m_next = m_block.data();
        m_end = m_next + m_count;
    }

    std::istream& m_stream;
    std::vector<char> m_block;
    std::size_t m_before = 0; ///< bytes ahead of the block
    std::size_t m_count = 0;  ///< bytes in the block
    const char* m_next = m_block.data();
    const char* m_end = m_next;
};

} // namespace

void* JsonAllocator::Malloc(std::size_t size) {
    return Realloc(nullptr, 0, size);
}

void* JsonAllocator::Realloc(void* memory, std::size_t, std::size_t newSize) {
    if (newSize == 0) {
        Free(memory);
        return nullptr;
    }
    void* grown = std::realloc(memory, newSize);
    if (grown == nullptr)
        throw std::bad_alloc();
    return grown;
}

void JsonAllocator::Free(void* memory) {
    std::free(memory);
}

JsonDocument::JsonDocument(rapidjson::Type type) : GenericDocument(type) {}

JsonDocument& JsonDocument::ParseStream(std::istream& stream) {
    constexpr unsigned kFlags = rapidjson::kParseDefaultFlags | rapidjson::kParseIterativeFlag |
                                rapidjson::kParseNumbersAsStringsFlag;
    BlockStream blocks(stream);
    auto read = [&](Document& document) {
        rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, JsonAllocator> reader;
        Guard guard(document);
        m_result = reader.Parse<kFlags>(blocks, guard);
        return !m_result.IsError();
    };
    Populate(read);
    return *this;
}
