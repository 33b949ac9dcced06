// The tool's messages as findings.
#pragma once

#include <functional>

#include "ComMsgMgr.h"
#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"

namespace tq {

/// A message as a warning, as the operation that sent it continues. The id is that in the
/// catalogue, such as "91-44", else the scope; the lines after the first, such as a script's trace,
/// are notes.
[[nodiscard]] TQ_WORKBENCH_EXPORT Diagnostic findingOf(const ComMsg& message);

/// Gives the tool's messages to a function while it lives, and restores the sink before it then:
///
///     const MessageScope messages([&](const ComMsg& message) { sink(findingOf(message)); });
///
/// The sink belongs to the process; scopes must end in the reverse order of their beginning.
class TQ_WORKBENCH_EXPORT MessageScope {
public:
    /// An empty function receives as the default sink does.
    explicit MessageScope(std::function<void(const ComMsg&)> receive);
    ~MessageScope();
    MessageScope(const MessageScope&) = delete;
    MessageScope& operator=(const MessageScope&) = delete;

private:
    std::function<void(const ComMsg&)> m_before;
};

} // namespace tq
