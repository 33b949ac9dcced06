// Findings that a check gives to a script.
#pragma once

#include <string>
#include <vector>

#include "bindings/core/Convert.h"
#include "diagnostics/Diagnostic.h"
#include "workbench/text/DiagnosticText.h"

namespace tq::bindings {

struct Finding {
    std::string severity;
    std::string id;
    std::string file;
    std::size_t line = 0;
    std::size_t column = 0;
    std::string text;
    std::string expected;
};

template <>
struct RecordOf<Finding> {
    static constexpr const char* name = "Finding";
    static constexpr auto fields =
        std::tuple{field("severity", &Finding::severity), field("id", &Finding::id),
                   field("file", &Finding::file),         field("line", &Finding::line),
                   field("column", &Finding::column),     field("text", &Finding::text),
                   field("expected", &Finding::expected)};
};

[[nodiscard]] inline std::vector<Finding> findingsOf(const std::vector<Diagnostic>& list) {
    std::vector<Finding> findings;
    findings.reserve(list.size());
    for (const Diagnostic& finding : list)
        findings.push_back({severityName(finding.severity), finding.id, finding.place.file,
                            finding.place.line, finding.place.column, finding.text,
                            finding.expected});
    return findings;
}

} // namespace tq::bindings
