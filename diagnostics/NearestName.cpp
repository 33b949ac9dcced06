#include "diagnostics/NearestName.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tq {

namespace {

constexpr std::size_t kLongest = 64;
constexpr unsigned kEdit = 2; ///< in halves, so that a change of case can cost one
constexpr unsigned kCaseEdit = 1;

using Row = std::array<unsigned, kLongest + 1>;

[[nodiscard]] char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

[[nodiscard]] unsigned changeCost(char a, char b) {
    if (a == b)
        return 0;
    return lowered(a) == lowered(b) ? kCaseEdit : kEdit;
}

[[nodiscard]] bool differsInCase(std::string_view a, std::string_view b) {
    return a != b && std::equal(a.begin(), a.end(), b.begin(), b.end(),
                                [](char x, char y) { return lowered(x) == lowered(y); });
}

/// The Damerau-Levenshtein distance of two short texts, in halves of an edit.
[[nodiscard]] unsigned distance(std::string_view a, std::string_view b) {
    Row beforeLast{};
    Row last{};
    for (std::size_t j = 0; j <= b.size(); ++j)
        last[j] = static_cast<unsigned>(j) * kEdit;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        Row row{};
        row[0] = static_cast<unsigned>(i) * kEdit;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            row[j] = std::min({last[j] + kEdit, row[j - 1] + kEdit,
                               last[j - 1] + changeCost(a[i - 1], b[j - 1])});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + kEdit);
        }
        beforeLast = last;
        last = row;
    }
    return last[b.size()];
}

} // namespace

std::string_view nearestName(std::string_view typed, std::span<const std::string_view> known) {
    std::string_view nearest;
    if (typed.empty() || typed.size() > kLongest)
        return nearest;
    const auto edits = static_cast<unsigned>(typed.size() / 3);
    unsigned best = edits * kEdit + kCaseEdit + 1;
    for (const std::string_view name : known) {
        if (name.size() > kLongest)
            continue;
        const unsigned cost = differsInCase(typed, name) ? kCaseEdit : distance(typed, name);
        if (cost < best) {
            best = cost;
            nearest = name;
        }
    }
    return nearest;
}

std::string quotedNearestName(std::string_view typed, std::span<const std::string_view> known) {
    const std::string_view nearest = nearestName(typed, known);
    return nearest.empty() ? std::string() : '"' + std::string(nearest) + '"';
}

std::string oneOfNames(std::string_view typed, std::span<const std::string_view> known) {
    constexpr std::size_t kMostListed = 40;
    std::string list;
    for (const std::string_view name : known.subspan(0, std::min(known.size(), kMostListed)))
        list.append(list.empty() ? "one of: " : ", ").append(name);
    if (known.size() > kMostListed)
        list.append(", and ").append(std::to_string(known.size() - kMostListed)).append(" more");
    if (const std::string nearest = quotedNearestName(typed, known); !nearest.empty())
        list.append("; did you mean ").append(nearest).append("?");
    return list;
}

} // namespace tq
