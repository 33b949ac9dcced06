// How the connectivity reader looks at JSON values: nothing here asserts, whatever the value is.
#pragma once

#include <string>
#include <string_view>

#include "JsonDocument.h"
#include "handoff/HWHTables.h"

namespace hwh {

template <class Member>
[[nodiscard]] std::string_view nameOf(const Member& member) {
    return {member.name.GetString(), member.name.GetStringLength()};
}

/// The text, or the empty one for a value of another type.
[[nodiscard]] inline std::string textOf(const JsonValue& value) {
    return value.IsString() ? std::string(value.GetString(), value.GetStringLength())
                            : std::string();
}

/// The first member of that name, or null; also null where `object` is none.
[[nodiscard]] inline const JsonValue* findMember(const JsonValue& object, std::string_view name) {
    if (object.IsObject())
        for (const auto& member : object.GetObject())
            if (nameOf(member) == name)
                return &member.value;
    return nullptr;
}

[[nodiscard]] inline const JsonValue* findObject(const JsonValue& object, std::string_view name) {
    const JsonValue* value = findMember(object, name);
    return value != nullptr && value->IsObject() ? value : nullptr;
}

[[nodiscard]] inline const JsonValue* findArray(const JsonValue& object, std::string_view name) {
    const JsonValue* value = findMember(object, name);
    return value != nullptr && value->IsArray() ? value : nullptr;
}

/// Calls `visit(name, value)` for each member, if `object` is one.
template <class Visitor>
void forEachMember(const JsonValue& object, Visitor&& visit) {
    if (object.IsObject())
        for (const auto& member : object.GetObject())
            visit(nameOf(member), member.value);
}

/// Calls `visit(element)` for each element, if `array` is one.
template <class Visitor>
void forEachElement(const JsonValue& array, Visitor&& visit) {
    if (array.IsArray())
        for (const JsonValue& element : array.GetArray())
            visit(element);
}

/// Calls `visit(name, value)` for each member of each object in an array.
template <class Visitor>
void forEachMemberOfElements(const JsonValue& array, Visitor&& visit) {
    forEachElement(array, [&](const JsonValue& element) { forEachMember(element, visit); });
}

/// Puts the members of an object into `texts`.
inline void copyTexts(const JsonValue& object, HWHTextMap& texts) {
    forEachMember(object, [&](std::string_view name, const JsonValue& value) {
        texts[std::string(name)] = textOf(value);
    });
}

} // namespace hwh
