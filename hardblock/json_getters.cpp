#include "hardblock/json_getters.h"

#include <cstdint>
#include <cstring>
#include <exception>

#include "hardblock/messages.h"

namespace hardblock {

namespace {

int toIntOrZero(const std::string& text) {
    try {
        return std::stoi(text);
    } catch (const std::exception&) {
        return 0;
    }
}

std::string joinedTexts(const JsonValue& array) {
    std::string text;
    for (const auto& element : array.GetArray())
        if (element.IsString())
            text += element.GetString();
    return text;
}

} // namespace

const JsonValue* getJsonMember(const JsonValue& object, const std::string& key,
                               const bool& required) {
    if (object.IsObject())
        for (const auto& member : object.GetObject())
            if (member.name.GetStringLength() == key.size() &&
                std::memcmp(member.name.GetString(), key.data(), key.size()) == 0)
                return &member.value;
    if (required)
        ComMsgMgr::sendMsg::eval(1, __FILE__, __LINE__, kCategory, kMask, "@90-9@%s", key);
    return nullptr;
}

const char* jsonTypeName(rapidjson::Type type) {
    switch (type) {
    case rapidjson::kFalseType:
    case rapidjson::kTrueType:
        return "boolean";
    case rapidjson::kObjectType:
        return "object";
    case rapidjson::kArrayType:
        return "array";
    case rapidjson::kStringType:
        return "string";
    case rapidjson::kNumberType:
        return "number";
    case rapidjson::kNullType:
        break;
    }
    return "null";
}

void sendUnsuitable(const JsonValue& value, const std::string& key) {
    ComMsgMgr::sendMsg::eval(2, __FILE__, __LINE__, kCategory, kMask, "@90-8@%s%s",
                             jsonTypeName(value.GetType()), key);
}

int low32Bits(const JsonValue& integer) {
    const std::uint64_t bits =
        integer.IsUint64() ? integer.GetUint64() : static_cast<std::uint64_t>(integer.GetInt64());
    return static_cast<int>(static_cast<std::uint32_t>(bits));
}

bool getJsonBool(const JsonValue& object, const std::string& key, bool& result,
                 const bool& required) {
    const JsonValue* value = getJsonMember(object, key, required);
    if (value == nullptr)
        return false;
    if (value->IsBool()) {
        result = value->GetBool();
    } else if (value->IsString()) {
        result = std::string(value->GetString(), value->GetStringLength()) == "true";
    } else if (value->IsInt64()) {
        result = value->GetInt64() != 0;
    } else {
        sendUnsuitable(*value, key);
        return false;
    }
    return true;
}

bool getJsonInt(const JsonValue& object, const std::string& key, int& result,
                const bool& required) {
    const JsonValue* value = getJsonMember(object, key, required);
    if (value == nullptr)
        return false;
    if (value->IsString()) {
        result = toIntOrZero(value->GetString());
    } else if (value->IsBool()) {
        result = value->GetBool() ? 1 : 0;
    } else if (value->IsInt64()) {
        result = low32Bits(*value);
    } else {
        sendUnsuitable(*value, key);
        return false;
    }
    return true;
}

bool getJsonString(const JsonValue& object, const std::string& key, std::string& result,
                   const bool& required) {
    const JsonValue* value = getJsonMember(object, key, required);
    if (value == nullptr)
        return false;
    if (value->IsString()) {
        result = value->GetString();
    } else if (value->IsBool()) {
        result = value->GetBool() ? "true" : "false";
    } else if (value->IsInt64()) {
        result = std::to_string(value->GetInt64());
    } else if (value->IsArray()) {
        result = joinedTexts(*value);
    } else {
        sendUnsuitable(*value, key);
        return false;
    }
    return true;
}

} // namespace hardblock
