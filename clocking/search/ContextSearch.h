// One node of the branch and bound search: the own PLLs of domains 2 and 3 for one setting of the
// main and the NOC PLL, a context.
//
// A context fixes the errors of domains 0 and 1. The first own PLL of domain 2 is the only one that
// both domains 2 and 3 see, so for each of its options the two domains are independent problems.
// The least sum of each is bounded, then looked up (`ChoiceTable`); only if the total stays under
// the ceiling, the choices of both domains are combined.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "clocking/search/ChoiceTable.h"
#include "clocking/search/ChunkLows.h"
#include "clocking/search/OwnPlls.h"

namespace hbs_clocking {

/// A memo of the earliest place at which each key was met. Only the earliest counts: of equal sums
/// the earlier one wins, so it may replace later ones but not the other way round.
template <std::size_t N>
class FirstPlaces {
public:
    using Key = std::array<unsigned, 4>;
    using Place = std::array<std::uint8_t, N>;

    /// Records the place and returns true unless the key was met at this place or an earlier one.
    [[nodiscard]] bool record(const Key& key, const std::array<unsigned, N>& place) {
        Place narrow;
        std::transform(place.begin(), place.end(), narrow.begin(),
                       [](unsigned part) { return static_cast<std::uint8_t>(part); });
        const auto [entry, isNew] = m_places.try_emplace(key, narrow);
        if (!isNew && entry->second <= narrow)
            return false;
        entry->second = narrow;
        return true;
    }
    [[nodiscard]] std::size_t bytes() const {
        return m_places.size() * (sizeof(Key) + sizeof(Place) + 3 * sizeof(void*));
    }
    void clear() { m_places.clear(); }

private:
    struct Hash {
        std::size_t operator()(const Key& key) const {
            std::uint64_t hash = 0;
            for (const unsigned part : key) {
                hash = (hash ^ part) * 0x9E3779B97F4A7C15U;
                hash ^= hash >> 29U;
            }
            return static_cast<std::size_t>(hash);
        }
    };
    std::unordered_map<Key, Place, Hash> m_places;
};

/// Searches contexts one after the other and offers the sums that may decide the winner. One object
/// per thread.
class ContextSearch {
public:
    ContextSearch(const SearchProblem& problem, const SourceTable& table, const PriceBound& bound,
                  const OwnPlls& own, ChunkLows& lows);

    void search(const PllOption& main, const PllOption& noc);

    /// Tuples whose sum was offered.
    [[nodiscard]] std::uint64_t evaluatedTuples() const { return m_evaluated; }
    /// Work done so far: contexts, options of the first own PLL and choices, some 100 ns each.
    [[nodiscard]] std::uint64_t effort() const { return m_effort; }

private:
    /// The context under way.
    struct Context {
        std::array<const PllOption*, 2> plls{}; ///< main and NOC
        std::array<ErrorRow, kDomains> errors;  ///< that these two leave
        double nearSum = 0.0;                   ///< of domains 0 and 1
        unsigned nearNumber = 0;                ///< of the errors of domains 0 and 1
        std::array<unsigned, 2> numbers{};      ///< in the tables of domains 2 and 3
        ChoiceHead head;
        double ceiling = 0.0; ///< a bound above this prunes
        double most = 0.0;    ///< as does a sum of errors above this, added in any order
    };
    /// Where a pair of rows of domains 2 and 3 was met first in the enumeration, and their sum.
    struct Seen {
        Tuple tuple;
        float sum;
    };

    [[nodiscard]] bool enter(const PllOption& main, const PllOption& noc);
    void setLimit(double limit);
    [[nodiscard]] bool fillErrors();
    void fillLeast();
    /// The sum of the smallest error that each peripheral can have with this context, rounded as a
    /// tuple's sum is. Rounded addition is monotone, so no tuple's sum lies below it. It needs no
    /// allowance for rounding and so prunes exact ties with the limit, which the bounds can't.
    [[nodiscard]] float floorOfSums() const;
    /// Records the context in the memo. False if it is dominated: an earlier context, already
    /// searched, has the same errors and thus every sum of this one at an earlier place.
    [[nodiscard]] bool recordContext();
    void searchGroup(const OwnPlls::Group& group);
    /// The same for the context with an option of the first own PLL of domain 2.
    [[nodiscard]] bool recordOption(const OwnPlls::Group& group, std::size_t option);
    void combine(const OwnPlls::Group& group, std::size_t option, double least2, double least3);
    void offer(const PllOption& own, const OwnChoice& second, const OwnChoice& pair);
    [[nodiscard]] Tuple tupleOf(const PllOption& own, const OwnChoice& second,
                                const OwnChoice& pair) const;
    [[nodiscard]] float sumOf(const OwnChoice& second, const OwnChoice& pair) const;
    void forgetIfLarge();

    const SearchProblem& m_problem;
    const SourceTable& m_table;
    const PriceBound& m_bound;
    const OwnPlls& m_own;
    ChunkLows& m_lows;
    std::vector<std::pair<unsigned, unsigned>> m_places; ///< domain and place of each peripheral
    std::array<ErrorRow, kDomains> m_least; ///< that the own PLLs of domains 2 and 3 give
    Completion m_completion2;
    ChoiceTable m_choices2;
    ChoiceTable m_choices3;
    Context m_context;
    RowIndex m_nearRows; ///< errors of domains 0 and 1
    /// The earliest context by its near errors, its numbers in both tables and its chunk.
    FirstPlaces<5> m_searched;
    /// The earliest context and option by near errors, entry numbers in both tables and chunk.
    FirstPlaces<8> m_combined;
    /// Sums of the present context by rows of domains 2 and 3 and chunk.
    std::unordered_map<std::uint64_t, Seen> m_seen;
    std::uint64_t m_evaluated = 0;
    std::uint64_t m_effort = 0;
};

} // namespace hbs_clocking
