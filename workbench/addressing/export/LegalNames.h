// Names of a design made legal in the formats that maps are exported to.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "diagnostics/Diagnostic.h"

namespace tq {

/// The text with each character that no identifier of C has replaced by "_", and a "_" before a
/// leading digit; "_" for an empty text.
[[nodiscard]] std::string identifier(std::string_view text);

/// The text with the letters a to z made capital.
[[nodiscard]] std::string capital(std::string text);

/// The names of one scope of an exported file. Two that are equal after they were made legal get
/// the suffixes "_2", "_3", …, and the sink a remark of the kind "name-clash".
class LegalNames {
public:
    /// `reserved` holds words that can't be names, each with a blank before and after.
    explicit LegalNames(const DiagnosticSink& sink, std::string_view reserved = {})
        : m_sink(sink), m_reserved(reserved) {}

    /// A name for `original`, which the remark quotes; `wanted` must be legal but for clashes.
    [[nodiscard]] std::string take(std::string wanted, std::string_view original);

private:
    [[nodiscard]] bool isFree(const std::string& name) const;

    const DiagnosticSink& m_sink;
    std::string_view m_reserved;
    std::unordered_map<std::string, unsigned> m_suffixes;
    std::unordered_set<std::string> m_taken;
};

} // namespace tq
