// Why a call from a script failed.
#pragma once

#include <exception>
#include <string>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "tq_bindings_export.h"

namespace tq::bindings {

/// What became of a call that failed, for every language to raise in its own manner.
struct Failure {
    enum class Kind {
        Deleted,     ///< the native object is gone
        Busy,        ///< it is in a search on another thread
        Input,       ///< a file or an argument can't be used
        Argument,    ///< an argument has the wrong type or isn't one of the known ones
        NotFound,    ///< there is nothing of that name
        Command,     ///< the library refuses the operation
        Interrupted, ///< by the user
        Memory,
        Internal
    };

    Kind kind = Kind::Internal;
    std::string text;
    std::vector<Diagnostic> diagnostics; ///< with places, if there are any
};

class TQ_BINDINGS_EXPORT ScriptError : public std::exception {
public:
    ScriptError(Failure::Kind kind, std::string text);
    ~ScriptError() override;

    [[nodiscard]] const char* what() const noexcept override;
    [[nodiscard]] Failure::Kind kind() const { return m_kind; }

private:
    Failure::Kind m_kind;
    std::string m_text;
};

/// The exception that is being handled, as a failure.
[[nodiscard]] TQ_BINDINGS_EXPORT Failure currentFailure();
/// The name of a kind for error codes: "DELETED".
[[nodiscard]] TQ_BINDINGS_EXPORT const char* codeOf(Failure::Kind kind);

} // namespace tq::bindings
