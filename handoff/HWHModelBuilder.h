// From a connectivity file and the design's parameters to the model of a document.
#pragma once

#include <string>

#include "handoff/HWHConnectivity.h"
#include "handoff/HWHDesignParams.h"
#include "handoff/HWHModel.h"

namespace hwh {

/// `coreName` is the one of the system's facts; without one connections are read as those of the
/// core "yrel". The time grows with the text of the file, but for sorting.
[[nodiscard]] Model buildModel(const ConnectivityFile& file, DesignParams& design,
                               const std::string& coreName);

} // namespace hwh
