// Where in the tables of hard blocks the objects of a definition come from.
#pragma once

#include <string>

#include "addressing/HBSTablePlaces.h"
#include "blockmodel/HABM.h"
#include "diagnostics/Diagnostic.h"

namespace tq {

/// Objects are those of a definition or an instance of it. The places are empty if the folder of
/// the hard blocks is.
class DefinitionPlaces {
public:
    explicit DefinitionPlaces(const std::string& hardblocks)
        : m_isOn(!hardblocks.empty()), m_places(hardblocks) {}

    [[nodiscard]] Place of(const HABMAddrBlock& block, const std::string& key);
    [[nodiscard]] Place of(const HABMRegister& reg, const std::string& key);
    [[nodiscard]] Place of(const HABMAddrSegment& segment, const std::string& key);
    [[nodiscard]] Place of(const HABMInterface& interface, const std::string& key);
    /// Of a sub-block, in the table of the block around it.
    [[nodiscard]] Place of(const HABMBlock& block, const std::string& key);
    /// The compiled file that a block comes from.
    [[nodiscard]] Place ofFile(const HABMBlock& block);

private:
    /// `owner` is the block whose tables hold the row.
    [[nodiscard]] Place find(const HABMBlock& owner, const std::string& table,
                             const HBSTablePlaces::Row& row, const std::string& key);

    bool m_isOn;
    HBSTablePlaces m_places;
};

/// The third field of a block's VLNV, by which its definition is found; empty if it can't be split.
[[nodiscard]] std::string definitionNameOf(const HABMBlock& block);

} // namespace tq
