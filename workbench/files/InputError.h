// The exception of the workbench for files and arguments that can't be used.
#pragma once

#include <stdexcept>
#include <string>

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"

namespace tq {

/// A file or an argument that can't be used. `what()` is one line: the place, if any, what is wrong
/// and what was expected, with control characters escaped, so that it can be printed on a terminal.
class TQ_WORKBENCH_EXPORT InputError : public std::runtime_error {
public:
    /// Without a place.
    explicit InputError(const std::string& text);
    explicit InputError(Diagnostic diagnostic);

    /// The finding with its place, as it was given.
    [[nodiscard]] const Diagnostic& diagnostic() const { return m_diagnostic; }

private:
    Diagnostic m_diagnostic;
};

/// A file that can't be written.
class TQ_WORKBENCH_EXPORT OutputError : public InputError {
public:
    using InputError::InputError;
};

/// An error about a file as a whole.
[[nodiscard]] TQ_WORKBENCH_EXPORT InputError fileError(std::string file, std::string text);
[[nodiscard]] TQ_WORKBENCH_EXPORT OutputError outputError(std::string file, std::string text);

} // namespace tq
