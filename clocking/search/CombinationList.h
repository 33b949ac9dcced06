// The combinations of multipliers that a step of the search tries: implicit lists, which know their
// size and their i-th element without storing the elements.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "clocking/search/MultiplierMask.h"

namespace hbs_clocking {

/// One multiplier per PLL, in PLL order; unused places are 0.
using Combination = std::array<std::uint8_t, 6>;

/// One peripheral's condition on a combination: one of these multipliers must be in it.
struct CoverNeed {
    MultiplierMask served;
    bool headServes = true; ///< whether the multipliers before the stage may serve it too
    bool operator==(const CoverNeed&) const = default;
};

/// How a list grows by one or two places: each head is continued by all tails that cover the needs
/// together with the head's places in `headPlaces`.
struct CombinationStage {
    /// How the two places of a tail are related; `Single` for tails of one place.
    enum class Order { Single, Any, Different, Ascending };

    std::vector<std::uint8_t> firsts;  ///< values of the tail's first place, ascending
    std::vector<std::uint8_t> seconds; ///< of its second, if it has one
    Order order = Order::Single;
    std::vector<CoverNeed> needs;
    std::vector<std::uint8_t> headPlaces; ///< places before the stage that count for the needs

    [[nodiscard]] unsigned width() const { return order == Order::Single ? 1 : 2; }
    [[nodiscard]] bool looksAt(unsigned place) const;
    /// Leaves out needs that another one implies.
    void simplify();
};

/// The tails of a stage that continue one head.
class CombinationTails {
public:
    CombinationTails(const CombinationStage& stage, const Combination& head);
    /// A superset of the tails of all heads: assumes that a head serves whatever it may serve.
    explicit CombinationTails(const CombinationStage& stage);

    /// The second places that go with a first. For tails of one place: {0} if the tail belongs to
    /// the list, else empty.
    [[nodiscard]] MultiplierMask seconds(unsigned first) const;
    /// Tails that begin with `first`.
    [[nodiscard]] std::uint64_t count(unsigned first) const { return seconds(first).size(); }

private:
    template <class IsServed>
    CombinationTails(const CombinationStage& stage, const IsServed& isServed);

    const CombinationStage& m_stage;
    MultiplierMask m_alphabet;
    std::vector<MultiplierMask> m_missing;
};

/// A list of combinations in stages, in ascending order of their places. A tree of six PLLs has up
/// to some 10^11 combinations; the list holds only the values of each place (those that occur in a
/// combination) and the needs. Counting the combinations costs about pairs × multipliers × needs.
class CombinationList {
public:
    CombinationList() = default;
    explicit CombinationList(CombinationStage stage);

    /// This list continued by a stage that may look at the heads.
    [[nodiscard]] CombinationList extendedBy(CombinationStage stage) const;
    /// Every combination of this list continued by every one of the other, which has one stage.
    [[nodiscard]] CombinationList timesList(const CombinationList& tails) const;

    [[nodiscard]] bool isEmpty() const { return m_size == 0; }
    [[nodiscard]] std::uint64_t size() const { return m_size; }
    /// Places of a combination.
    [[nodiscard]] unsigned width() const { return m_width; }
    [[nodiscard]] Combination at(std::uint64_t index) const;
    /// Calls `action` for each of a range, in order.
    void forEach(std::uint64_t first, std::uint64_t last,
                 const std::function<void(const Combination&)>& action) const;
    /// Whether some stage looks at the places before it; if none does, the list is a product.
    [[nodiscard]] bool tailsDependOnHead() const;
    [[nodiscard]] bool contains(const Combination& combination) const;

    [[nodiscard]] std::span<const CombinationStage> stages() const { return m_stages; }

private:
    std::vector<CombinationStage> m_stages;
    unsigned m_width = 0;
    std::uint64_t m_size = 0;
};

} // namespace hbs_clocking
