// The searches of four and six PLLs, written step by step and pruned nowhere: the yardstick that
// the solvers must agree with bit for bit. It shares no code with the library.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace reference46 {

struct Peripheral {
    std::string name;
    int domain = 0;
    float requestMhz = 0.0F;
    bool enabled = true;
    bool noc = false;
    float allowedPercent = 100.0F;
    float weight = 1.0F; ///< at most 1
    int source = -1;     ///< the only PLL that it may take, by position
};

struct Domain {
    std::string name;
    std::vector<float> pllLimitsMhz; ///< one per PLL
};

/// A tree of four domains; six PLLs when the last two domains have two each, else four.
struct Tree {
    float refMhz = 33.333F;
    float maxCrossMhz = 1000.0F;
    std::vector<Domain> domains;
    std::vector<Peripheral> peripherals;
    std::array<unsigned, 6> pins{}; ///< multipliers by PLL, 0 for a free one

    [[nodiscard]] bool sixPlls() const { return domains.at(2).pllLimitsMhz.size() == 2; }
};

struct PllChoice {
    unsigned mul = 0, div = 0, cross = 0;
    bool operator==(const PllChoice&) const = default;
};

struct PeripheralChoice {
    unsigned slot = 0, div = 0;
    bool operator==(const PeripheralChoice&) const = default;
};

struct Solution {
    bool found = false;
    float tolerance = 0.001F;
    float total = 1000.0F;
    std::vector<PllChoice> plls;
    std::vector<PeripheralChoice> peripherals; ///< one per enabled peripheral, in their order

    bool operator==(const Solution&) const = default;
};

using Combination = std::vector<unsigned>;

/// One run. The pieces are open so that a benchmark can time a slice of a search that wouldn't end.
class Search {
public:
    explicit Search(const Tree& tree);

    /// None when more than `maxTuples` tuples of dividers would have to be tried.
    [[nodiscard]] std::optional<Solution> solve(int threads, std::uint64_t maxTuples);

    /// Combinations of the step of the ladder, none when the step is left before its search. The
    /// steps must be taken in order, since each may lower the limits of the domains.
    [[nodiscard]] std::vector<Combination> combinationsOfStep(float tolerance);
    /// The search of one range of them.
    /// Every setting of the step that serves all, as (sum, setting); the answers' best sources.
    void forEachSetting(const std::vector<Combination>& combinations,
                        const std::function<void(const Solution&)>& action);
    [[nodiscard]] Solution evaluate(const std::vector<Combination>& combinations, std::size_t first,
                                    std::size_t last);
    /// Tuples of dividers that this search tries.
    [[nodiscard]] std::uint64_t countTuples(const std::vector<Combination>& combinations) const;

    /// How often the evaluations asked for the NOC divider with other than one NOC peripheral.
    [[nodiscard]] std::uint64_t linesPrinted() const { return m_lines; }

private:
    struct Words {
        std::uint32_t word[5] = {};
    };
    struct Slots {
        std::array<float, 6> mhz{};
        std::array<bool, 6> engaged{};
    };
    struct Covered {
        int domain;
        Words bits;
        float requestMhz;
    };

    [[nodiscard]] float domainLimit(int domain) const;
    [[nodiscard]] unsigned outputDivider(unsigned mul, int domain) const;
    [[nodiscard]] unsigned nocDivider(unsigned mul);
    [[nodiscard]] std::vector<unsigned> nocMultipliers();
    [[nodiscard]] bool serves(unsigned mul, const Peripheral& peripheral) const;
    [[nodiscard]] bool covers(const Combination& combination, int domain) const;
    void lock(int domain, bool anything);

    void append(std::vector<Combination>& list, const Combination& combination);
    [[nodiscard]] std::vector<Combination> product(const std::vector<Combination>& heads,
                                                   const std::vector<Combination>& tails);
    /// The multipliers to try at a place: a pinned one, else the list.
    [[nodiscard]] std::vector<unsigned> valuesAt(std::size_t pll,
                                                 const std::vector<unsigned>& list) const;
    [[nodiscard]] bool isPinned(int pll) const;
    [[nodiscard]] std::vector<Combination> single(int domain);
    [[nodiscard]] std::vector<Combination> extend(const std::vector<Combination>& heads,
                                                  const std::vector<unsigned>& tails, int domain);
    [[nodiscard]] std::vector<Combination> extendByPairs(const std::vector<Combination>& heads,
                                                         int domain);
    [[nodiscard]] std::vector<Combination> ascendingPairs(int domain);
    [[nodiscard]] std::vector<Combination> crossChecked(const std::vector<Combination>& heads,
                                                        int domain);
    [[nodiscard]] std::vector<Combination> combinationsOfFour(const std::vector<unsigned>& noc);
    [[nodiscard]] std::vector<Combination> combinationsOfSix(const std::vector<unsigned>& noc);

    [[nodiscard]] std::vector<Combination> outputDividers(const Combination& muls) const;
    [[nodiscard]] bool evaluateTuple(const Combination& muls, const Combination& divs,
                                     const Combination& cross, unsigned nocDiv, float& sum,
                                     std::vector<PeripheralChoice>& choices) const;
    [[nodiscard]] bool slotsOf(const Peripheral& peripheral, const Combination& muls,
                               const Combination& divs, const Combination& cross, unsigned nocDiv,
                               Slots& slots) const;
    [[nodiscard]] bool bestSlot(const Slots& slots, float target, PeripheralChoice& choice,
                                float& error) const;

    Tree m_tree;
    std::vector<Peripheral> m_enabled;
    std::vector<float> m_errorLimits;
    float m_tolerance = 0.001F;
    std::vector<unsigned> m_multipliers;
    std::vector<Covered> m_covered;
    std::uint64_t m_lines = 0;
    std::size_t m_most = ~std::size_t{0}; ///< lists longer than this are given up
    bool m_tooMany = false;
};

} // namespace reference46
