// Sums and products of values that may be unknown: an unknown part, or a result beyond 127 bits,
// makes the result unknown.
#pragma once

#include "workbench/ipxact/RegisterModel.h"

namespace tq::ipxact {

[[nodiscard]] inline Number plus(const Number& left, const Number& right) {
    Int128 sum = 0;
    if (!left || !right || __builtin_add_overflow(*left, *right, &sum))
        return std::nullopt;
    return sum;
}

[[nodiscard]] inline Number minus(const Number& left, const Number& right) {
    Int128 difference = 0;
    if (!left || !right || __builtin_sub_overflow(*left, *right, &difference))
        return std::nullopt;
    return difference;
}

[[nodiscard]] inline Number times(const Number& left, const Number& right) {
    Int128 product = 0;
    if (!left || !right || __builtin_mul_overflow(*left, *right, &product))
        return std::nullopt;
    return product;
}

/// Rounded up; unknown for a divisor below 1.
[[nodiscard]] inline Number dividedUp(const Number& number, const Number& divisor) {
    if (!number || !divisor || *divisor < 1)
        return std::nullopt;
    return *number / *divisor + (*number % *divisor > 0 ? 1 : 0);
}

/// The elements of an array over all dimensions: 1 without any, unknown where one is.
[[nodiscard]] inline Number countOf(const Array& array) {
    Number count = 1;
    for (const Dimension& dimension : array.dimensions)
        count =
            dimension.count && *dimension.count < 1 ? std::nullopt : times(count, dimension.count);
    return count;
}

/// From one element to the next: the stride, or `size` where elements lie side by side.
[[nodiscard]] inline Number strideOf(const Array& array, const Number& size) {
    return array.stride ? array.stride : size;
}

/// What a register or a register file takes, in address units.
[[nodiscard]] inline Number sizeOf(const Register& item, const Number& addressUnitBits) {
    return item.isFile ? item.range : dividedUp(item.size, addressUnitBits);
}

} // namespace tq::ipxact
