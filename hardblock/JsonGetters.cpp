#include "hardblock/JsonGetters.h"

#include <charconv>
#include <cstdint>
#include <exception>
#include <system_error>

#include "hardblock/Messages.h"

namespace hardblock {

using base::JsonNode;

namespace {

template <class Integer>
std::optional<Integer> integerOf(const JsonNode& value) {
    const std::string_view text = value.text();
    Integer number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = error == std::errc() && stop == text.data() + text.size();
    return value.kind() == JsonNode::Kind::Number && isWhole ? std::optional(number) : std::nullopt;
}

std::string_view upToNul(std::string_view text) {
    return text.substr(0, text.find('\0'));
}

int toIntOrZero(std::string_view text) {
    try {
        return std::stoi(std::string(text));
    } catch (const std::exception&) {
        return 0;
    }
}

std::string joinedTexts(const JsonNode& array) {
    std::string text;
    array.forEachElement([&](const JsonNode& element) {
        if (element.isString())
            text += upToNul(element.text());
    });
    return text;
}

} // namespace

std::optional<JsonNode> getJsonMember(const JsonNode& object, std::string_view key,
                                      const bool& required) {
    std::optional<JsonNode> found;
    object.forEachMember([&](const JsonNode& name, const JsonNode& value) {
        if (!found && name.text() == key)
            found = value;
    });
    if (!found && required)
        ComMsgMgr::sendMsg::eval(1, __FILE__, __LINE__, kCategory, kMask, "@90-9@%s",
                                 std::string(key));
    return found;
}

const char* jsonTypeName(JsonNode::Kind kind) {
    switch (kind) {
    case JsonNode::Kind::Boolean:
        return "boolean";
    case JsonNode::Kind::Object:
        return "object";
    case JsonNode::Kind::Array:
        return "array";
    case JsonNode::Kind::String:
        return "string";
    case JsonNode::Kind::Number:
        return "number";
    case JsonNode::Kind::Null:
        break;
    }
    return "null";
}

void sendUnsuitable(const JsonNode& value, std::string_view key) {
    ComMsgMgr::sendMsg::eval(2, __FILE__, __LINE__, kCategory, kMask, "@90-8@%s%s",
                             jsonTypeName(value.kind()), std::string(key));
}

std::optional<int> low32Bits(const JsonNode& value) {
    if (const auto number = integerOf<std::int64_t>(value))
        return static_cast<int>(static_cast<std::uint32_t>(*number));
    if (const auto number = integerOf<std::uint64_t>(value))
        return static_cast<int>(static_cast<std::uint32_t>(*number));
    return std::nullopt;
}

bool getJsonBool(const JsonNode& object, std::string_view key, bool& result, const bool& required) {
    const auto value = getJsonMember(object, key, required);
    if (!value)
        return false;
    if (value->kind() == JsonNode::Kind::Boolean || value->isString()) {
        result = value->text() == "true";
    } else if (const auto number = integerOf<std::int64_t>(*value)) {
        result = *number != 0;
    } else {
        sendUnsuitable(*value, key);
        return false;
    }
    return true;
}

bool readJsonInt(const std::optional<JsonNode>& value, std::string_view key, int& result) {
    if (!value)
        return false;
    if (value->isString()) {
        result = toIntOrZero(upToNul(value->text()));
    } else if (value->kind() == JsonNode::Kind::Boolean) {
        result = value->text() == "true" ? 1 : 0;
    } else if (integerOf<std::int64_t>(*value)) {
        result = *low32Bits(*value);
    } else {
        sendUnsuitable(*value, key);
        return false;
    }
    return true;
}

bool readJsonString(const std::optional<JsonNode>& value, std::string_view key,
                    std::string& result) {
    if (!value)
        return false;
    if (value->isString()) {
        result = upToNul(value->text());
    } else if (value->kind() == JsonNode::Kind::Boolean) {
        result = value->text();
    } else if (const auto number = integerOf<std::int64_t>(*value)) {
        result = std::to_string(*number);
    } else if (value->isArray()) {
        result = joinedTexts(*value);
    } else {
        sendUnsuitable(*value, key);
        return false;
    }
    return true;
}

bool getJsonInt(const JsonNode& object, std::string_view key, int& result, const bool& required) {
    return readJsonInt(getJsonMember(object, key, required), key, result);
}

bool getJsonString(const JsonNode& object, std::string_view key, std::string& result,
                   const bool& required) {
    return readJsonString(getJsonMember(object, key, required), key, result);
}

} // namespace hardblock
