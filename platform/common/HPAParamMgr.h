// The tool's parameters: named settings, kept as text.
#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "tq_export.h"

/// The process's parameter manager. Names are case sensitive. May be used by several
/// threads at once, as a search reads it beside its caller's other threads.
///
/// Booleans read "true", "false", "1", "0", "yes", "no", "on" and "off" in any letter case;
/// integers are decimal, with an optional sign, and must fit an `int`.
///
/// Parameters that exist without having been set: "general.maxThreads", the smaller of the
/// machine's threads and 8; "general.maxInputMiB", 256, the most that a reader takes from one
/// file; "project.NoTimeStamp" and "vorn.writeAddressingJson", false;
/// "vorn.addressingTclTimeLimitMs", 60000: what the scripts of one subsystem instance may take.
class TQ_EXPORT HPAParamMgr {
public:
    /// The one of the process, never null.
    static HPAParamMgr* getParamMgr();

    HPAParamMgr(const HPAParamMgr&) = delete;
    HPAParamMgr& operator=(const HPAParamMgr&) = delete;

    /// Sets a parameter, known or new.
    void setValue(const std::string& name, const std::string& text);
    /// Forgets what was set, so that the default applies again. An unknown name is no error.
    void unsetValue(const std::string& name);

    /// Raises `HEXError` for a parameter that doesn't exist or isn't a boolean.
    [[nodiscard]] bool getValueAsBool(const std::string& name) const;
    /// Raises `HEXError` for a parameter that doesn't exist or isn't an integer.
    [[nodiscard]] int getValueAsInt(const std::string& name) const;
    /// `fallback` for a parameter that doesn't exist or isn't a boolean.
    [[nodiscard]] bool getValueIfExistAsBool(const std::string& name, bool fallback) const;

private:
    HPAParamMgr();
    ~HPAParamMgr() = default;

    [[nodiscard]] std::optional<std::string> find(const std::string& name) const;

    mutable std::mutex m_mutex;
    std::map<std::string, std::string, std::less<>> m_defaults;
    std::map<std::string, std::string, std::less<>> m_values;
};
