// Takes the text of a ".bmj" file apart.
#pragma once

#include "base/JsonDocument.h"
#include "base/RapidJson.h"

#include <charconv>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "blockmodel/HABMAddrAperture.h"
#include "blockmodel/HABMAddrValue.h"
#include "blockmodel/HABMBmj.h"
#include "blockmodel/HABMSchema.h"

namespace habm::bmj {

inline std::string quoted(std::string_view text) {
    constexpr std::size_t kMostShown = 60;
    return "'" + std::string(text.substr(0, kMostShown)) + (text.size() > kMostShown ? "…'" : "'");
}

/// A value that isn't an object or an array.
struct Scalar {
    enum class Kind { None, Text, Number, False, True, Null };

    Kind kind = Kind::None;
    std::string_view text{}; ///< of a text or a number
};

/// Takes a scalar from the parser, which gives numbers as texts.
class ScalarHandler : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, ScalarHandler> {
public:
    static bool Default() { return false; }
    bool Null() { return take({Scalar::Kind::Null}); }
    bool Bool(bool value) { return take({value ? Scalar::Kind::True : Scalar::Kind::False}); }
    bool RawNumber(const char* digits, rapidjson::SizeType length, bool) {
        return take({Scalar::Kind::Number, {digits, length}});
    }
    bool String(const char* bytes, rapidjson::SizeType length, bool) {
        return take({Scalar::Kind::Text, {bytes, length}});
    }
    [[nodiscard]] const Scalar& found() const { return m_found; }

private:
    bool take(const Scalar& found) {
        m_found = found;
        return true;
    }

    Scalar m_found;
};

/// The text of a file, taken from its beginning to its end: a document of it would need more memory
/// than the block that it becomes. The texts that it gives stay in place.
class Source {
public:
    explicit Source(std::string& text) : m_stream(text.data()), m_bytes(text.size()) {}

    /// Position of the next byte in the text.
    [[nodiscard]] std::size_t position() { return m_stream.Tell(); }
    /// Takes a mark if it comes next.
    bool takeIf(char mark) {
        rapidjson::SkipWhitespace(m_stream);
        if (m_stream.Peek() != mark)
            return false;
        m_stream.Take();
        return true;
    }
    void expect(char mark) {
        if (!takeIf(mark))
            throw Fault(std::string("a comma or '") + mark + "' was expected");
    }
    void expectEnd() {
        // A NUL byte inside the text looks like its end.
        rapidjson::SkipWhitespace(m_stream);
        if (m_stream.Tell() != m_bytes)
            throw Fault("nothing more was expected");
    }
    /// The next value; of no kind if it is an object or an array.
    Scalar scalar() {
        rapidjson::SkipWhitespace(m_stream);
        if (m_stream.Peek() == '{' || m_stream.Peek() == '[')
            return {};
        if (m_stream.Peek() == '\0')
            throw Fault("it ends too early");
        ScalarHandler handler;
        m_parser.Parse<kParseFlags>(m_stream, handler);
        if (m_parser.HasParseError())
            throw Fault(rapidjson::GetParseError_En(m_parser.GetParseErrorCode()));
        return handler.found();
    }
    std::string_view text() {
        const Scalar found = scalar();
        if (found.kind != Scalar::Kind::Text)
            throw Fault("a text was expected");
        return found.text;
    }
    std::string_view key() {
        const std::string_view key = text();
        if (!takeIf(':'))
            throw Fault("a colon was expected");
        return key;
    }
    HABMAddrValue address() {
        const std::string digits(text());
        const HABMAddrValue address(digits);
        if (!address.isValid() && !digits.empty())
            throw Fault(quoted(digits) + " is no address");
        return address;
    }
    /// What `read` makes of each of two values in an array.
    template <class Read>
    auto pair(Read read) {
        const auto expectMark = [&](char mark) {
            if (!takeIf(mark))
                throw Fault("a pair was expected");
        };
        expectMark('[');
        auto first = (this->*read)();
        expectMark(',');
        auto second = (this->*read)();
        expectMark(']');
        return std::pair(first, second);
    }
    HABMAddrAperture aperture() {
        const auto [start, size] = pair(&Source::address);
        return {start, size};
    }

private:
    // In place, as texts needn't be copied then; with the numbers as texts, as their arithmetic
    // overflows for extreme exponents.
    static constexpr unsigned kParseFlags = rapidjson::kParseInsituFlag |
                                            rapidjson::kParseNumbersAsStringsFlag |
                                            rapidjson::kParseStopWhenDoneFlag;

