// A handoff whose document is decided and not yet written.
#pragma once

#include <string>

#include "diagnostics/Diagnostic.h"
#include "handoff/HWHConnectivity.h"
#include "handoff/HWHDesignParams.h"
#include "handoff/HWHModel.h"
#include "handoff/HWHTables.h"

namespace hwh {

/// The file and the model of its document, which refers to the file.
struct Decision {
    /// Reads the file, by cells where the tool's parameters say so, and decides; with a sink also
    /// checks. Keys of `systemInfo` that are looked up and missing stay as empty entries.
    /// `designParams` has to outlive the object. Raises `HEXError` for a file that can't be read.
    Decision(const HWHTextMap& designParams, HWHTextMap& systemInfo,
             const std::string& connectivityFile, const tq::DiagnosticSink& sink = {});
    Decision(const Decision&) = delete;
    Decision& operator=(const Decision&) = delete;

    const ConnectivityFile file;
    DesignParams design;
    const Model model;
};

} // namespace hwh
