// The values that go between scripts and the library, the same for every language.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "bindings/core/Object.h"

namespace tq::bindings {

struct Value;
using List = std::vector<Value>;
/// In the order in which a reader wants them.
using Dict = std::vector<std::pair<std::string, Value>>;

/// An address or size of up to 127 bits; an empty text for one that isn't known.
struct Address {
    std::string hex; ///< "0xff00"
};

struct Value {
    std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string, Address,
                 ObjectRef, List, Dict>
        content;

    [[nodiscard]] bool isNone() const { return content.index() == 0; }
};

/// What a value may be, for conversions and for the descriptions of the interface.
struct Type {
    enum class Kind {
        None,
        Bool,
        Int,
        Float,
        Text,
        Address,
        Object,
        Sequence,
        Mapping,
        Record,
        Json
    };

    struct Field {
        const char* name;
        const Type* type;
    };

    Kind kind = Kind::None;
    const ClassInfo* object = nullptr; ///< of an Object
    const Type* element = nullptr;     ///< of a Sequence and of the values of a Mapping
    const char* record = nullptr;      ///< name of a Record
    std::vector<Field> fields;         ///< of a Record
    bool isOptional = false;           ///< may also be none
};

/// "a number", "a list of texts": for messages.
[[nodiscard]] TQ_BINDINGS_EXPORT std::string nameOf(const Type& type);

} // namespace tq::bindings
