// How the checks of a connectivity file report.
#pragma once

#include <string>
#include <utility>

#include "base/JsonTape.h"
#include "diagnostics/Diagnostic.h"
#include "handoff/HWHConnectivity.h"

namespace hwh {

/// A name as findings show it.
[[nodiscard]] inline std::string quoted(std::string_view name) {
    return '"' + std::string(name) + '"';
}

/// Gives the sink findings with their places. The file has been read with a sink.
class Findings {
public:
    Findings(const ConnectivityFile& file, const tq::DiagnosticSink& sink)
        : m_file(file), m_sink(sink) {}

    void warn(const char* id, const base::JsonNode& at, std::string text,
              std::string expected = {}) const {
        m_sink(make(tq::Severity::Warning, id, at, std::move(text), std::move(expected)));
    }
    void warn(const char* id, const base::JsonNode& at, std::string text,
              const base::JsonNode& noteAt, std::string note) const {
        tq::Diagnostic finding = make(tq::Severity::Warning, id, at, std::move(text), {});
        finding.notes.push_back({m_file.placeOf(noteAt), std::move(note)});
        m_sink(std::move(finding));
    }
    void error(const char* id, const base::JsonNode& at, std::string text,
               std::string expected = {}) const {
        m_sink(make(tq::Severity::Error, id, at, std::move(text), std::move(expected)));
    }

private:
    tq::Diagnostic make(tq::Severity severity, const char* id, const base::JsonNode& at,
                        std::string text, std::string expected) const {
        return tq::makeDiagnostic(severity, id, m_file.placeOf(at), std::move(text),
                                  std::move(expected));
    }

    const ConnectivityFile& m_file;
    const tq::DiagnosticSink& m_sink;
};

} // namespace hwh
