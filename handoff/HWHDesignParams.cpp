#include "handoff/HWHDesignParams.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <stdexcept>

#include "HSTStringUtils.h"

namespace hwh {

namespace {

/// Takes the next word off the front of a text that isn't empty.
std::string_view takeWord(std::string_view& text) {
    if (text.front() == ' ')
        text.remove_prefix(1);
    const std::size_t blank = text.find(' ');
    const std::string_view word = text.substr(0, blank);
    text = blank == std::string_view::npos ? std::string_view() : text.substr(blank + 1);
    return word;
}

std::size_t rollingHashOf(std::string_view key) {
    RollingHash hash;
    for (const char c : key)
        hash.add(c);
    return hash.value();
}

bool names(std::string_view name, std::string_view unit) {
    return name.find(unit) != std::string_view::npos;
}

} // namespace

std::string scaledToHz(const std::string& megahertz) {
    constexpr double kHzPerMhz = 1000000.0;
    constexpr double kLimit = 9223372036854775808.0; // 2 to the power of 63
    const double hertz = std::trunc(HSTStringUtils::to_double(megahertz) * kHzPerMhz);
    // Written so that NaN fails as well.
    if (!(hertz >= -kLimit && hertz < kLimit))
        return "0";
    return std::to_string(static_cast<std::uint32_t>(static_cast<std::int64_t>(hertz)));
}

CompositeWords::CompositeWords(std::string_view text) : m_text(text) {
    if (text.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("a composite parameter of more than 4 GiB");
    if (text.size() >= 2 && text.front() == '{' && text.back() == '}')
        text = text.substr(1, text.size() - 2);
    const auto blanks = static_cast<std::size_t>(std::count(text.begin(), text.end(), ' '));
    m_index.reserve(blanks / 2 + 1);
    m_pairs.reserve(blanks / 2 + 1);
    while (!text.empty()) {
        const std::string_view key = takeWord(text);
        if (text.empty())
            return;
        const Word value = placeOf(takeWord(text));
        m_longestKey = std::max(m_longestKey, key.size());
        const std::size_t hash = std::hash<std::string_view>()(key);
        const std::uint32_t known = find(key, hash);
        if (known != kNone) {
            m_pairs[known].value = value;
            continue;
        }
        m_index.insert(hash, static_cast<std::uint32_t>(m_pairs.size()));
        m_pairs.push_back({placeOf(key), value});
    }
}

std::optional<std::string_view> CompositeWords::find(std::string_view key) const {
    if (key.size() > m_longestKey)
        return std::nullopt;
    const std::uint32_t number = find(key, std::hash<std::string_view>()(key));
    return number == kNone ? std::nullopt : std::optional(wordAt(m_pairs[number].value));
}

DesignParams::DesignParams(const HWHTextMap& params) {
    m_entries.reserve(params.size());
    for (const auto& [name, text] : params)
        m_entries.push_back({name, &text});
    m_index.reserve(params.size());
    for (std::uint32_t number = 0; number < m_entries.size(); ++number) {
        if (number + kPrefetched < m_entries.size())
            __builtin_prefetch(m_entries[number + kPrefetched].name.data());
        const Entry& entry = m_entries[number];
        m_index.insert(std::hash<std::string_view>()(entry.name), number);
        // Without a blank there is a single word, which yields nothing.
        if (entry.text->find(' ') != std::string::npos)
            addComposite(number);
    }
    std::sort(m_keyLengths.begin(), m_keyLengths.end());
    m_keyLengths.erase(std::unique(m_keyLengths.begin(), m_keyLengths.end()), m_keyLengths.end());
}

void DesignParams::addComposite(std::uint32_t number) {
    const std::string_view key = m_entries[number].name;
    m_composites.insert(rollingHashOf(key), number);
    if (m_keyLengths.empty() || m_keyLengths.back() != key.size())
        m_keyLengths.push_back(key.size());
}

/// Calls `visit(text)` for what each composite yields for `name`, shorter keys first, while it says
/// true.
template <class Visitor>
void DesignParams::forEachFound(std::string_view name, Visitor&& visit) {
    RollingHash hash;
    std::size_t hashed = 0;
    for (const std::size_t length : m_keyLengths) {
        if (length >= name.size())
            return;
        if (name[length] != '_')
            continue;
        for (; hashed < length; ++hashed)
            hash.add(name[hashed]);
        const std::uint32_t number = findComposite(name.substr(0, length), hash.value());
        if (number == kNone)
            continue;
        const auto found = wordsOf(number).find(name.substr(length + 1));
        if (found && !visit(*found))
            return;
    }
}

void DesignParams::prefetch(std::span<const std::string_view> names) const {
    std::array<std::size_t, kPrefetched> hashes{};
    std::array<const Entry*, kPrefetched> entries{};
    for (std::size_t i = 0; i < names.size(); ++i) {
        hashes[i] = std::hash<std::string_view>()(names[i]);
        m_index.prefetch(hashes[i]);
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::uint32_t number = m_index.firstCandidate(hashes[i]);
        entries[i] = number == kNone ? nullptr : &m_entries[number];
        __builtin_prefetch(entries[i]);
    }
    for (std::size_t i = 0; i < names.size(); ++i)
        if (entries[i] != nullptr) {
            __builtin_prefetch(entries[i]->name.data());
            __builtin_prefetch(entries[i]->text);
        }
}

DesignParams::Value DesignParams::resolve(std::string_view name) {
    if (const auto text = findText(name))
        return {*text, ValueSource::Design, names(name, "_FREQMHZ")};
    Value value{name};
    forEachFound(name, [&](std::string_view text) {
        value = {text, ValueSource::Composite, names(name, "CTRL_ACT_FREQMHZ")};
        return false;
    });
    return value;
}

std::optional<std::string_view> DesignParams::resolveEnable(std::string_view name) {
    if (const auto text = findText(name))
        return text;
    std::optional<std::string_view> last;
    forEachFound(name, [&](std::string_view text) {
        last = text;
        return true;
    });
    return last;
}

std::optional<std::string_view> DesignParams::findText(std::string_view name) const {
    const std::uint32_t number =
        m_index.find(std::hash<std::string_view>()(name),
                     [&](std::uint32_t candidate) { return m_entries[candidate].name == name; });
    return number == kNone ? std::nullopt
                           : std::optional<std::string_view>(*m_entries[number].text);
}

std::uint32_t DesignParams::findComposite(std::string_view key, std::size_t hash) const {
    return m_composites.find(hash,
                             [&](std::uint32_t number) { return m_entries[number].name == key; });
}

const CompositeWords& DesignParams::wordsOf(std::uint32_t number) {
    return m_words.try_emplace(number, *m_entries[number].text).first->second;
}

} // namespace hwh
