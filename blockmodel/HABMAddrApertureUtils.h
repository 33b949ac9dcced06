// Work on sets of apertures.
#pragma once

#include <set>

#include "blockmodel/HABMAddrAperture.h"
#include "tq_export.h"

class TQ_EXPORT HABMAddrApertureUtils {
public:
    HABMAddrApertureUtils() = delete;

    /// The set with touching or overlapping apertures joined. An empty aperture disappears in one
    /// that holds or touches its start, and stays otherwise; one without a last address stays as
    /// it is. The flags are there for the callers' sake and change nothing.
    static std::set<HABMAddrAperture> compress(const std::set<HABMAddrAperture>& apertures,
                                               const bool&, const bool&);
};
