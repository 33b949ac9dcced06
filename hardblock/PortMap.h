// The port map of one port: mappings of its ranges onto ranges of other ports.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tq_export.h"

namespace hardblock {

/// The mapped side of one mapping. A default-constructed one has an empty name and leaves the two
/// integers unset: set them before it is copied or read.
struct TQ_EXPORT MappedPort {
    /// An empty pair.
    MappedPort();
    MappedPort(const MappedPort& other);
    /// Leaves `other` with an empty name and its numbers.
    MappedPort(MappedPort&& other) noexcept;
    MappedPort& operator=(const MappedPort& other);
    MappedPort& operator=(MappedPort&& other) noexcept;
    ~MappedPort();

    std::string m_name; ///< without a bit range
    int m_rightBit;     ///< second number of the range, -1 without a range
    int m_leftBit;      ///< first number of the range, -1 without a range; no look-up reads it
};

/// The mappings of one port, in order of insertion, as numbers for look-ups and as text.
///
/// A range L:R is descending: the right number is its lower bound. -1 means "no range". Nothing is
/// tested or merged; of overlapping mappings the first one added wins, and
/// one whose right number exceeds its left number never matches.
class TQ_EXPORT PortMap {
public:
    /// The port side's (right, left) with the mapped side.
    using MappedPorts = std::vector<std::pair<std::pair<int, int>, MappedPort>>;
    /// The mapped side and the port side, each as "name[L:R]", or the bare name without a range.
    using MappedRawPorts = std::vector<std::pair<std::string, std::string>>;

    /// A port map without entries.
    PortMap();

    /// The port's name, without a bit range.
    [[nodiscard]] std::string getName() const;
    void setName(const std::string& name);

    // The vectors themselves. They have the same length and order as long as only `insert`
    // fills them.
    [[nodiscard]] MappedPorts& getMappedPorts();
    [[nodiscard]] MappedRawPorts& getMappedRawPorts();

    /// Appends one mapping to both vectors. The names are bare; neither is changed.
    void insert(std::string& portName, int portRight, int portLeft, std::string& mappedName,
                int mappedRight, int mappedLeft);

    /// The name that a bit is mapped to by a mapping whose port side has the numbers `right`
    /// and `left`: "name", or "name[N]". The mapped side's left number isn't looked at, so N may
    /// lie beyond it. N wraps in 32 bits. The empty text for bit -1 of a port side with a range.
    [[nodiscard]] std::string getPortName(int bit, const MappedPort& mapped, int right,
                                          int left) const;

    /// `getPortName` of the first mapping that holds the bit or has no port range; the empty text
    /// if there is none. Bit -1 asks for the whole port. The text is neither read nor written.
    /// Linear in the number of mappings.
    [[nodiscard]] std::string getMappedPortName(std::string& ignored, int bit) const;

private:
    std::string m_name;
    MappedPorts m_mappedPorts;
    MappedRawPorts m_mappedRawPorts;
};

} // namespace hardblock
