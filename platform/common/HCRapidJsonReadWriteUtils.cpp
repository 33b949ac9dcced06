#include "HCRapidJsonReadWriteUtils.h"

#include "HEXError.h"

namespace {

using Allocator = HCRapidJsonReadWriteUtils::Allocator;

rapidjson::Value copied(const std::string& text, Allocator& allocator) {
    return {text.data(), static_cast<rapidjson::SizeType>(text.size()), allocator};
}

void add(rapidjson::Value& object, const std::string& key, rapidjson::Value& child,
         Allocator& allocator) {
    if (!object.IsObject())
        object.SetObject();
    object.AddMember(copied(key, allocator), child, allocator);
}

} // namespace

void HCRapidJsonReadWriteUtils::AddStringProperty(rapidjson::Value& value, const std::string& key,
                                                  const std::string& text, Allocator& allocator) {
    rapidjson::Value child = copied(text, allocator);
    add(value, key, child, allocator);
}

void HCRapidJsonReadWriteUtils::AddBooleanProperty(rapidjson::Value& value, const std::string& key,
                                                   bool flag, Allocator& allocator) {
    rapidjson::Value child(flag);
    add(value, key, child, allocator);
}

void HCRapidJsonReadWriteUtils::AddStringArrayProperty(rapidjson::Value& value,
                                                       const std::string& key,
                                                       const std::vector<std::string>& texts,
                                                       Allocator& allocator) {
    rapidjson::Value child(rapidjson::kArrayType);
    for (const auto& text : texts)
        child.PushBack(copied(text, allocator), allocator);
    add(value, key, child, allocator);
}

void HCRapidJsonReadWriteUtils::AddGenericValueProperty(rapidjson::Value& value,
                                                        const std::string& key,
                                                        rapidjson::Value& child,
                                                        Allocator& allocator) {
    add(value, key, child, allocator);
}

void HCRapidJsonReadWriteUtils::errorReadingJsonFile(const std::string& file) {
    throw HEXError("the JSON file '" + file + "' can't be read");
}

void HCRapidJsonReadWriteUtils::errorParsingJsonFile(const std::string& file,
                                                     const std::string& message) {
    throw HEXError("the JSON file '" + file + "' is malformed: " + message);
}

std::string HCRapidJsonReadWriteUtils::parseErrorText(rapidjson::ParseErrorCode code,
                                                      std::size_t offset) {
    // Our own documents end a parse only where the text is nested too deeply.
    const char* description = code == rapidjson::kParseErrorTermination
                                  ? "The values are nested too deeply."
                                  : rapidjson::GetParseError_En(code);
    return std::string(description) + " (at byte " + std::to_string(offset) + ")";
}
