#include "clocking/search/ChunkLows.h"

#include <algorithm>
#include <limits>

#include "clocking/ClockingArithmetic.h"

namespace hbs_clocking {

namespace {

/// The first or the last combination that begins with these places.
[[nodiscard]] Combination filled(const Combination& head, unsigned places, std::uint8_t rest) {
    Combination muls = head;
    std::fill(muls.begin() + places, muls.end(), rest);
    return muls;
}

} // namespace

ChunkLows::ChunkLows(std::vector<Combination> starts, double worst, bool isProven, double band)
    : m_starts(std::move(starts)), m_chunks(m_starts.size(), NearMinimum(worst, isProven, band)),
      m_band(band), m_lowest(std::numeric_limits<double>::infinity()), m_limit(worst) {}

unsigned ChunkLows::chunkAt(const Combination& muls) const {
    const auto behind = std::upper_bound(m_starts.begin() + 1, m_starts.end(), muls);
    return static_cast<unsigned>(behind - m_starts.begin()) - 1;
}

unsigned ChunkLows::chunkOf(const Combination& head, unsigned places) const {
    const unsigned first = chunkAt(filled(head, places, 0));
    const unsigned last = chunkAt(filled(head, places, std::numeric_limits<std::uint8_t>::max()));
    return first == last ? first : kSeveral;
}

std::span<const Combination> ChunkLows::startsWithin(const Combination& head,
                                                     unsigned places) const {
    const unsigned first = chunkAt(filled(head, places, 0));
    const unsigned last = chunkAt(filled(head, places, std::numeric_limits<std::uint8_t>::max()));
    return std::span(m_starts).subspan(first + 1, last - first);
}

double ChunkLows::limitBehind(const Combination& head, unsigned places) const {
    Tuple place;
    place.muls = filled(head, places, 0);
    const unsigned first = chunkAt(place.muls);
    const unsigned last = chunkAt(filled(head, places, std::numeric_limits<std::uint8_t>::max()));
    const std::lock_guard lock(m_mutex);
    double limit = m_chunks[first].limitFrom(place);
    for (unsigned chunk = first + 1; chunk <= last; ++chunk)
        limit = std::max(limit, m_chunks[chunk].limit());
    return limit;
}

void ChunkLows::offer(const Tuple& tuple, float sum) {
    const std::lock_guard lock(m_mutex);
    NearMinimum& chunk = m_chunks[chunkAt(tuple.muls)];
    chunk.offer(tuple, sum);
    // A new overall minimum lowers the limits of all chunks; the header has the proof.
    if (chunk.lowest() < m_lowest) {
        m_lowest = chunk.lowest();
        for (NearMinimum& other : m_chunks)
            other.lowerLimit(m_lowest * (1.0 + NearMinimum::kCertainMargin) * (1.0 + m_band));
    }
    double limit = 0.0;
    for (const NearMinimum& other : m_chunks)
        limit = std::max(limit, other.limit());
    m_limit.store(limit, std::memory_order_relaxed);
}

bool ChunkLows::counts(const NearMinimum& chunk) const {
    return chunk.lowest() <= m_lowest * (1.0 + NearMinimum::kCertainMargin);
}

bool ChunkLows::isDecided() const {
    return std::all_of(m_chunks.begin(), m_chunks.end(), [this](const NearMinimum& chunk) {
        return !counts(chunk) || chunk.isDecided();
    });
}

std::optional<NearMinimum::Winner> ChunkLows::winner() const {
    std::optional<NearMinimum::Winner> best;
    for (const NearMinimum& chunk : m_chunks) {
        if (!counts(chunk))
            continue;
        const std::optional<NearMinimum::Winner> own = chunk.winner();
        // Strictly less: of chunks with equal sums the earliest wins. No margin here, unlike in a
        // chunk.
        if (own && (best ? best->sum : kWorstTotalError) > own->sum)
            best = own;
    }
    return best;
}

} // namespace hbs_clocking
