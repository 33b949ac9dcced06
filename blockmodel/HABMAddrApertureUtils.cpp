#include "blockmodel/HABMAddrApertureUtils.h"

#include <optional>

namespace {

/// The first address behind an aperture; invalid if there is none.
HABMAddrValue endOf(const HABMAddrAperture& aperture) {
    return aperture.getStart().plus(aperture.getSize());
}

} // namespace

std::set<HABMAddrAperture>
HABMAddrApertureUtils::compress(const std::set<HABMAddrAperture>& apertures, const bool&,
                                const bool&) {
    std::set<HABMAddrAperture> joined;
    std::optional<HABMAddrAperture> open;
    for (const HABMAddrAperture& next : apertures) {
        const HABMAddrValue end = endOf(next);
        if (!end.isValid()) {
            joined.insert(next);
        } else if (open && !(endOf(*open) < next.getStart())) {
            if (endOf(*open) < end)
                open = HABMAddrAperture(open->getStart(), end.minus(open->getStart()));
        } else {
            if (open)
                joined.insert(*open);
            open = next;
        }
    }
    if (open)
        joined.insert(*open);
    return joined;
}
