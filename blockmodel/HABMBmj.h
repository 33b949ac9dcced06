// The ".bmj" format: a block and all below it as JSON.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

class HABMBlock;

/// One JSON object: "format", "version" and "block", the top block.
///
/// An object holds its keys in a fixed order and leaves out those whose value is what a fresh
/// object has, so that equal blocks give equal bytes. Texts are byte strings. An address value is
/// its hexadecimal text, or the empty text if it is invalid; an aperture is the pair of its start
/// and size, a parameter, an attribute or a line of a port map the pair of its name and value.
namespace habm::bmj {

constexpr const char* kFormat = "tq block model";
/// Files of any other version are refused.
constexpr unsigned kVersion = 1;

/// Why a text can't be read. `what()` ends with the place, if there is one.
class Fault : public std::runtime_error {
public:
    explicit Fault(const std::string& reason) : std::runtime_error(reason), m_reason(reason) {}
    Fault(const std::string& reason, std::size_t offset)
        : std::runtime_error(reason + " (at byte " + std::to_string(offset) + ")"),
          m_reason(reason), m_offset(offset) {}

    [[nodiscard]] const std::string& reason() const { return m_reason; }
    /// The byte of the text at which the reading ended, from 0.
    [[nodiscard]] std::size_t offset() const { return m_offset; }

private:
    std::string m_reason;
    std::size_t m_offset = 0;
};

/// A file of more bytes is neither written nor read: RapidJSON counts the bytes of a text in 32
/// bits, and in such a file no text can be longer.
constexpr std::uint64_t kMostBytes = 0xFFFFFFFF;

/// Takes the next piece of a text. False if it can't; what comes after it is of no use then.
using Sink = std::function<bool(std::string_view)>;

/// Gives the text to the sink in pieces, of which only one is in memory at a time: mostly of 64
/// KiB, and as large as a single text with its escapes where that is more. False, with part of it
/// given, if the sink refuses a piece, if the whole has more than `kMostBytes` or if a single text
/// has more than a sixth of that.
[[nodiscard]] bool write(const HABMBlock& top, const Sink& sink);

/// Throws `Fault` for a text that isn't a whole block of this version, and `std::bad_alloc`. The
/// text is overwritten.
[[nodiscard]] std::unique_ptr<HABMBlock> fromText(std::string& text);

} // namespace habm::bmj
