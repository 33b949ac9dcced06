// The design's parameters as a handoff asks for them: by name, or inside a composite.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "handoff/HWHTables.h"

namespace hwh {

/// Fills `result` with what a composite's `text`, a word list with or without braces around it,
/// stands for: "prefix_key" to value for each pair of words. One blank in front of a word is
/// dropped, so that three blanks in a row make an empty word; a single word yields nothing, an odd
/// last one is dropped.
void parseTclPairs(const std::string& prefix, std::string_view text, HWHTextMap& result);

/// A frequency's text from MHz to Hz: truncated to an integer of which the low 32 bits count.
/// Reads what `atof` reads, with the decimal point of the classic locale; "0" for a text that is
/// no number, for NaN and for what 64 bits can't hold.
[[nodiscard]] std::string scaledToHz(const std::string& megahertz);

/// Answers names out of the caller's map, which has to outlive it.
///
/// A composite K yields only names that go on with "_" behind K, so the candidates for a name are
/// found at the underscores of the name itself, and of these only where some composite's key is
/// that long. Each composite is parsed once, when it is first asked.
class DesignParams {
public:
    explicit DesignParams(const HWHTextMap& params);

    /// The value that a parameter of the metadata gets: the design parameter of that name, else
    /// the pair of the shortest composite that yields it, scaled to Hz where the name says MHz,
    /// else the name itself.
    [[nodiscard]] std::string resolve(const std::string& name);

    /// The text that decides an enable parameter: the design parameter of that name, else the pair
    /// of the longest composite that yields it, else null.
    [[nodiscard]] const std::string* resolveEnable(const std::string& name);

    [[nodiscard]] bool contains(const std::string& name) const { return m_params.contains(name); }

private:
    struct Composite {
        const std::string* text = nullptr;
        HWHTextMap pairs; ///< filled when `text` has been parsed and is null
    };

    const std::string* find(const std::string& name) const;
    const std::string* findIn(std::string_view key, const std::string& name);
    const std::string* findInShortest(const std::string& name);
    template <class Visitor>
    void forEachCandidate(std::string_view name, Visitor&& visit) const;

    const HWHTextMap& m_params;
    std::unordered_map<std::string_view, Composite> m_composites;
    std::vector<std::size_t> m_keyLengths; ///< of the composites, each once, ascending
};

} // namespace hwh
