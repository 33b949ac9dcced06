// Address maps as a page to explore.
#pragma once

#include <string>
#include <vector>

#include "tq_workbench_export.h"
#include "workbench/addressing/ConfiguredMap.h"

namespace tq {

/// A page for a browser that loads nothing: the initiators of each map with what they see, holes
/// and overlaps, blocks with their registers, a search by name, address and range, what is switched
/// off and why, and the findings of the checks. The place shown is in the page's fragment, so that
/// a link leads back to it. The maps are labelled with their configs' paths.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string
makeMapPage(const std::vector<const ConfiguredMap*>& maps, const std::string& title);

} // namespace tq
