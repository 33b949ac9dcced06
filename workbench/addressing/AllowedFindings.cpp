#include <algorithm>
#include <utility>

#include "workbench/addressing/MapChecks.h"
#include "workbench/text/Text.h"

namespace tq {

namespace {

/// "overlap:b/a" for "overlap:a/b"; the id itself if it has no "/".
std::string swapped(const std::string& id) {
    const std::size_t colon = id.find(':');
    const std::size_t slash = id.find('/');
    if (colon == std::string::npos || slash == std::string::npos || slash < colon)
        return id;
    return id.substr(0, colon + 1) + id.substr(slash + 1) + "/" +
           id.substr(colon + 1, slash - colon - 1);
}

} // namespace

AllowedFindings::AllowedFindings(std::vector<std::string> ids)
    : m_ids(std::move(ids)), m_known(m_ids.begin(), m_ids.end()) {}

DiagnosticSink AllowedFindings::filter(DiagnosticSink sink) {
    return [this, sink = std::move(sink)](Diagnostic finding) {
        if (!takesOut(finding.id) && sink)
            sink(std::move(finding));
    };
}

bool AllowedFindings::takesOut(const std::string& id) {
    for (const std::string& name : {id, swapped(id), id.substr(0, id.find(':')), printable(id)})
        if (m_known.contains(name)) {
            m_used.insert(name);
            return true;
        }
    return false;
}

void AllowedFindings::reportUnused(const DiagnosticSink& sink) const {
    for (const std::string& id : m_ids)
        if (!m_used.contains(id) && sink)
            sink(makeDiagnostic(Severity::Warning, "unused-allow:" + id, {},
                                "nothing was found that \"" + id + "\" allows",
                                "KIND or KIND:NAME of a finding"));
}

} // namespace tq
