// Letter case and numbers of ASCII texts, the same in every locale.
#pragma once

#include <string>
#include <string_view>

#include "tq_export.h"

/// Only the letters a to z are changed or matched without regard to case; other bytes are
/// themselves.
class TQ_EXPORT HSTStringUtils {
public:
    /// The text with the letters a to z made large; other bytes stay.
    [[nodiscard]] static std::string to_upper(std::string text);
    /// True for an empty prefix.
    [[nodiscard]] static bool istarts_with(std::string_view text, std::string_view prefix);
    /// The number at the start of the text as `atof` reads it, with "." as the decimal point
    /// whatever the locale is: leading white space, a sign and hexadecimal forms are taken. Text
    /// without a number gives 0; what a double can't hold becomes infinite or the nearest to zero.
    [[nodiscard]] static double to_double(const std::string& text);
};
