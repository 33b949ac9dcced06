// JSON documents that are read from files of others: no text, however hostile, harms the process.
#pragma once

#include <cstddef>
#include <istream>

#include "rapidjson_headers.h"
#include "tq_export.h"

/// Raises `std::bad_alloc` where RapidJSON's own allocator gives a null pointer that RapidJSON then
/// writes through.
class TQ_EXPORT JsonAllocator {
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
///     document.ParseStream(stream);
///     if (document.HasParseError())
///         complain(HCRapidJsonReadWriteUtils::GetErrorMsgFromDocument(document));
///
/// Four things differ from a plain document. A stream seems to end short of 4 GiB. Values nested
/// deeper than `kMostLevels` are a parse error (`kParseErrorTermination`), as a plain parse would
/// run out of stack. Numbers with a fraction or an exponent are read with the C library's
/// conversion, as RapidJSON's own arithmetic overflows on extreme exponents; what a double can't
/// hold becomes infinite or zero. Exhausted memory raises `std::bad_alloc`.
class TQ_EXPORT JsonDocument
    : public rapidjson::GenericDocument<rapidjson::UTF8<>, JsonPool, JsonAllocator> {
public:
    static constexpr std::size_t kMostLevels = 1000;

    explicit JsonDocument(rapidjson::Type type = rapidjson::kNullType);

    /// Reads to the end of the stream. On a parse error the value stays as it was. A read error of
    /// the stream looks like its end: ask `stream.bad()` afterwards.
    JsonDocument& ParseStream(std::istream& stream);

    [[nodiscard]] bool HasParseError() const { return m_result.IsError(); }
    [[nodiscard]] rapidjson::ParseErrorCode GetParseError() const { return m_result.Code(); }
    [[nodiscard]] std::size_t GetErrorOffset() const { return m_result.Offset(); }

private:
    rapidjson::ParseResult m_result;
};
