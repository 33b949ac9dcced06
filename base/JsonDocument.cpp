#include "base/JsonDocument.h"

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cstdlib>
#include <new>
#include <string>
#include <system_error>
#include <utility>

namespace {

using Document = rapidjson::GenericDocument<rapidjson::UTF8<>, JsonPool, JsonAllocator>;
using Stream = rapidjson::MemoryStream;

/// False, with `value` undefined, for a number with a fraction or an exponent or out of range.
template <class Integer>
bool readInteger(std::string_view text, Integer& value) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc{} && stop == end;
}

/// Not `std::from_chars`, which gives no value for what a double can't hold. `text` ends in a zero.
double toDouble(const char* text) {
    static const locale_t classic = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(text, nullptr, classic);
}

/// Where tokens start in a text. The iterative parser is at a bracket when it reports it, but just
/// after any other token, so the start of those is found by looking back.
class TokenStarts {
public:
    TokenStarts(std::string_view text, const Stream& stream, bool isKept)
        : m_text(text), m_stream(stream), m_isKept(isKept) {}

    [[nodiscard]] std::vector<std::uint32_t> takeOffsets() { return std::move(m_offsets); }

    void addBefore(std::size_t bytes) {
        if (m_isKept)
            m_offsets.push_back(static_cast<std::uint32_t>(m_stream.Tell() - bytes));
    }
    /// Inside a string every quote is escaped, so the first unescaped one before the end opens it.
    void addString() {
        if (!m_isKept)
            return;
        std::size_t quote = m_stream.Tell() - 1;
        do
            quote = m_text.rfind('"', quote - 1);
        while (isEscaped(quote));
        m_offsets.push_back(static_cast<std::uint32_t>(quote));
    }

private:
    [[nodiscard]] bool isEscaped(std::size_t position) const {
        std::size_t backslashes = 0;
        while (backslashes < position && m_text[position - 1 - backslashes] == '\\')
            ++backslashes;
        return backslashes % 2 == 1;
    }

    std::string_view m_text;
    const Stream& m_stream;
    bool m_isKept;
    std::vector<std::uint32_t> m_offsets;
};

/// Passes the reader's events to the document, counts the levels and the values and reads the
/// numbers.
class Guard {
public:
    Guard(Document& document, TokenStarts& starts, const JsonDocument::Options& options)
        : m_document(document), m_starts(starts), m_options(options) {}

    [[nodiscard]] bool hasTooManyValues() const { return m_values > m_options.mostValues; }

    bool Null() {
        m_starts.addBefore(4);
        return count() && m_document.Null();
    }
    bool Bool(bool value) {
        m_starts.addBefore(value ? 4 : 5);
        return count() && m_document.Bool(value);
    }
    // Numbers come as text (kParseNumbersAsStringsFlag), so these are never called.
    bool Int(int) { return false; }
    bool Uint(unsigned) { return false; }
    bool Int64(std::int64_t) { return false; }
    bool Uint64(std::uint64_t) { return false; }
    bool Double(double) { return false; }
    bool RawNumber(const char* text, rapidjson::SizeType length, bool) {
        m_starts.addBefore(length);
        if (!count())
            return false;
        const std::string_view number(text, length);
        std::int64_t negative = 0;
        std::uint64_t positive = 0;
        if (readInteger(number, positive))
            return m_document.Uint64(positive);
        if (readInteger(number, negative))
            return m_document.Int64(negative);
        return m_document.Double(toDouble(text));
    }
    bool String(const char* text, rapidjson::SizeType length, bool copy) {
        m_starts.addString();
        return count() && m_document.String(text, length, copy);
    }
    bool Key(const char* text, rapidjson::SizeType length, bool copy) {
        m_starts.addString();
        return count() && m_document.Key(text, length, copy);
    }
    bool StartObject() { return enter() && m_document.StartObject(); }
    bool EndObject(rapidjson::SizeType count) { return leave() && m_document.EndObject(count); }
    bool StartArray() { return enter() && m_document.StartArray(); }
    bool EndArray(rapidjson::SizeType count) { return leave() && m_document.EndArray(count); }

private:
    bool count() {
        ++m_values;
        return !hasTooManyValues();
    }
    bool enter() {
        m_starts.addBefore(0);
        return count() && ++m_levels <= m_options.mostLevels;
    }
    bool leave() {
        --m_levels;
        return true;
    }

    Document& m_document;
    TokenStarts& m_starts;
    const JsonDocument::Options& m_options;
    std::size_t m_levels = 0;
    std::size_t m_values = 0;
};

template <unsigned kMoreFlags>
rapidjson::ParseResult parse(Stream& stream, Guard& guard) {
    constexpr unsigned kFlags = rapidjson::kParseDefaultFlags | rapidjson::kParseIterativeFlag |
                                rapidjson::kParseNumbersAsStringsFlag | kMoreFlags;
    rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, JsonAllocator> reader;
    return reader.Parse<kFlags>(stream, guard);
}

/// The end of the number or string that starts at `from`, a quote, a "-" or a digit.
std::size_t endOfToken(std::string_view text, std::size_t from) {
    if (text[from] != '"')
        return std::min(text.find_first_not_of("+-.0123456789Ee", from), text.size());
    std::size_t end = from + 1;
    while (end < text.size() && text[end] != '"')
        end += text[end] == '\\' ? 2U : 1U;
    return std::min(end + 1, text.size());
}

} // namespace

std::string withoutExponentsOfZeros(std::string text, std::size_t from) {
    constexpr const char* kTokenStarts = "\"-0123456789";
    while ((from = text.find_first_of(kTokenStarts, from)) != std::string::npos) {
        const std::size_t end = endOfToken(text, from);
        const std::size_t exponent = text.find_first_not_of("-.0", from);
        if (exponent < end && (text[exponent] == 'e' || text[exponent] == 'E'))
            std::replace_if(
                text.begin() + static_cast<std::ptrdiff_t>(exponent),
                text.begin() + static_cast<std::ptrdiff_t>(end),
                [](char c) { return c >= '1' && c <= '9'; }, '0');
        from = end;
    }
    return text;
}

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

JsonDocument& JsonDocument::Parse(std::string_view text, const Options& options) {
    m_offsets.clear();
    if (text.size() > kMostBytes) {
        m_result.Set(rapidjson::kParseErrorUnspecificSyntaxError, kMostBytes);
        return *this;
    }
    Stream stream(text.data(), text.size());
    TokenStarts starts(text, stream, options.keepsPlaces);
    auto read = [&](Document& document) {
        Guard guard(document, starts, options);
        m_result = options.validatesEncoding
                       ? parse<rapidjson::kParseValidateEncodingFlag>(stream, guard)
                       : parse<rapidjson::kParseNoFlags>(stream, guard);
        m_hasTooManyValues = guard.hasTooManyValues();
        // The reader takes a NUL byte for the end.
        if (!m_result.IsError() && stream.Tell() != text.size())
            m_result.Set(rapidjson::kParseErrorDocumentRootNotSingular, stream.Tell());
        return !m_result.IsError();
    };
    Populate(read);
    if (m_result.Code() == rapidjson::kParseErrorNumberTooBig) {
        const std::string cleared = withoutExponentsOfZeros(std::string(text), m_result.Offset());
        if (cleared != text)
            return Parse(cleared, options);
    }
    if (options.keepsPlaces && !m_result.IsError())
        m_offsets = starts.takeOffsets();
    return *this;
}
