// Checks of the rows of a hard block's tables that serve findings alone: the block is built from
// them all the same.
#pragma once

#include <string>
#include <vector>

#include "addressing/DefinitionFindings.h"
#include "addressing/DefinitionTables.h"

class HABMBlock;

namespace hbs_tables {

/// Bounds of ports that aren't vectors.
void checkPorts(const std::vector<HBSPortRow>& ports, const HBSTableFindings& findings);

/// Address blocks of one memory map that overlap, those without a size, and registers that are
/// outside their block, overlap or aren't aligned to their size. `module` is the memory map of the
/// rows that name none. The time is that of sorting the rows.
void checkAddresses(const std::string& module, const std::vector<HBSAddrBlockRow>& addrBlocks,
                    const std::vector<HBSRegisterRow>& registers, const HBSTableFindings& findings);

/// Lists of interfaces that name one that `block` doesn't have, or one of the other kind: address
/// blocks belong to targets, address segments to sources.
void checkInterfaceLists(const HABMBlock& block, const std::vector<HBSAddrBlockRow>& addrBlocks,
                         const std::vector<HBSAddrSegmentRow>& addrSegments,
                         const HBSTableFindings& findings);

} // namespace hbs_tables
