// Typed reading of the members of a JSON object, with messages for what is unsuitable.
#pragma once

#include <string>

#include "JsonDocument.h"

namespace hardblock {

/// The value of the first member of that name, or null. A missing member sends "@90-9@%s" with the
/// key, but only where it is required. What isn't an object has no members.
const JsonValue* getJsonMember(const JsonValue& object, const std::string& key,
                               const bool& required);

/// "boolean", "object", "array", "string" or "number", else "null".
const char* jsonTypeName(rapidjson::Type type);

/// Sends "@90-8@%s%s": the value's type doesn't suit the key.
void sendUnsuitable(const JsonValue& value, const std::string& key);

/// The low 32 bits of an integer of up to 64 bits, signed or not.
int low32Bits(const JsonValue& integer);

// The value getters store a result and return true; or they return false and leave the result
// untouched, for a missing member (see getJsonMember) and for a value of an unsuitable form, which
// sends "@90-8@%s%s" with the type's word and the key. Suitable are booleans, strings and integers
// that fit 64 bits signed; numbers with a fraction or an exponent are not.

/// A text is true only if it is "true"; an integer is true if it isn't zero.
bool getJsonBool(const JsonValue& object, const std::string& key, bool& result,
                 const bool& required);

/// A text as `std::stoi` reads it, 0 where that fails; a boolean is 1 or 0; of an integer the low
/// 32 bits.
bool getJsonInt(const JsonValue& object, const std::string& key, int& result, const bool& required);

/// A text up to its first NUL byte; "true" or "false"; the decimal text of an integer; of an array
/// all its texts, one behind the other.
bool getJsonString(const JsonValue& object, const std::string& key, std::string& result,
                   const bool& required);

} // namespace hardblock
