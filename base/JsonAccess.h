// A look at JSON values of any type: what has the wrong type counts as missing, and no assertion of
// RapidJSON is ever met. For the values of our own documents and of plain ones alike.
#pragma once

#include <string>
#include <string_view>

#include "base/RapidJson.h"

namespace base {

/// The bytes of a string value or of a member's name; empty for a value of another type.
template <class Value>
[[nodiscard]] std::string_view textOf(const Value& value) {
    return value.IsString() ? std::string_view(value.GetString(), value.GetStringLength())
                            : std::string_view();
}

/// The value of the first member of that name. Null if there is none, or if `object` isn't an
/// object.
template <class Value>
[[nodiscard]] const Value* findMember(const Value& object, std::string_view name) {
    if (object.IsObject())
        for (const auto& member : object.GetObject())
            if (textOf(member.name) == name)
                return &member.value;
    return nullptr;
}

/// The same; null also for a value that isn't an object.
template <class Value>
[[nodiscard]] const Value* findObject(const Value& object, std::string_view name) {
    const Value* value = findMember(object, name);
    return value != nullptr && value->IsObject() ? value : nullptr;
}

/// The same; null also for a value that isn't an array.
template <class Value>
[[nodiscard]] const Value* findArray(const Value& object, std::string_view name) {
    const Value* value = findMember(object, name);
    return value != nullptr && value->IsArray() ? value : nullptr;
}

/// Calls `visit(name, value)` for each member in file order, the name as a `std::string_view`. Does
/// nothing if `object` isn't an object.
template <class Value, class Visitor>
void forEachMember(const Value& object, Visitor&& visit) {
    if (object.IsObject())
        for (const auto& member : object.GetObject())
            visit(textOf(member.name), member.value);
}

/// Calls `visit(element)` for each element. Does nothing if `array` isn't an array.
template <class Value, class Visitor>
void forEachElement(const Value& array, Visitor&& visit) {
    if (array.IsArray())
        for (const auto& element : array.GetArray())
            visit(element);
}

} // namespace base
