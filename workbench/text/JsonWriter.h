// JSON output of the workbench: indented, and always valid, for any bytes in the texts.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/JsonDocument.h"
#include "base/RapidJson.h"

namespace tq {

/// Builds one document in memory:
///
///     JsonWriter json;
///     json.beginObject();
///     json.member("name", name);
///     json.beginArray("rows");
///     ...
///     json.endArray();
///     json.endObject();
///     out << json.text();
///
/// Bytes of texts that aren't UTF-8 become U+FFFD. Numbers that JSON doesn't have (NaN, infinities)
/// become null. Raises `std::bad_alloc` when memory runs out.
class JsonWriter {
public:
    explicit JsonWriter(unsigned indent = 2);
    JsonWriter(const JsonWriter&) = delete;
    JsonWriter& operator=(const JsonWriter&) = delete;

    void beginObject() { m_writer.StartObject(); }
    void beginObject(std::string_view key) { writeKey(key), beginObject(); }
    void endObject() { m_writer.EndObject(); }
    void beginArray() { m_writer.StartArray(); }
    void beginArray(std::string_view key) { writeKey(key), beginArray(); }
    void endArray() { m_writer.EndArray(); }

    void value(std::string_view text);
    void value(const char* text) { value(std::string_view(text)); }
    void value(double number);
    void value(std::same_as<bool> auto flag) { m_writer.Bool(flag); }
    void value(std::unsigned_integral auto number) requires(!std::same_as<decltype(number), bool>) {
        m_writer.Uint64(number);
    }
    void value(std::signed_integral auto number) { m_writer.Int64(number); }
    void null() { m_writer.Null(); }
    /// A number that is already text, such as one with a fixed count of decimals.
    void rawNumber(std::string_view text);

    void member(std::string_view key, const auto& content) { writeKey(key), value(content); }
    void writeKey(std::string_view key);

    /// The document so far, with a line end.
    [[nodiscard]] std::string text() const;

private:
    using Buffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, JsonAllocator>;

    Buffer m_buffer;
    rapidjson::PrettyWriter<Buffer, rapidjson::UTF8<>, rapidjson::UTF8<>, JsonAllocator> m_writer;
};

} // namespace tq
