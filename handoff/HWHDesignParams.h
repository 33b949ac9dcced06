// The design's parameters as a handoff asks for them: by name, or inside a composite.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "handoff/HWHNameTable.h"
#include "handoff/HWHTables.h"

namespace hwh {

/// A frequency's text from MHz to Hz: truncated to an integer of which the low 32 bits count.
/// Reads what `atof` reads, with the decimal point of the classic locale; "0" for a text that is
/// no number, for NaN and for what 64 bits can't hold.
[[nodiscard]] std::string scaledToHz(const std::string& megahertz);

/// The words of a composite parameter, a list with or without braces around it, in pairs of a key
/// and its value. One blank before a word is dropped, so that three blanks in a row make an
/// empty word; a single word yields nothing, an odd last one is dropped. Of two equal keys the
/// later counts.
class CompositeWords {
public:
    /// `text` has to outlive the object. Raises `std::length_error` for one beyond 4 GiB.
    explicit CompositeWords(std::string_view text);

    [[nodiscard]] std::optional<std::string_view> find(std::string_view key) const;
    [[nodiscard]] std::size_t size() const { return m_pairs.size(); }
    /// Of the pair with that number, in the order of the keys' first occurrence.
    [[nodiscard]] std::string_view key(std::uint32_t number) const {
        return wordAt(m_pairs[number].key);
    }

private:
    /// Words by their places in the text, as a design may have a hundred thousand of them.
    struct Word {
        std::uint32_t begin = 0;
        std::uint32_t size = 0;
    };
    struct Pair {
        Word key;
        Word value;
    };

    [[nodiscard]] std::string_view wordAt(Word word) const {
        return m_text.substr(word.begin, word.size);
    }
    [[nodiscard]] Word placeOf(std::string_view word) const {
        return {static_cast<std::uint32_t>(word.data() - m_text.data()),
                static_cast<std::uint32_t>(word.size())};
    }
    [[nodiscard]] std::uint32_t find(std::string_view key, std::size_t hash) const {
        return m_index.find(hash, [&](std::uint32_t pair) { return this->key(pair) == key; });
    }

    std::string_view m_text;
    HashIndex m_index; ///< pairs by key
    std::vector<Pair> m_pairs;
    std::size_t m_longestKey = 0;
};

/// Where the value of a parameter comes from.
enum class ValueSource : std::uint8_t {
    Metadata,  ///< the design doesn't know the name: it is the value itself
    Design,    ///< the design's parameter of that name
    Composite, ///< a pair inside one of the design's composites
};

/// Resolves names with the caller's map, which must outlive it and all that it returns.
///
/// A composite K yields only names that begin with K and "_", so the candidates for a name are
/// found at the underscores of the name itself, and of these only where some composite's key is
/// that long; their hashes are intermediate values of the name's own. Each composite is parsed
/// once, when it is first asked.
class DesignParams {
public:
    struct Value {
        std::string_view text;
        ValueSource source = ValueSource::Metadata;
        bool isInMegahertz = false; ///< and wanted in Hz
    };

    explicit DesignParams(const HWHTextMap& params);

    /// Brings what at most so many names lead to into the cache. Each name of many in any order
    /// would otherwise wait for memory four times.
    static constexpr std::size_t kPrefetched = 16;
    void prefetch(std::span<const std::string_view> names) const;

    /// The value that a parameter of the metadata gets: the design parameter of that name, else
    /// the pair of the shortest composite that yields it, else the name itself.
    [[nodiscard]] Value resolve(std::string_view name);

    /// The text that decides an enable parameter: the design parameter of that name, else the pair
    /// of the longest composite that yields it.
    [[nodiscard]] std::optional<std::string_view> resolveEnable(std::string_view name);

    /// The text of the design parameter of that name.
    [[nodiscard]] std::optional<std::string_view> findText(std::string_view name) const;

private:
    struct Entry {
        std::string_view name;
        const std::string* text = nullptr;
    };

    std::uint32_t findComposite(std::string_view key, std::size_t hash) const;
    void addComposite(std::uint32_t number);
    const CompositeWords& wordsOf(std::uint32_t number);
    template <class Visitor>
    void forEachFound(std::string_view name, Visitor&& visit);

    std::vector<Entry> m_entries; ///< all parameters, in order
    HashIndex m_index;
    HashIndex m_composites;                ///< those of them that are composites
    std::vector<std::size_t> m_keyLengths; ///< of the composites, each once, ascending
    std::unordered_map<std::uint32_t, CompositeWords> m_words; ///< of composites asked so far
};

} // namespace hwh
