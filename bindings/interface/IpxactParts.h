// What the files about register descriptions share.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>

#include "bindings/core/Convert.h"
#include "workbench/ipxact/BlockImport.h"
#include "workbench/ipxact/RegisterModel.h"

namespace tq::bindings {

void describeDesign(Interface& interface);
[[nodiscard]] std::unique_ptr<ipxact::Design>
readDesignFile(const std::string& path, const std::vector<std::string>& libraries);

/// Addresses, sizes and reset values, which may be negative where nobody can reach them.
template <>
struct Convert<ipxact::Number> {
    static const Type& type() { return plainType<Type::Kind::Address>(); }
    static Value to(const ipxact::Number& number, Call&) {
        Address address{number ? ipxact::hexText(*number) : std::string()};
        for (char& digit : address.hex) // as the addresses of the block model
            digit = digit >= 'A' && digit <= 'F' ? static_cast<char>(digit - 'A' + 'a') : digit;
        return {std::move(address)};
    }
};

/// A count of bits; none for one that is unknown.
[[nodiscard]] inline std::optional<std::int64_t> countOf(const ipxact::Number& number) {
    if (!number || *number < std::numeric_limits<std::int64_t>::min() ||
        *number > std::numeric_limits<std::int64_t>::max())
        return std::nullopt;
    return static_cast<std::int64_t>(*number);
}

} // namespace tq::bindings
