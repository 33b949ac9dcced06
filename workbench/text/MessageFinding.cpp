#include "workbench/text/MessageFinding.h"

#include <sstream>
#include <string>
#include <utility>

namespace tq {

namespace {

std::string idOf(const ComMsg& message) {
    if (!message.format.starts_with('@'))
        return message.scope;
    return message.format.substr(1, message.format.find('@', 1) - 1);
}

} // namespace

Diagnostic findingOf(const ComMsg& message) {
    std::istringstream lines(message.text());
    std::string line;
    std::getline(lines, line);
    Diagnostic finding = makeDiagnostic(Severity::Warning, idOf(message), {}, std::move(line));
    while (std::getline(lines, line))
        finding.notes.push_back({{}, line});
    return finding;
}

MessageScope::MessageScope(std::function<void(const ComMsg&)> receive)
    : m_before(ComMsgMgr::setSink(std::move(receive))) {}

MessageScope::~MessageScope() {
    ComMsgMgr::setSink(std::move(m_before));
}

} // namespace tq
