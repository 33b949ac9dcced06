#include "clocking/search/ErrorFront.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace hbs_clocking {

/// A group of twins, by their numbers before arranging, with the groups that it dominates below it.
struct ErrorFront::Tree {
    std::size_t first = 0;
    std::size_t end = 0; ///< one past the twins
    std::vector<Tree> below;
};

namespace {

/// Limits of the dominance test: nodes of one level that a setting is compared with, and levels of
/// the tree. The first nodes save most and dominate most. With many peripherals hardly any setting
/// is dominated, and comparing all pairs would take quadratic time without a gain. A dominance that
/// is missed costs time only.
constexpr std::size_t kMostCompared = 64;
constexpr unsigned kMostLevels = 8;

} // namespace

void ErrorFront::add(const OwnSetting& setting, double least) {
    const double saving = savingOf(m_prices, setting);
    if (saving < least)
        return;
    m_nodes.push_back({setting, saving, hashOf(setting), 0, false});
}

void ErrorFront::arrange() {
    markTwins();
    std::vector<Node> nodes;
    nodes.reserve(m_nodes.size());
    for (const Tree& top : buildTree().below)
        flatten(top, nodes);
    m_nodes = std::move(nodes);
}

ErrorFront::Tree ErrorFront::buildTree() const {
    // A setting that dominates another one saves no less, and nodes are in descending order of
    // their saving, so one pass finds each setting's leader among those before it.
    Tree root;
    for (std::size_t first = 0; first < m_nodes.size();) {
        std::size_t end = first + 1;
        while (end < m_nodes.size() && m_nodes[end].isTwin)
            ++end;
        Tree* above = &root;
        for (unsigned level = 0; level < kMostLevels; ++level) {
            const std::size_t compared = std::min(above->below.size(), kMostCompared);
            const auto last = above->below.begin() + static_cast<std::ptrdiff_t>(compared);
            const auto found = std::find_if(above->below.begin(), last, [&](const Tree& tree) {
                return dominates(m_nodes[tree.first].setting, m_nodes[first].setting);
            });
            if (found == last)
                break;
            above = &*found;
        }
        above->below.push_back({first, end, {}});
        first = end;
    }
    return root;
}

void ErrorFront::flatten(const Tree& tree, std::vector<Node>& nodes) const {
    const std::size_t place = nodes.size();
    for (std::size_t twin = tree.first; twin < tree.end; ++twin) {
        nodes.push_back(m_nodes[twin]);
        nodes.back().end = nodes.size();
    }
    for (const Tree& below : tree.below)
        flatten(below, nodes);
    nodes[place].end = nodes.size();
}

void ErrorFront::markTwins() {
    // Twins have the same saving and hash, so this order makes them adjacent, the first one of the
    // enumeration in front.
    std::sort(m_nodes.begin(), m_nodes.end(), [](const Node& a, const Node& b) {
        if (a.saving != b.saving)
            return a.saving > b.saving;
        return a.hash != b.hash ? a.hash < b.hash : a.setting.place() < b.setting.place();
    });
    std::size_t first = 0;
    for (std::size_t i = 1; i < m_nodes.size(); ++i) {
        m_nodes[i].isTwin = areTwins(m_nodes[first], m_nodes[i]);
        if (!m_nodes[i].isTwin)
            first = i;
    }
}

bool ErrorFront::areTwins(const Node& a, const Node& b) const {
    return a.setting.second != nullptr && b.setting.second != nullptr && a.hash == b.hash &&
           dominates(a.setting, b.setting) && dominates(b.setting, a.setting) &&
           isClear(a.setting) && isClear(b.setting);
}

bool ErrorFront::isClear(const OwnSetting& setting) const {
    // More than one margin apart, the order of the two decides nothing, whatever the error before
    // them; the factor leaves room for rounding.
    const float* const first = firstErrors(setting);
    const float* const second = secondErrors(setting);
    for (std::size_t i = 0; i < m_prices.size(); ++i) {
        const float larger = std::max(std::fabs(first[i]), std::fabs(second[i]));
        const float smaller = std::min(std::fabs(first[i]), std::fabs(second[i]));
        if (larger != smaller && larger != kUnserved && larger - smaller <= 4 * kMargin * larger)
            return false;
    }
    return true;
}

std::size_t ErrorFront::hashOf(const OwnSetting& setting) const {
    const float* const first = firstErrors(setting);
    const float* const second = secondErrors(setting);
    std::uint64_t hash = 0;
    for (std::size_t i = 0; i < m_prices.size(); ++i) {
        const float smaller = std::min(std::fabs(first[i]), std::fabs(second[i]));
        hash = (hash ^ std::bit_cast<std::uint32_t>(smaller)) * 0x9E3779B97F4A7C15U;
        hash ^= hash >> 29U;
    }
    return static_cast<std::size_t>(hash);
}

double ErrorFront::largestSaving(const PriceRow& prices) const {
    // Savings at lower prices are no larger, so the scan ends at the first node whose own saving is
    // no larger than the best found. A dominated setting saves no more than its leader.
    double largest = 0.0;
    for (std::size_t i = 0; i < m_nodes.size() && m_nodes[i].saving > largest; i = m_nodes[i].end)
        largest = std::max(largest, savingOf(prices, m_nodes[i].setting));
    return largest;
}

double ErrorFront::least(const ErrorRow& before, double budget) const {
    // Nodes are in descending order of their savings, so bounds ascend. `end` skips dominated
    // nodes.
    const double sumBefore = certain(before);
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < m_nodes.size(); i = m_nodes[i].end) {
        const double bound = sumBefore - m_nodes[i].saving;
        if (bound > std::min(least, budget))
            return std::min(least, bound);
        least = std::min(least, sumBehind(before, m_nodes[i].setting));
    }
    return least;
}

double ErrorFront::sumOfSmaller(const float* before, const float* first,
                                const float* second) const {
    const std::size_t length = m_prices.size();
    std::array<float, kLanes> lanes{};
    for (std::size_t i = 0; i < length; i += kLanes)
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            lanes[lane] +=
                std::min(std::fabs(before[i + lane]),
                         std::min(std::fabs(first[i + lane]), std::fabs(second[i + lane])));
    return static_cast<double>((lanes[0] + lanes[1]) + (lanes[2] + lanes[3]));
}

double ErrorFront::savingOf(const PriceRow& prices, const OwnSetting& setting) const {
    const float* const first = firstErrors(setting);
    const float* const second = secondErrors(setting);
    std::array<float, kLanes> lanes{};
    for (std::size_t i = 0; i < prices.size(); i += kLanes)
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            lanes[lane] += std::max(0.0F, prices[i + lane] - std::min(std::fabs(first[i + lane]),
                                                                      std::fabs(second[i + lane])));
    return static_cast<double>((lanes[0] + lanes[1]) + (lanes[2] + lanes[3]));
}

bool ErrorFront::dominates(const OwnSetting& leader, const OwnSetting& other) const {
    const std::array rows = {firstErrors(leader), secondErrors(leader), firstErrors(other),
                             secondErrors(other)};
    for (std::size_t i = 0; i < m_prices.size(); ++i)
        if (std::min(std::fabs(rows[0][i]), std::fabs(rows[1][i])) >
            std::min(std::fabs(rows[2][i]), std::fabs(rows[3][i])))
            return false;
    return true;
}

} // namespace hbs_clocking
