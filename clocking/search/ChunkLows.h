// The record lows of a search whose combinations are divided into chunks.
//
// The exhaustive search divides the enumeration among threads. Each chunk has a winner of its own,
// the end of the chain of its sums (see `NearMinimum`); the smallest of the chunks' winners is the
// result, of equal ones the earliest. One pass over the combinations, in any order and with any
// number of threads, collects what decides this: a sum belongs to the chunk that its place lies in.
//
// Bound for all chunks: let m be the overall minimum. The winner of m's chunk lies above m by
// less than twice the margin. A chunk whose smallest sum lies above m by more than that can't win,
// and no other chunk needs more than the band above its own smallest sum. So sums above
// m × (1 + twice the margin) × (1 + band) can't change the result.
#pragma once

#include <atomic>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

#include "clocking/search/NearMinimum.h"

namespace hbs_clocking {

/// Safe to use from several threads at once. The limits never rise, neither over time nor from one
/// place of a chunk to a later one; the memoisation of `ContextSearch` relies on both.
class ChunkLows {
public:
    /// The chunks begin at `starts`, combinations by role, the first of which is the first
    /// combination of all. For the rest see `NearMinimum`.
    ChunkLows(std::vector<Combination> starts, double worst, bool isProven, double band);

    /// Returned by `chunkOf` for combinations of more than one chunk.
    static constexpr unsigned kSeveral = ~0U;
    /// The chunk of all combinations that begin with these places of `head`.
    [[nodiscard]] unsigned chunkOf(const Combination& head, unsigned places) const;

    /// The starts of chunks among the combinations that begin with these places of `head`; empty if
    /// all belong to one chunk.
    [[nodiscard]] std::span<const Combination> startsWithin(const Combination& head,
                                                            unsigned places) const;

    /// Sums above this can't change the result, now or later.
    [[nodiscard]] double limit() const { return m_limit.load(std::memory_order_relaxed); }
    /// The same for tuples whose combinations begin with these places of `head`. It is tighter in
    /// the chunk of the first of them: there only a sum below the record lows before them counts.
    [[nodiscard]] double limitBehind(const Combination& head, unsigned places) const;
    void offer(const Tuple& tuple, float sum);

    /// Whether the sums within the limit determine the winner. If not, a wider band must be
    /// searched.
    [[nodiscard]] bool isDecided() const;
    [[nodiscard]] std::optional<NearMinimum::Winner> winner() const;
    /// The smallest sum offered; infinite before any.
    [[nodiscard]] double lowest() const { return m_lowest; }

private:
    [[nodiscard]] unsigned chunkAt(const Combination& muls) const;
    /// Whether the chunk may hold the winner.
    [[nodiscard]] bool counts(const NearMinimum& chunk) const;

    std::vector<Combination> m_starts;
    std::vector<NearMinimum> m_chunks;
    double m_band;
    double m_lowest;
    std::atomic<double> m_limit; ///< the highest of the chunks' limits
    mutable std::mutex m_mutex;
};

} // namespace hbs_clocking
