// Typed reading of the members of a JSON object, with messages for what is unsuitable.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/JsonTape.h"

namespace hardblock {

/// The value of the first member of that name. A missing member sends "@90-9@%s" with the key, but
/// only where it is required. What isn't an object has no members.
std::optional<base::JsonNode> getJsonMember(const base::JsonNode& object, std::string_view key,
                                            const bool& required);

/// The same for several keys at once, in the order of the keys, none of them required.
template <std::size_t N>
std::array<std::optional<base::JsonNode>, N>
getJsonMembers(const base::JsonNode& object, const std::array<std::string_view, N>& keys) {
    std::array<std::optional<base::JsonNode>, N> found;
    object.forEachMember([&](const base::JsonNode& name, const base::JsonNode& value) {
        const std::string_view text = name.text();
        for (std::size_t i = 0; i < N; ++i)
            if (!found[i] && keys[i] == text)
                found[i] = value;
    });
    return found;
}

/// "boolean", "object", "array", "string" or "number", else "null".
const char* jsonTypeName(base::JsonNode::Kind kind);

/// Sends "@90-8@%s%s": the value's type doesn't suit the key.
void sendUnsuitable(const base::JsonNode& value, std::string_view key);

/// The low 32 bits of an integer of up to 64 bits, signed or not. Absent for any other value.
std::optional<int> low32Bits(const base::JsonNode& value);

// The value getters store a result and return true; or they return false and leave the result
// untouched, for a missing member (see getJsonMember) and for a value of an unsuitable form, which
// sends "@90-8@%s%s" with the type's word and the key. Suitable are booleans, strings and integers
// that fit 64 bits signed; numbers with a fraction or an exponent are not.

/// A text is true only if it is "true"; an integer is true if it isn't zero.
bool getJsonBool(const base::JsonNode& object, std::string_view key, bool& result,
                 const bool& required);

/// A text as `std::stoi` reads it, 0 where that fails; a boolean is 1 or 0; of an integer the low
/// 32 bits.
bool getJsonInt(const base::JsonNode& object, std::string_view key, int& result,
                const bool& required);

/// A text up to its first NUL byte; "true" or "false"; the decimal text of an integer; of an array
/// all its texts, one after the other.
bool getJsonString(const base::JsonNode& object, std::string_view key, std::string& result,
                   const bool& required);

// The same for a member that was looked up before.
bool readJsonInt(const std::optional<base::JsonNode>& value, std::string_view key, int& result);
bool readJsonString(const std::optional<base::JsonNode>& value, std::string_view key,
                    std::string& result);

} // namespace hardblock
