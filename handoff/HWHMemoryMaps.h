// Which slaves each master reaches.
#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <vector>

#include "handoff/HWHModel.h"
#include "handoff/HWHNameTable.h"

namespace hwh {

/// A master reaches every enabled slave that its excluded list doesn't name, by "SDKNAME" or by
/// instance name, on a core of several dies with ":" and the die's number behind it.
class MemoryMaps {
public:
    /// `model` has to outlive the object.
    explicit MemoryMaps(const Model& model);

    /// Numbers in `Model::slaves`, ascending. Valid until the next call.
    [[nodiscard]] std::span<const std::uint32_t> reachableFrom(const Module& master);

private:
    /// How excluded lists may name a slave.
    struct Names {
        std::uint32_t slave = 0;
        std::uint32_t instance = 0;
    };

    void nameSlaves();
    std::uint32_t internWithDie(std::string_view name, std::string_view die);
    bool markExcluded(const Module& master);

    const Model& m_model;
    NameTable m_table;                     ///< of the slaves; filled for the first excluded list
    std::deque<std::string> m_joinedNames; ///< with a die
    std::vector<Names> m_names;            ///< by slave
    std::vector<std::uint32_t> m_marks; ///< by name: the mark of the master that excluded it last
    std::uint32_t m_mark = 0;
    std::vector<std::uint32_t> m_reachable;
};

} // namespace hwh
