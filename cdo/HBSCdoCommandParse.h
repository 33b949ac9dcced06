// Addresses and values as a user typed them into a script command that writes a configuration
// sequence.
#pragma once

#include <cstdint>
#include <string>

#include "tq_export.h"

/// Turns a typed text into a number: hexadecimal after a leading "0x" in either letter case, else
/// decimal (a leading 0 means nothing). White space and a sign may precede a decimal number,
/// but a text that begins with "-" is invalid; " -1" wraps around to the highest number.
///
/// Fails with an `HTCErrors::command_failed`, where TEXT is the text as given:
/// - "user input is empty"
/// - "user input 'TEXT' is invalid": a leading minus sign, no number, or more after the number,
///   which counts before the range
/// - "user input 'TEXT' is out of range"
///
/// `errno` distinguishes a number out of range from one at the limit, and it isn't cleared
/// beforehand: an `ERANGE` that earlier code left there fails the next parse with the out-of-range
/// text, and only that failure clears it (not the one of a written form that is too long). An
/// invalid text whose digits overflow leaves `errno` at `ERANGE`.
class TQ_EXPORT HBSCdoCommandParse {
public:
    HBSCdoCommandParse() = delete;

    /// 0 to 18446744073709551615.
    [[nodiscard]] static std::uint64_t parseAddress(const std::string& text);
    /// 0 to 4294967295. A text with "0x" is out of range when it has more than ten characters,
    /// whatever its value.
    [[nodiscard]] static std::uint32_t parseValue(const std::string& text);
};
