// A JSON text as a flat list of its values, in the order of the text and each with its place in it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/RapidJson.h"

namespace base {

class JsonTape;

/// A value of a tape, or the name of a member. Small, copied freely; the tape has to outlive it.
class JsonNode {
public:
    enum class Kind : unsigned char { Null, Boolean, Number, String, Array, Object };

    JsonNode(const JsonTape& tape, std::uint32_t index) : m_tape(&tape), m_index(index) {}

    [[nodiscard]] Kind kind() const;
    /// For messages: "a text", "a number", "true or false", "null", "an array" or "an object".
    [[nodiscard]] const char* kindName() const;
    [[nodiscard]] bool isString() const { return kind() == Kind::String; }
    [[nodiscard]] bool isArray() const { return kind() == Kind::Array; }
    [[nodiscard]] bool isObject() const { return kind() == Kind::Object; }

    /// The bytes of a string with its escapes resolved; "true", "false", "null" or a number as they
    /// are written; empty for an array or an object. Lives as long as the tape.
    [[nodiscard]] std::string_view text() const;

    /// The byte of the text at which the value starts; a string starts with its quote.
    [[nodiscard]] std::size_t offset() const;

    /// The number of the value on its tape, from which `JsonTape::node` makes it again.
    [[nodiscard]] std::uint32_t index() const { return m_index; }

    /// Calls `visit(name, value)`, two nodes, for each member in the order of the text. Does
    /// nothing for anything but an object.
    template <class Visitor>
    void forEachMember(Visitor&& visit) const;
    /// Calls `visit(element)` likewise for an array.
    template <class Visitor>
    void forEachElement(Visitor&& visit) const;
    /// Calls `visit(name, value)` for each member of each object in an array.
    template <class Visitor>
    void forEachMemberOfElements(Visitor&& visit) const {
        forEachElement([&](const JsonNode& element) { element.forEachMember(visit); });
    }

private:
    [[nodiscard]] std::uint32_t next() const;

    const JsonTape* m_tape;
    std::uint32_t m_index;
};

/// Parses a copy of the text where it lies, with the limits and the errors of `JsonDocument`. Takes
/// eight bytes for each value and each name besides, half of what a document takes, copies no
/// strings and knows all places.
///
///     const base::JsonTape tape(text);
///     if (tape.HasParseError())
///         complain(HCRapidJsonReadWriteUtils::GetErrorMsgFromDocument(tape));
///     else
///         tape.root().forEachMember([](base::JsonNode name, base::JsonNode value) { … });
///
/// Numbers are checked and kept as they are written. Exhausted memory raises `std::bad_alloc`.
class JsonTape {
public:
    static constexpr std::size_t kMostLevels = 1000;
    /// Places count in 32 bits. A longer text is a parse error.
    static constexpr std::size_t kMostBytes = 0xFFFFFFFF;

    struct Position {
        std::size_t line = 1;   ///< from 1
        std::size_t column = 1; ///< from 1, in bytes
    };

    /// Reads the whole text, which isn't needed afterwards.
    explicit JsonTape(std::string_view text);
    /// Parses the text itself, which saves the copy. A zero with an exponent beyond that of a
    /// double is an error here (`kParseErrorNumberTooBig`); the other constructor reads it.
    explicit JsonTape(std::string&& text);
    /// Nodes of the tape that is moved away can't be used any more.
    JsonTape(JsonTape&&) = default;
    JsonTape& operator=(JsonTape&&) = default;

    [[nodiscard]] bool HasParseError() const { return m_result.IsError(); }
    [[nodiscard]] rapidjson::ParseErrorCode GetParseError() const { return m_result.Code(); }
    [[nodiscard]] std::size_t GetErrorOffset() const { return m_result.Offset(); }

    /// Not to be called after a parse error.
    [[nodiscard]] JsonNode root() const { return {*this, 0}; }
    [[nodiscard]] JsonNode node(std::uint32_t index) const { return {*this, index}; }

    /// Where a node's `offset` lies. Linear in the length of the text before it.
    [[nodiscard]] Position position(std::size_t offset) const;

private:
    friend class JsonNode;
    class Recorder;

    /// The byte with which a value starts tells its kind: strings are decoded after their quote.
    struct Entry {
        std::uint32_t offset = 0;
        std::uint32_t extent = 0; ///< bytes of a scalar; of others the index after the last value
    };
    static constexpr unsigned kChunkBits = 13;
    static constexpr std::uint32_t kChunkMask = (1U << kChunkBits) - 1;

    [[nodiscard]] const Entry& entry(std::uint32_t index) const {
        return m_chunks[index >> kChunkBits][index & kChunkMask];
    }
    void parse(std::string text);
    Entry& add(std::size_t offset);

    std::string m_text;
    /// Chunks, as a vector that grows holds everything twice for a while.
    std::vector<std::unique_ptr<Entry[]>> m_chunks;
    std::uint32_t m_count = 0;
    rapidjson::ParseResult m_result;
};

/// What is wrong with a text that couldn't be parsed, for people.
[[nodiscard]] std::string describeError(const JsonTape& tape);

inline JsonNode::Kind JsonNode::kind() const {
    switch (m_tape->m_text[m_tape->entry(m_index).offset]) {
    case '"':
        return Kind::String;
    case '{':
        return Kind::Object;
    case '[':
        return Kind::Array;
    case 't':
    case 'f':
        return Kind::Boolean;
    case 'n':
        return Kind::Null;
    default:
        return Kind::Number;
    }
}

inline std::string_view JsonNode::text() const {
    const JsonTape::Entry& entry = m_tape->entry(m_index);
    const char* start = m_tape->m_text.data() + entry.offset;
    if (*start == '{' || *start == '[')
        return {};
    return {*start == '"' ? start + 1 : start, entry.extent};
}

inline std::size_t JsonNode::offset() const {
    return m_tape->entry(m_index).offset;
}

inline std::uint32_t JsonNode::next() const {
    const JsonTape::Entry& entry = m_tape->entry(m_index);
    const char start = m_tape->m_text[entry.offset];
    return start == '{' || start == '[' ? entry.extent : m_index + 1;
}

template <class Visitor>
void JsonNode::forEachMember(Visitor&& visit) const {
    if (!isObject())
        return;
    const std::uint32_t end = next();
    for (std::uint32_t index = m_index + 1; index != end;) {
        const JsonNode value(*m_tape, index + 1);
        visit(JsonNode(*m_tape, index), value);
        index = value.next();
    }
}

template <class Visitor>
void JsonNode::forEachElement(Visitor&& visit) const {
    if (!isArray())
        return;
    const std::uint32_t end = next();
    for (std::uint32_t index = m_index + 1; index != end;) {
        const JsonNode element(*m_tape, index);
        visit(element);
        index = element.next();
    }
}

} // namespace base
