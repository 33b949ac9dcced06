// Reads input files, stored plain or protected, within the one limit that all readers share.
#pragma once

#include <cstdint>
#include <istream>
#include <string>

#include "base/FileReading.h"

namespace input {

/// The most bytes that an input file may hold once it is unpacked: the parameter
/// "general.maxInputMiB", 256 unless it is set. A value below 1 counts as 1, one above 4095 as
/// 4095 (texts of RapidJSON have less than 4 GiB), and one that isn't an integer as 256.
[[nodiscard]] std::uint64_t limit();

/// Reads a file whole, whichever way it is stored. The reason for a failure is that of
/// `base::FileContent`; for a file beyond the limit it names the parameter. Raises
/// `std::bad_alloc` only.
[[nodiscard]] base::FileContent readFile(const std::string& path);

/// Reads a file that is never stored protected in the same way.
[[nodiscard]] base::FileContent readPlainFile(const std::string& path);

/// Reads a stream to its end in the same way.
[[nodiscard]] base::FileContent readStream(std::istream& stream);

} // namespace input
