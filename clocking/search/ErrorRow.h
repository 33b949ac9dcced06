// Rows of errors: one relative error per peripheral of a domain.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "clocking/ClockingArithmetic.h"

namespace hbs_clocking {

/// Rows are padded to a multiple of this with zeros, so that they are worked on in lanes.
inline constexpr unsigned kLanes = 4;

/// The error of a clock that isn't under the tolerance.
inline constexpr float kUnserved = std::numeric_limits<float>::infinity();

/// The errors that a domain's peripherals have with the clocks seen so far. A peripheral served by
/// none has the tolerance itself. A negative entry, -0 included, means that the peripheral prefers
/// a clock that it is barred from.
using ErrorRow = std::vector<float>;

/// Offers the peripherals one more clock, which is later in the order of the slots than those seen:
/// a peripheral takes it only if its error is smaller by the margin. The same as `BestOffer`, for a
/// whole row.
inline void takeBetter(ErrorRow& errors, const float* offered) {
    const std::size_t length = errors.size();
    float* const present = errors.data();
    for (std::size_t i = 0; i < length; ++i) {
        const float standing = std::fabs(present[i]);
        const float better = standing - std::fabs(offered[i]);
        present[i] = better > standing * kMargin ? offered[i] : present[i];
    }
}

/// Whether a peripheral has a clock that it may take. Compares bits: non-negative floats are
/// ordered as their bits, and the sign bit puts the entries of barred clocks above them all.
[[nodiscard]] inline bool isServed(float error, float tolerance) {
    return std::bit_cast<std::uint32_t>(error) < std::bit_cast<std::uint32_t>(tolerance);
}

[[nodiscard]] inline bool areAllServed(const ErrorRow& errors, float tolerance) {
    unsigned unserved = 0;
    for (const float error : errors)
        unserved |= isServed(error, tolerance) ? 0U : 1U;
    return unserved == 0;
}

/// The sum for bounds, in no particular order; results are summed in the order of the peripherals.
[[nodiscard]] inline double sumForBound(const ErrorRow& errors) {
    std::array<float, kLanes> lanes{};
    for (std::size_t i = 0; i < errors.size(); i += kLanes)
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            lanes[lane] += errors[i + lane];
    return static_cast<double>((lanes[0] + lanes[1]) + (lanes[2] + lanes[3]));
}

/// The sum in double precision, whose rounding is far below that of the sums it is compared with.
[[nodiscard]] inline double exactSum(const ErrorRow& errors) {
    double sum = 0.0;
    for (const float error : errors)
        sum += static_cast<double>(error);
    return sum;
}

} // namespace hbs_clocking
