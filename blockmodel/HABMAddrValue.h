// An address or a data value of a device: a number of up to 127 bits, or none.
#pragma once

#include <cstdint>
#include <string>

#include "tq_export.h"

/// A value type of 16 bytes, as a design holds millions. A 64-bit device needs 64 bits and the
/// power of two above them. A value is either valid, and then holds a number, or invalid; a fresh
/// value is invalid. No operation throws for its input: a text that can't be read and a result that
/// doesn't fit are invalid.
///
///     HABMAddrValue size("64K");
///     size.getHexStringValue(0);  // "0x10000"
///     size.getAbrvStringValue();  // "64K"
///     size.log2();                // 16
class TQ_EXPORT HABMAddrValue {
public:
    constexpr HABMAddrValue() = default;

    /// Reads a text: "0x" or "0X" and hexadecimal digits of either case, or decimal digits, which
    /// one of the letters K, M, G and T (of either case) may follow for a multiple of 2^10, 2^20,
    /// 2^30 or 2^40. Anything else is invalid: an empty text, a sign, a blank, a digit group mark,
    /// a number beyond 127 bits. E is no unit, so that a forgotten "0x"
    /// doesn't turn "1e" into a size.
    HABMAddrValue(const std::string& text);
    constexpr explicit HABMAddrValue(std::uint64_t number) : m_high(kValid), m_low(number) {}

    /// False for a value that was never set or couldn't be read or computed.
    [[nodiscard]] bool isValid() const { return m_high != 0; }
    /// The lowest 64 bits of the number; 0 for an invalid value.
    [[nodiscard]] std::uint64_t getLowBits() const { return m_low; }

    /// Numeric order; an invalid value is less than every valid one and equals any invalid one.
    bool operator<(const HABMAddrValue& other) const {
        return m_high != other.m_high ? m_high < other.m_high : m_low < other.m_low;
    }
    bool operator==(const HABMAddrValue& other) const {
        return m_high == other.m_high && m_low == other.m_low;
    }
    bool operator!=(const HABMAddrValue& other) const { return !(*this == other); }

    /// The sum and the difference; invalid if an operand is, or if the result is beyond 127 bits
    /// or below zero.
    [[nodiscard]] HABMAddrValue plus(const HABMAddrValue& other) const;
    [[nodiscard]] HABMAddrValue minus(const HABMAddrValue& other) const;

    /// Smallest power of two that isn't below the value, 1 for 0; invalid for an invalid value and
    /// for one above 2^126.
    [[nodiscard]] HABMAddrValue roundUpPow2() const;
    /// Binary logarithm, rounded down; 0 for 0 and for an invalid value.
    [[nodiscard]] unsigned int log2() const;

    /// "0x" and lower case digits, filled with zeros to `width` bits, at most 128; 0 fills nothing.
    /// Tcl's expr reads it. An invalid value gives the text of zero, here and in the next.
    [[nodiscard]] std::string getHexStringValue(const unsigned int& width) const;
    /// The same with upper case digits, which people tell apart more easily.
    [[nodiscard]] std::string getPrettyHexStringValue(const unsigned int& width) const;
    /// Short form of a size: "4K", "16M", "2G" or "3T", with the largest unit that the value is a
    /// multiple of, else the text of getHexStringValue. The constructor reads both.
    [[nodiscard]] std::string getAbrvStringValue() const;

private:
    struct Wide;

    /// The top bit, so that valid values compare greater than invalid ones, whose bits are all 0.
    static constexpr std::uint64_t kValid = std::uint64_t{1} << 63;

    [[nodiscard]] std::uint64_t highHalf() const { return m_high & ~kValid; }

    std::uint64_t m_high = 0;
    std::uint64_t m_low = 0;
};
