// Checks a well-formed connectivity file for likely mistakes: names of nothing, ranges that
// overlap, frequencies that can't be read.
#pragma once

#include "diagnostics/Diagnostic.h"
#include "handoff/HWHConnectivity.h"
#include "handoff/HWHDesignParams.h"
#include "handoff/HWHModel.h"

namespace hwh {

/// Reports warnings on what is in the document, one kind after the other:
///
/// - "unknown-enable-parameter": the instance counts as enabled. "enable-value": it does too,
///   although the value looks like a no.
/// - "unknown-excluded-slave", "unknown-entry" (of "external_addressing")
/// - "missing-far-port": a connection to nothing. "ambiguous-port": two ports whose names join to
///   one, so that their nets do. "two-names": a net with two names.
/// - "unresolved-parameter": a value that looks like a name of the design's parameters and is none
/// - "unreadable-frequency", "frequency-overflow"
/// - "unreadable-address", "missing-address", "empty-range" of a slave, and "overlapping-ranges" of
///   two in the map of a master
///
/// `design` is what the model was built with, `params` its map. The time grows with the file and
/// the document. `file` was read with a sink.
void checkMeaning(const ConnectivityFile& file, const Model& model, DesignParams& design,
                  const HWHTextMap& params, const tq::DiagnosticSink& sink);

} // namespace hwh
