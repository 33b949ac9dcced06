#include "clocking/search/SourceTable.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <unordered_map>

#include "clocking/search/PriceBound.h"

namespace hbs_clocking {

namespace {

constexpr unsigned kDividers = 4; // 1, 2, 4, 8
constexpr unsigned kMaxCross = 4;
constexpr unsigned kCrossings = kMaxCross + 1; // none, and 1 to 4
/// Relative; not less than the margin by which a clock must be better than another.
constexpr double kRoom = 1e-5;
constexpr unsigned kRowsPerBlock = (kMaxMultiplier + 1) * kDividers * kCrossings;

} // namespace

float* RowStore::add(std::size_t length) {
    constexpr std::size_t usualPageLength = 4096;
    if (m_pages.empty() || length > m_free) {
        m_pageLength = std::max(length, usualPageLength);
        m_pages.push_back(std::make_unique<float[]>(m_pageLength));
        m_free = m_pageLength;
    }
    float* const row = m_pages.back().get() + (m_pageLength - m_free);
    m_free -= length;
    return row;
}

SourceTable::SourceTable(const SearchProblem& problem) : m_problem(problem) {
    for (unsigned i = 0; i < problem.requests.size(); ++i) {
        const SearchRequest& request = problem.requests[i];
        m_domains[request.domain].positions.push_back(i);
        m_hasBarred[request.domain] = m_hasBarred[request.domain] || request.isBarred;
        m_hasDenied[request.domain] = m_hasDenied[request.domain] || request.deniedPlls != 0;
    }
    unsigned widest = 0;
    for (DomainRequests& domain : m_domains) {
        const auto count = static_cast<unsigned>(domain.positions.size());
        domain.stride = (count + kLanes - 1) / kLanes * kLanes;
        widest = std::max(widest, domain.stride);
    }
    m_nobody.assign(widest, kUnserved);

    const std::span stages = problem.combinations.stages();
    addOptions(Role::Main, stages[0].firsts);
    addOptions(Role::Noc, stages[0].seconds);
    addOptions(Role::Own2First, stages[1].firsts);
    addOptions(Role::Own2Second, stages[1].seconds);
    addOptions(Role::Own3First, stages[2].firsts);
    addOptions(Role::Own3Second, stages[2].seconds);
}

bool SourceTable::lacksOptions() const {
    return std::any_of(m_options.begin(), m_options.end(),
                       [](const PllOptions& options) { return options.all.empty(); });
}

void SourceTable::addOptions(Role role, std::span<const std::uint8_t> multipliers) {
    PllOptions& options = m_options[indexOf(role)];
    if (!m_problem.shape->has(role)) {
        PllOption nobody;
        nobody.errors.fill(m_nobody.data());
        options.add(nobody);
        return;
    }
    for (const std::uint8_t mul : multipliers) {
        const float vcoMhz = static_cast<float>(mul) * m_problem.refMhz;
        PllOption option;
        option.mul = mul;
        if (role == Role::Noc) {
            addOption(role, option, vcoMhz / static_cast<float>(m_problem.nocDivider(mul)));
        } else {
            const DividerRange range = m_problem.outputDividers(role, mul);
            for (unsigned div = range.largest; div >= range.smallest && div != 0; div /= 2) {
                option.div = static_cast<std::uint8_t>(div);
                addOption(role, option, vcoMhz / static_cast<float>(div));
            }
        }
    }
}

void SourceTable::addOption(Role role, PllOption option, float freqMhz) {
    bool crosses = false;
    bool isLimited = false; // the limit is tested for peripherals, and so only where there are some
    for (unsigned domain = 0; domain < kDomains; ++domain) {
        const bool across = m_problem.shape->reachOf(domain, role) == Reach::Across;
        crosses = crosses || across;
        isLimited = isLimited || (across && !m_domains[domain].isEmpty());
    }
    // A PLL whose clock doesn't cross has one option per output divider. A setting whose crossing
    // clock is above the limit is left out as a whole.
    PllOptions& options = m_options[indexOf(role)];
    for (unsigned cross = kMaxCross; cross >= (crosses ? 1 : kMaxCross); --cross) {
        ClockSlot crossing = std::pair(freqMhz / static_cast<float>(cross), unsigned{option.div});
        if (isLimited && exceedsCrossLimit(m_problem.maxCrossMhz, crossing, kMargin))
            continue;
        option.cross = static_cast<std::uint8_t>(cross);
        for (unsigned domain = 0; domain < kDomains; ++domain)
            setRows(role, domain, option, freqMhz);
        addUnlessRepeated(options, option);
    }
}

void SourceTable::setRows(Role role, unsigned domain, PllOption& option, float freqMhz) {
    const Reach reach = m_problem.shape->reachOf(domain, role);
    if (reach == Reach::None)
        return;
    const unsigned cross = reach == Reach::Across ? option.cross : 0;
    const float clockMhz = cross == 0 ? freqMhz : freqMhz / static_cast<float>(cross);
    Kind kind = Common;
    if (m_hasDenied[domain])
        kind = static_cast<Kind>(OfRole + indexOf(role));
    else if (role == Role::Noc)
        kind = NocClock;
    else if (role == Role::Own2Second && m_hasBarred[domain])
        kind = BarredSecond;
    option.errors[domain] = row(domain, kind, option, cross, clockMhz);
}

const float* SourceTable::row(unsigned domain, Kind kind, const PllOption& option, unsigned cross,
                              float freqMhz) {
    const DomainRequests& requests = m_domains[domain];
    Block& block = m_blocks[domain][kind];
    block.numbers.resize(kRowsPerBlock);
    const auto div = static_cast<unsigned>(std::countr_zero(unsigned{option.div}));
    std::uint16_t& number = block.numbers[(option.mul * kDividers + div) * kCrossings + cross];
    if (number == 0) {
        block.rows.push_back(makeRow(requests, kind, freqMhz));
        number = static_cast<std::uint16_t>(block.rows.size());
    }
    return block.rows[number - 1U];
}

const float* SourceTable::makeRow(const DomainRequests& requests, Kind kind, float freqMhz) {
    float* const values = m_rows.add(requests.stride);
    for (std::size_t i = 0; i < requests.positions.size(); ++i)
        values[i] = entry(m_problem.requests[requests.positions[i]], kind, freqMhz);
    return values;
}

float SourceTable::entry(const SearchRequest& request, Kind kind, float freqMhz) const {
    // The sign marks a clock that the peripheral would prefer and may not take; see `ErrorRow`.
    const float error = offerNearestDivider(freqMhz, request.mhz).error;
    if (!definitelyLess(error, m_problem.tolerance, kMargin))
        return kUnserved;
    const bool isNoc = kind == NocClock || kind == OfRole + indexOf(Role::Noc);
    const bool isSecond = kind == BarredSecond || kind == OfRole + indexOf(Role::Own2Second);
    if (kind >= OfRole &&
        (request.deniedPlls >> m_problem.shape->pllOf[kind - unsigned{OfRole}] & 1U) != 0)
        return kUnserved;
    const float weighted = error * request.weight;
    return request.isBarred && (isNoc || isSecond) ? -weighted : weighted;
}

void SourceTable::addUnlessRepeated(PllOptions& options, const PllOption& option) const {
    // Only options of one multiplier: another multiplier may belong to other combinations.
    const auto same = [&](const PllOption& other) {
        for (unsigned domain = 0; domain < kDomains; ++domain) {
            const std::size_t bytes = m_domains[domain].positions.size() * sizeof(float);
            if (bytes != 0 && option.errors[domain] != other.errors[domain] &&
                std::memcmp(option.errors[domain], other.errors[domain], bytes) != 0)
                return false;
        }
        return true;
    };
    for (auto other = options.all.rbegin(); other != options.all.rend() && other->mul == option.mul;
         ++other)
        if (same(*other))
            return;
    options.add(option);
}

SourceTable::SourceTable(const SourceTable& whole, const PriceBound& bound, double ceiling)
    : m_problem(whole.m_problem), m_domains(whole.m_domains), m_hasBarred(whole.m_hasBarred) {
    // Reduced cost fixing. An option whose saving lies more than the gap below what the bound needs
    // (`largestSaving`) gives a bound above the ceiling, so it is left out.
    //
    // Errors are cut likewise. Without one peripheral the bound falls by its price at most, so a
    // sum in which that peripheral has the error e is at least `lowest - price + e`. An error above
    // `most` = price + gap thus belongs to no sum within the ceiling, and the entry may say
    // "unserved". The cut can make a peripheral take a clock that it would have passed over because
    // its error was smaller by less than the margin. That error is then within the margin of
    // `most`; the factor of `kRoom` keeps such a sum above the ceiling too.
    const double gap = ceiling - bound.lowest();
    std::array<PriceRow, kDomains> most;
    for (unsigned domain = 0; domain < kDomains; ++domain)
        for (const float price : bound.prices(domain))
            most[domain].push_back(
                static_cast<float>((static_cast<double>(price) + gap) * (1.0 + 4.0 * kRoom)));
    std::array<std::unordered_map<const float*, const float*>, kDomains> rows;
    const auto withoutLarge = [&](const float* row, unsigned domain) {
        const auto [entry, isNew] = rows[domain].try_emplace(row, row);
        if (isNew)
            entry->second = cutRow(row, most[domain]);
        return entry->second;
    };
    for (unsigned r = 0; r < kRoles; ++r) {
        const auto role = static_cast<Role>(r);
        const PllOptions& all = whole.options(role);
        for (std::size_t i = 0; i < all.all.size(); ++i) {
            const double saving = bound.saving(role, i);
            if (bound.largestSaving(role) - saving > gap)
                continue;
            PllOption option = all.all[i];
            option.saving = static_cast<float>(saving);
            for (unsigned domain = 0; domain < kDomains; ++domain)
                if (option.errors[domain] != nullptr)
                    option.errors[domain] = withoutLarge(option.errors[domain], domain);
            addUnlessRepeated(m_options[r], option);
        }
    }
}

const float* SourceTable::cutRow(const float* row, const std::vector<float>& most) {
    const auto isLarge = [](float error, float limit) { return std::fabs(error) > limit; };
    const auto length = static_cast<std::ptrdiff_t>(most.size());
    if (std::equal(row, row + length, most.begin(), std::not_fn(isLarge)))
        return row;
    float* const cut = m_rows.add(most.size());
    std::transform(row, row + length, most.begin(), cut, [&](float error, float limit) {
        if (isLarge(error, limit))
            return kUnserved;
        return error;
    });
    return cut;
}

} // namespace hbs_clocking
