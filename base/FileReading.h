// Reads a file or a stream whole, within a bound, and tells why it couldn't.
#pragma once

#include <cstdint>
#include <istream>
#include <optional>
#include <string>

namespace base {

/// What became of a reading.
enum class ReadOutcome {
    Whole,    ///< everything up to the end was read
    Missing,  ///< there is nothing of that name
    Unopened, ///< it can't be opened, or isn't a regular file
    Failed,   ///< reading failed on the way
    Damaged,  ///< the form that it is stored in is damaged or cut short
    TooLarge  ///< it holds more than the bound
};

struct FileContent {
    ReadOutcome outcome = ReadOutcome::Whole;
    std::string text{};   ///< what was read; empty where it is `TooLarge`
    std::string reason{}; ///< why it isn't whole, without the file's name: "it is a folder"

    [[nodiscard]] bool isWhole() const { return outcome == ReadOutcome::Whole; }
};

/// Why a path can't be opened for reading: the outcome `Missing` or `Unopened`. Absent for a
/// regular file that can be, also one that a link leads to. Nothing else is read, so that a FIFO or
/// a device can't make the caller wait.
[[nodiscard]] std::optional<FileContent> findObstacle(const std::string& path);

/// Reads a regular file. Raises `std::bad_alloc`.
[[nodiscard]] FileContent readFile(const std::string& path, std::uint64_t mostBytes);

/// Reads what a stream's buffer holds up to its end, which takes exceptions of the buffer for what
/// they are: an `std::ios_base::failure` with an error code of the system is `Failed`, any other is
/// `Damaged`. Raises `std::bad_alloc`.
[[nodiscard]] FileContent readStream(std::istream& stream, std::uint64_t mostBytes);

} // namespace base
