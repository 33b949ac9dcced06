#include "workbench/text/JsonWriter.h"

#include <cmath>

#include "workbench/text/Text.h"

namespace tq {

JsonWriter::JsonWriter(unsigned indent) : m_writer(m_buffer) {
    m_writer.SetIndent(' ', indent);
}

void JsonWriter::value(std::string_view text) {
    const std::string valid = validUtf8(text);
    m_writer.String(valid.data(), static_cast<rapidjson::SizeType>(valid.size()));
}

void JsonWriter::value(double number) {
    if (std::isfinite(number))
        m_writer.Double(number);
    else
        m_writer.Null();
}

void JsonWriter::rawNumber(std::string_view text) {
    m_writer.RawValue(text.data(), text.size(), rapidjson::kNumberType);
}

void JsonWriter::writeKey(std::string_view key) {
    const std::string valid = validUtf8(key);
    m_writer.Key(valid.data(), static_cast<rapidjson::SizeType>(valid.size()));
}

std::string JsonWriter::text() const {
    return std::string(m_buffer.GetString(), m_buffer.GetSize()) + "\n";
}

} // namespace tq
