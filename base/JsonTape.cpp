#include "base/JsonTape.h"

#include <algorithm>
#include <utility>

#include "base/JsonDocument.h"

namespace base {

namespace {

using Stream = rapidjson::InsituStringStream;

} // namespace

/// Puts what the reader finds onto the tape, and counts the levels.
class JsonTape::Recorder {
public:
    Recorder(JsonTape& tape, Stream& stream) : m_tape(tape), m_stream(stream) {}

    // The reader has passed a word when it reports it.
    bool Null() { return addScalar(m_stream.Tell() - 4, 4); }
    bool Bool(bool value) {
        const std::size_t length = value ? 4 : 5;
        return addScalar(m_stream.Tell() - length, length);
    }
    // Numbers come as text (kParseNumbersAsStringsFlag), so these are never called.
    bool Int(int) { return false; }
    bool Uint(unsigned) { return false; }
    bool Int64(std::int64_t) { return false; }
    bool Uint64(std::uint64_t) { return false; }
    bool Double(double) { return false; }
    bool RawNumber(const char* text, rapidjson::SizeType length, bool) {
        return addScalar(offsetOf(text), length);
    }
    bool String(const char* text, rapidjson::SizeType length, bool) {
        return addScalar(offsetOf(text) - 1, length);
    }
    bool Key(const char* text, rapidjson::SizeType length, bool copy) {
        return String(text, length, copy);
    }
    bool StartObject() { return open(); }
    bool EndObject(rapidjson::SizeType) { return close(); }
    bool StartArray() { return open(); }
    bool EndArray(rapidjson::SizeType) { return close(); }

private:
    [[nodiscard]] std::size_t offsetOf(const char* text) const {
        return static_cast<std::size_t>(text - m_tape.m_text.data());
    }
    bool addScalar(std::size_t offset, std::size_t length) {
        m_tape.add(offset).extent = static_cast<std::uint32_t>(length);
        return true;
    }
    /// The reader reports a bracket before it passes it.
    bool open() {
        if (m_open.size() == kMostLevels)
            return false;
        m_open.push_back(&m_tape.add(m_stream.Tell()));
        return true;
    }
    bool close() {
        m_open.back()->extent = m_tape.m_count;
        m_open.pop_back();
        return true;
    }

    JsonTape& m_tape;
    Stream& m_stream;
    std::vector<Entry*> m_open; ///< entries stay where they are
};

const char* JsonNode::kindName() const {
    switch (kind()) {
    case Kind::Boolean:
        return "true or false";
    case Kind::Number:
        return "a number";
    case Kind::String:
        return "a text";
    case Kind::Array:
        return "an array";
    case Kind::Object:
        return "an object";
    case Kind::Null:
        break;
    }
    return "null";
}

JsonTape::JsonTape(std::string_view text) {
    parse(std::string(text));
    if (m_result.Code() != rapidjson::kParseErrorNumberTooBig)
        return;
    std::string cleared = withoutExponentsOfZeros(std::string(text), m_result.Offset());
    if (cleared != text)
        parse(std::move(cleared));
}

JsonTape::JsonTape(std::string&& text) {
    parse(std::move(text));
}

void JsonTape::parse(std::string text) {
    constexpr unsigned kFlags = rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag |
                                rapidjson::kParseNumbersAsStringsFlag;
    m_chunks.clear();
    m_count = 0;
    if (text.size() > kMostBytes) {
        m_result.Set(rapidjson::kParseErrorUnspecificSyntaxError, kMostBytes);
        return;
    }
    m_text = std::move(text);
    Stream stream(m_text.data());
    Recorder recorder(*this, stream);
    rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, JsonAllocator> reader;
    m_result = reader.Parse<kFlags>(stream, recorder);
    // The reader takes a NUL byte for the end.
    if (!m_result.IsError() && stream.Tell() != m_text.size())
        m_result.Set(rapidjson::kParseErrorDocumentRootNotSingular, stream.Tell());
}

JsonTape::Entry& JsonTape::add(std::size_t offset) {
    const std::uint32_t place = m_count & kChunkMask;
    if (place == 0)
        m_chunks.push_back(std::make_unique_for_overwrite<Entry[]>(kChunkMask + 1));
    ++m_count;
    Entry& entry = m_chunks.back()[place];
    entry.offset = static_cast<std::uint32_t>(offset);
    return entry;
}

/// Decoded strings are passed over: the text holds no line ends inside strings, but escapes may
/// have become some.
JsonTape::Position JsonTape::position(std::size_t offset) const {
    Position position;
    std::size_t lineStart = 0;
    std::size_t from = 0;
    const auto countUpTo = [&](std::size_t end) {
        for (; from < end; ++from)
            if (m_text[from] == '\n') {
                ++position.line;
                lineStart = from + 1;
            }
    };
    for (std::uint32_t index = 0; index < m_count && entry(index).offset < offset; ++index) {
        countUpTo(entry(index).offset);
        if (node(index).isString())
            from += 1 + entry(index).extent;
    }
    countUpTo(std::min(offset, m_text.size()));
    position.column = offset - lineStart + 1;
    return position;
}

std::string describeError(const JsonTape& tape) {
    if (tape.GetParseError() == rapidjson::kParseErrorTermination)
        return "nested deeper than " + std::to_string(JsonTape::kMostLevels) + " levels";
    return rapidjson::GetParseError_En(tape.GetParseError());
}

} // namespace base
