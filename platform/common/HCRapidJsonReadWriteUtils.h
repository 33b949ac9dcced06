// Helpers to read and build RapidJSON documents, and the reports of JSON files that can't be read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/JsonAccess.h"
#include "tq_export.h"

/// All static. Keys and texts are copied with the document's allocator.
class TQ_EXPORT HCRapidJsonReadWriteUtils {
public:
    /// Where the values of a plain document live.
    using Allocator = rapidjson::Document::AllocatorType;

    // Each adds a member at the end, without a look at the keys that are there. A `value` that
    // isn't an object is made an empty one first.
    static void AddStringProperty(rapidjson::Value& value, const std::string& key,
                                  const std::string& text, Allocator& allocator);
    static void AddBooleanProperty(rapidjson::Value& value, const std::string& key, bool flag,
                                   Allocator& allocator);
    static void AddStringArrayProperty(rapidjson::Value& value, const std::string& key,
                                       const std::vector<std::string>& texts, Allocator& allocator);
    /// Moves `child` in; it is null afterwards.
    static void AddGenericValueProperty(rapidjson::Value& value, const std::string& key,
                                        rapidjson::Value& child, Allocator& allocator);

    /// The text of the first member of that name. The empty text if there is none, if it isn't a
    /// string, or if `object` isn't an object.
    template <class Value>
    [[nodiscard]] static std::string GetStringProperty(const Value& object, std::string_view key) {
        const auto* member = base::findMember(object, key);
        return member == nullptr ? std::string() : std::string(base::textOf(*member));
    }

    /// What is wrong with the text that `document` was parsed from, and at which byte of it.
    template <class Document>
    [[nodiscard]] static std::string GetErrorMsgFromDocument(const Document& document) {
        return parseErrorText(document.GetParseError(), document.GetErrorOffset());
    }

    // Both raise `HEXError` with a sentence that names the file.
    [[noreturn]] static void errorReadingJsonFile(const std::string& file);
    [[noreturn]] static void errorParsingJsonFile(const std::string& file,
                                                  const std::string& message);

private:
    static std::string parseErrorText(rapidjson::ParseErrorCode code, std::size_t offset);
};