    rapidjson::InsituStringStream m_stream;
    std::size_t m_bytes;
    rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, JsonAllocator> m_parser;
};

/// The members of an object, taken one after the other. The keys come in their order or are
/// missing; any other is a fault. A value whose key is missing is left unchanged.
class Members {
public:
    explicit Members(Source& source) : m_source(source) {
        if (!source.takeIf('{'))
            throw Fault("an object was expected");
        if (!source.takeIf('}'))
            m_key = source.key();
    }

    /// Gives the value of the next member to `read`, if the member has this key.
    template <class Read>
    void takeIf(std::string_view key, const Read& read) {
        if (m_key != key)
            return;
        read();
        if (m_source.takeIf(',')) {
            m_key = m_source.key();
        } else {
            m_source.expect('}');
            m_key.reset();
        }
    }
    /// Lets `read` read each item of an array.
    template <class Read>
    void takeArray(std::string_view key, const Read& read) {
        takeIf(key, [&] {
            if (!m_source.takeIf('['))
                throw Fault("an array was expected as " + quoted(key));
            if (m_source.takeIf(']'))
                return;
            do
                read(m_source);
            while (m_source.takeIf(','));
            m_source.expect(']');
        });
    }

    void take(std::string_view key, std::string& text) {
        takeIf(key, [&] { text = m_source.text(); });
    }
    void take(std::string_view key, HABMAddrValue& value) {
        takeIf(key, [&] { value = m_source.address(); });
    }
    void take(std::string_view key, HABMAddrAperture& aperture) {
        takeIf(key, [&] { aperture = m_source.aperture(); });
    }
    void take(std::string_view key, std::set<HABMAddrAperture>& apertures) {
        takeArray(key, [&](Source& source) { apertures.insert(source.aperture()); });
    }
    void take(std::string_view key, std::set<std::string>& texts) {
        takeArray(key, [&](Source& source) { texts.emplace(source.text()); });
    }
    void take(std::string_view key, unsigned& number) {
        takeIf(key, [&] {
            const Scalar found = m_source.scalar();
            const char* const end = found.text.data() + found.text.size();
            const auto [stop, error] = std::from_chars(found.text.data(), end, number);
            if (found.kind != Scalar::Kind::Number || error != std::errc() || stop != end)
                throw Fault(quoted(found.text) + " is no number for " + quoted(key));
        });
    }
    void take(std::string_view key, bool& flag) {
        takeIf(key, [&] {
            const Scalar::Kind kind = m_source.scalar().kind;
            if (kind != Scalar::Kind::True && kind != Scalar::Kind::False)
                throw Fault("true or false was expected as " + quoted(key));
            flag = kind == Scalar::Kind::True;
        });
    }
    template <class Fields, class Value>
    void take(const Field<Fields, Value>& field, Fields& fields) {
        take(field.key, fields.*field.place);
    }
    /// Any text but the one that is written for a value is a fault, whether unknown or a synonym;
    /// an empty one counts as missing.
    template <class Fields, class Value>
    void take(const Choice<Fields, Value>& field, Fields& fields) {
        std::string text;
        take(field.key, text);
        if (text.empty())
            return;
        const Value value = field.encode(text);
        if (field.decode(value) != text)
            throw Fault(quoted(text) + " is unknown as " + quoted(field.key));
        fields.*field.place = value;
    }
    void end() const {
        if (m_key)
            throw Fault("the key " + quoted(*m_key) + " is unknown, repeated or out of place");
    }

private:
    Source& m_source;
    std::optional<std::string_view> m_key; ///< of the next member, if there is one
};

} // namespace habm::bmj
