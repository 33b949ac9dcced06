// Handoffs made the plain way: maps of texts, every design parameter looked at for every name, and
// a tree of elements. Slow, and short enough to be checked by eye.
#pragma once

#include <string>

#include "handoff/handoff_support.h"

namespace handoff_support {

/// Writes the handoff of a connectivity file that can be read, without a time stamp.
void writePlainHandoff(const Texts& design, Texts system, const std::string& connectivityFile,
                       bool splitByCells, const std::string& outputFile);

} // namespace handoff_support
