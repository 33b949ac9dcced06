#include "HPAParamMgr.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <thread>
#include <utility>

#include "HEXError.h"
#include "base/Text.h"

namespace {

constexpr unsigned kMostDefaultThreads = 8;

std::optional<bool> readBool(const std::string& text) {
    static constexpr std::array<std::pair<std::string_view, bool>, 8> kWords{{{"true", true},
                                                                              {"false", false},
                                                                              {"1", true},
                                                                              {"0", false},
                                                                              {"yes", true},
                                                                              {"no", false},
                                                                              {"on", true},
                                                                              {"off", false}}};
    const std::string asked = base::lowered(text);
    for (const auto& [word, value] : kWords)
        if (asked == word)
            return value;
    return std::nullopt;
}

std::optional<int> readInt(std::string_view text) {
    if (text.size() > 1 && text.front() == '+' && text[1] != '-')
        text.remove_prefix(1);
    int value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end)
        return std::nullopt;
    return value;
}

[[noreturn]] void raiseMissing(const std::string& name) {
    throw HEXError("parameter '" + name + "' does not exist");
}

[[noreturn]] void raiseUnreadable(const std::string& name, const std::string& text,
                                  const char* expected) {
    throw HEXError("parameter '" + name + "': '" + text + "' is not " + expected);
}

} // namespace

HPAParamMgr* HPAParamMgr::getParamMgr() {
    static HPAParamMgr manager;
    return &manager;
}

HPAParamMgr::HPAParamMgr() {
    // hardware_concurrency may answer 0 where the machine doesn't tell.
    const unsigned threads =
        std::clamp(std::thread::hardware_concurrency(), 1U, kMostDefaultThreads);
    m_defaults["general.maxThreads"] = std::to_string(threads);
    m_defaults["general.maxInputMiB"] = "256";
    m_defaults["project.NoTimeStamp"] = "false";
    m_defaults["vorn.addressingTclTimeLimitMs"] = "60000";
    m_defaults["vorn.writeAddressingJson"] = "false";
}

void HPAParamMgr::setValue(const std::string& name, const std::string& text) {
    const std::lock_guard lock(m_mutex);
    m_values[name] = text;
}

void HPAParamMgr::unsetValue(const std::string& name) {
    const std::lock_guard lock(m_mutex);
    m_values.erase(name);
}

std::optional<std::string> HPAParamMgr::find(const std::string& name) const {
    const std::lock_guard lock(m_mutex);
    for (const auto* table : {&m_values, &m_defaults})
        if (const auto entry = table->find(name); entry != table->end())
            return entry->second;
    return std::nullopt;
}

bool HPAParamMgr::getValueAsBool(const std::string& name) const {
    const std::optional<std::string> text = find(name);
    if (!text)
        raiseMissing(name);
    const auto value = readBool(*text);
    if (!value)
        raiseUnreadable(name, *text, "a boolean");
    return *value;
}

int HPAParamMgr::getValueAsInt(const std::string& name) const {
    const std::optional<std::string> text = find(name);
    if (!text)
        raiseMissing(name);
    const auto value = readInt(*text);
    if (!value)
        raiseUnreadable(name, *text, "an integer");
    return *value;
}

bool HPAParamMgr::getValueIfExistAsBool(const std::string& name, bool fallback) const {
    const std::optional<std::string> text = find(name);
    return !text ? fallback : readBool(*text).value_or(fallback);
}
