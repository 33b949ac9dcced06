#include "handoff/HWHDesignParams.h"

#include <cmath>
#include <cstdint>
#include <set>
#include <utility>

#include "HSTStringUtils.h"

namespace hwh {

namespace {

std::vector<std::string_view> splitWords(std::string_view text) {
    std::vector<std::string_view> words;
    while (!text.empty()) {
        if (text.front() == ' ')
            text.remove_prefix(1);
        const std::size_t blank = text.find(' ');
        words.push_back(text.substr(0, blank));
        text = blank == std::string_view::npos ? "" : text.substr(blank + 1);
    }
    return words;
}

bool names(const std::string& name, const char* unit) {
    return name.find(unit) != std::string::npos;
}

} // namespace

void parseTclPairs(const std::string& prefix, std::string_view text, HWHTextMap& result) {
    result.clear();
    if (text.size() >= 2 && text.front() == '{' && text.back() == '}')
        text = text.substr(1, text.size() - 2);
    const auto words = splitWords(text);
    for (std::size_t i = 0; i + 1 < words.size(); i += 2)
        result[std::string(prefix).append("_").append(words[i])] = words[i + 1];
}

std::string scaledToHz(const std::string& megahertz) {
    constexpr double kHzPerMhz = 1000000.0;
    constexpr double kLimit = 9223372036854775808.0; // 2 to the power of 63
    const double hertz = std::trunc(HSTStringUtils::to_double(megahertz) * kHzPerMhz);
    // Written so that NaN fails as well.
    if (!(hertz >= -kLimit && hertz < kLimit))
        return "0";
    return std::to_string(static_cast<std::uint32_t>(static_cast<std::int64_t>(hertz)));
}

DesignParams::DesignParams(const HWHTextMap& params) : m_params(params) {
    std::set<std::size_t> lengths;
    for (const auto& [key, text] : params) {
        // Without a blank there is a single word, which yields nothing.
        if (text.find(' ') == std::string::npos)
            continue;
        m_composites[key].text = &text;
        lengths.insert(key.size());
    }
    m_keyLengths.assign(lengths.begin(), lengths.end());
}

/// Visits the keys that may yield `name`, shorter ones first, while `visit` says true.
template <class Visitor>
void DesignParams::forEachCandidate(std::string_view name, Visitor&& visit) const {
    for (const std::size_t length : m_keyLengths) {
        if (length >= name.size())
            return;
        if (name[length] == '_' && !visit(name.substr(0, length)))
            return;
    }
}

std::string DesignParams::resolve(const std::string& name) {
    if (const std::string* value = find(name))
        return names(name, "_FREQMHZ") ? scaledToHz(*value) : *value;
    if (const std::string* value = findInShortest(name))
        return names(name, "CTRL_ACT_FREQMHZ") ? scaledToHz(*value) : *value;
    return name;
}

const std::string* DesignParams::resolveEnable(const std::string& name) {
    if (const std::string* value = find(name))
        return value;
    const std::string* last = nullptr;
    forEachCandidate(name, [&](std::string_view key) {
        if (const std::string* value = findIn(key, name))
            last = value;
        return true;
    });
    return last;
}

const std::string* DesignParams::find(const std::string& name) const {
    const auto entry = m_params.find(name);
    return entry == m_params.end() ? nullptr : &entry->second;
}

const std::string* DesignParams::findInShortest(const std::string& name) {
    const std::string* first = nullptr;
    forEachCandidate(name, [&](std::string_view key) {
        first = findIn(key, name);
        return first == nullptr;
    });
    return first;
}

const std::string* DesignParams::findIn(std::string_view key, const std::string& name) {
    const auto entry = m_composites.find(key);
    if (entry == m_composites.end())
        return nullptr;
    Composite& composite = entry->second;
    if (composite.text != nullptr)
        parseTclPairs(std::string(key), *std::exchange(composite.text, nullptr), composite.pairs);
    const auto pair = composite.pairs.find(name);
    return pair == composite.pairs.end() ? nullptr : &pair->second;
}

} // namespace hwh
