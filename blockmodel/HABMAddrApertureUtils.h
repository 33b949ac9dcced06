// Work on sets of apertures.
#pragma once

#include <set>

#include "blockmodel/HABMAddrAperture.h"
#include "tq_export.h"

/// Operations on sets of apertures.
class TQ_EXPORT HABMAddrApertureUtils {
public:
    HABMAddrApertureUtils() = delete;

    /// The set with touching or overlapping apertures joined. An empty aperture is dropped if
    /// another one holds or touches its start, and kept otherwise. One without a last address is
    /// kept unchanged; two whose joined size would be 2^127, which no value holds, stay apart. The
    /// flags have no effect.
    static std::set<HABMAddrAperture> compress(const std::set<HABMAddrAperture>& apertures,
                                               const bool&, const bool&);
};
