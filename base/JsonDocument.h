// JSON documents read from files that anyone may have written: no text harms the process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/RapidJson.h"

/// Raises `std::bad_alloc` where RapidJSON's own allocator gives a null pointer that RapidJSON then
/// writes through.
class JsonAllocator {
public:
    static const bool kNeedFree = true;

    void* Malloc(std::size_t size);
    void* Realloc(void* memory, std::size_t oldSize, std::size_t newSize);
    static void Free(void* memory);
};

using JsonPool = rapidjson::MemoryPoolAllocator<JsonAllocator>;
using JsonValue = rapidjson::GenericValue<rapidjson::UTF8<>, JsonPool>;

/// A RapidJSON document with the memory pool's default chunks, read as with the default flags:
///
///     JsonDocument document;
///     document.Parse(text);
///     if (document.HasParseError())
///         complain(HCRapidJsonReadWriteUtils::GetErrorMsgFromDocument(document));
///
/// Five things differ from a plain document. A NUL byte doesn't end the text: after the root
/// value only white space may follow. Values nested deeper than `kMostLevels` are a parse error
/// (`kParseErrorTermination`), as a plain parse would run out of stack. Numbers with a fraction or
/// an exponent are read with the C library's conversion, as RapidJSON's own arithmetic overflows on
/// extreme exponents; what is too small for a double becomes zero. A zero may have any exponent.
/// Exhausted memory raises `std::bad_alloc`.
class JsonDocument : public rapidjson::GenericDocument<rapidjson::UTF8<>, JsonPool, JsonAllocator> {
public:
    static constexpr std::size_t kMostLevels = 1000;
    /// RapidJSON counts the bytes of a text in 32 bits. A longer text is a parse error.
    static constexpr std::size_t kMostBytes = 0xFFFFFFFF;

    struct Options {
        std::size_t mostLevels = kMostLevels; ///< at most `kMostLevels`
        std::size_t mostValues = kMostBytes;  ///< more are a `kParseErrorTermination`, too
        bool validatesEncoding = false;       ///< text that isn't UTF-8 is then a parse error
        bool keepsPlaces = false;             ///< for `offsets`
    };

    explicit JsonDocument(rapidjson::Type type = rapidjson::kNullType);

    /// Reads the whole text, which isn't needed afterwards. On a parse error the value stays as it
    /// was.
    JsonDocument& Parse(std::string_view text, const Options& options);
    JsonDocument& Parse(std::string_view text) { return Parse(text, Options()); }

    [[nodiscard]] bool HasParseError() const { return m_result.IsError(); }
    [[nodiscard]] rapidjson::ParseErrorCode GetParseError() const { return m_result.Code(); }
    [[nodiscard]] std::size_t GetErrorOffset() const { return m_result.Offset(); }

    /// Whether the parse ended at `Options::mostValues`; names count, too.
    [[nodiscard]] bool hasTooManyValues() const { return m_hasTooManyValues; }

    /// The bytes of the text at which the values and the names of members start, in the order of
    /// the text: an array or an object ahead of what it holds, a name ahead of its value. Empty
    /// unless the text was parsed with `keepsPlaces`, and after a parse error.
    [[nodiscard]] const std::vector<std::uint32_t>& offsets() const { return m_offsets; }

private:
    rapidjson::ParseResult m_result;
    bool m_hasTooManyValues = false;
    std::vector<std::uint32_t> m_offsets;
};

/// The text with the exponents of all zeros cleared, from a place outside any string on. RapidJSON
/// refuses a large exponent without a look at the digits before it.
[[nodiscard]] std::string withoutExponentsOfZeros(std::string text, std::size_t from);
