// Ports found by module and name.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "handoff/HWHModel.h"
#include "handoff/HWHNameTable.h"

namespace hwh {

/// A module and one of its ports, or the top and an external port.
struct EndName {
    std::string_view module;
    std::string_view port;

    bool operator==(const EndName&) const = default;
};

/// Numbers ends in the order in which they are added.
class EndTable {
public:
    /// The number of the end, new or not.
    std::uint32_t add(const EndName& end) {
        const std::uint32_t known = find(end);
        if (known != kNone)
            return known;
        const auto number = static_cast<std::uint32_t>(m_ends.size());
        m_ends.push_back(end);
        m_index.insert(hashOf(end), number);
        return number;
    }
    /// The number of the end, or `kNone`.
    [[nodiscard]] std::uint32_t find(const EndName& end) const {
        return m_index.find(hashOf(end),
                            [&](std::uint32_t number) { return m_ends[number] == end; });
    }
    [[nodiscard]] std::size_t size() const { return m_ends.size(); }

private:
    static std::size_t hashOf(const EndName& end) {
        const std::hash<std::string_view> hash;
        return hash(end.module) * 31 + hash(end.port);
    }

    std::vector<EndName> m_ends;
    HashIndex m_index;
};

} // namespace hwh
