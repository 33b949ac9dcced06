#include "blockmodel/HABMAddrApertureUtils.h"

#include <cstdint>
#include <optional>

namespace {

/// The first address after an aperture. Invalid for one that ends at the highest address of all,
/// which therefore counts as ending last.
HABMAddrValue endOf(const HABMAddrAperture& aperture) {
    return aperture.getStart().plus(aperture.getSize());
}

bool endsBefore(const HABMAddrAperture& aperture, const HABMAddrValue& address) {
    const HABMAddrValue end = endOf(aperture);
    return end.isValid() && (!address.isValid() || end < address);
}

/// From the start of the first to the end of the second. Its size is invalid if no value holds it.
HABMAddrAperture span(const HABMAddrAperture& first, const HABMAddrAperture& second) {
    const HABMAddrValue last = second.getHighAddress().minus(first.getStart());
    return {first.getStart(), last.plus(HABMAddrValue(std::uint64_t{1}))};
}

} // namespace

std::set<HABMAddrAperture>
HABMAddrApertureUtils::compress(const std::set<HABMAddrAperture>& apertures, const bool&,
                                const bool&) {
    std::set<HABMAddrAperture> joined;
    std::optional<HABMAddrAperture> open;
    for (const HABMAddrAperture& next : apertures) {
        if (!next.getHighAddress().isValid()) {
            joined.insert(next);
            continue;
        }
        if (open && !endsBefore(*open, next.getStart())) {
            if (!endsBefore(*open, endOf(next)))
                continue;
            if (const HABMAddrAperture both = span(*open, next); both.getSize().isValid()) {
                open = both;
                continue;
            }
        }
        if (open)
            joined.insert(*open);
        open = next;
    }
    if (open)
        joined.insert(*open);
    return joined;
}
