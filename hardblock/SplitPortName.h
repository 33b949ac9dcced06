// Takes port texts apart: "name[L:R]", "name[N]" and "name".
#pragma once

#include <string>

namespace hardblock {

/// Splits a port text into its bare name and the numbers of its range. The caller presets both
/// numbers to -1, the mark for "no range", which they keep where the text has none; the result is
/// then false.
///
/// The range is the text between the first "[" and the first "]" and is cut at each ":". A number
/// is read as `atoi` does, saturating at the ends of `int`. The first number that isn't -1 is the
/// left one, the last one after it the right one; a right number that is missing or -1 becomes the
/// left one. Nothing else is tested: brackets out of order make an empty range.
bool splitPortName(const std::string& text, std::string& name, int& right, int& left);

} // namespace hardblock
