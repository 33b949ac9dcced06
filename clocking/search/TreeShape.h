// How the trees of four and six PLLs are wired: which PLL belongs where, and which clocks a
// peripheral of each domain can take.
#pragma once

#include <array>
#include <cstdint>

namespace hbs_clocking {

inline constexpr unsigned kDomains = 4;

/// The role of a PLL in the tree. In PLL order; a tree of four PLLs has no second PLL in a domain.
enum class Role : std::uint8_t { Main, Noc, Own2First, Own2Second, Own3First, Own3Second };
inline constexpr unsigned kRoles = 6;

[[nodiscard]] constexpr unsigned indexOf(Role role) {
    return static_cast<unsigned>(role);
}

/// How the clock of a PLL reaches the peripherals of a domain: not at all, directly, or through the
/// PLL's cross-domain divider.
enum class Reach : std::uint8_t { None, Direct, Across };

/// The output dividers that a PLL may have: powers of two, tried from the largest down.
struct DividerRange {
    unsigned largest = 1;
    unsigned smallest = 1;

    /// From the smallest divider that keeps the PLL under its limit up to 4, or 8 alone.
    [[nodiscard]] static constexpr DividerRange from(unsigned smallest) {
        return {smallest > 4 ? 8U : 4U, smallest};
    }
    [[nodiscard]] constexpr unsigned size() const {
        unsigned count = 0;
        for (unsigned div = largest; div >= smallest && div != 0; div /= 2)
            ++count;
        return count;
    }
};

/// The tuples of output dividers of one combination: a range per PLL, in PLL order. The NOC PLL's
/// holds 1 alone.
using ClkoutDivCombos = std::array<DividerRange, kRoles>;

/// The wiring of a tree, one constant per kind of solver.
struct TreeShape {
    static constexpr unsigned kAbsent = ~0U;

    unsigned pllCount;
    /// Position of each role's PLL in the solver's order.
    std::array<unsigned, kRoles> pllOf;
    /// The domain whose limit determines the output divider of each role. The main PLL follows the
    /// NOC domain's limit; the NOC PLL's divider follows from the NOC request instead.
    std::array<unsigned, kRoles> boundingDomain;
    std::array<std::array<Reach, kRoles>, kDomains> reach;
    /// Whether the two peripherals barred by name may not take PLLs 1 and 3.
    bool barsByName;

    [[nodiscard]] constexpr bool has(Role role) const { return pllOf[indexOf(role)] != kAbsent; }
    [[nodiscard]] constexpr unsigned roleOf(unsigned pll) const {
        unsigned role = 0;
        while (pllOf[role] != pll)
            ++role;
        return role;
    }
    [[nodiscard]] constexpr Reach reachOf(unsigned domain, Role role) const {
        return reach[domain][indexOf(role)];
    }
};

namespace detail {
inline constexpr Reach N = Reach::None;
inline constexpr Reach D = Reach::Direct;
inline constexpr Reach X = Reach::Across;
} // namespace detail

inline constexpr TreeShape kFourPllShape{
    4,
    {0, 1, 2, TreeShape::kAbsent, 3, TreeShape::kAbsent},
    {1, TreeShape::kAbsent, 2, TreeShape::kAbsent, 3, TreeShape::kAbsent},
    {{{detail::D, detail::D, detail::N, detail::N, detail::N, detail::N},
      {detail::N, detail::D, detail::N, detail::N, detail::N, detail::N},
      {detail::X, detail::X, detail::D, detail::N, detail::N, detail::N},
      {detail::X, detail::X, detail::X, detail::N, detail::D, detail::N}}},
    false};

inline constexpr TreeShape kSixPllShape{
    6,
    {0, 1, 2, 3, 4, 5},
    {1, TreeShape::kAbsent, 2, 2, 3, 3},
    {{{detail::D, detail::D, detail::N, detail::N, detail::N, detail::N},
      {detail::N, detail::D, detail::N, detail::N, detail::N, detail::N},
      {detail::X, detail::X, detail::D, detail::D, detail::N, detail::N},
      {detail::X, detail::N, detail::X, detail::N, detail::D, detail::D}}},
    true};

} // namespace hbs_clocking
