#include "workbench/files/InputError.h"

#include <utility>

#include "workbench/text/DiagnosticText.h"
#include "workbench/text/Text.h"

namespace tq {

InputError::InputError(const std::string& text)
    : std::runtime_error(printable(text)),
      m_diagnostic(makeDiagnostic(Severity::Error, "", {}, text)) {}

InputError::InputError(Diagnostic diagnostic)
    : std::runtime_error(headline(diagnostic)), m_diagnostic(std::move(diagnostic)) {}

InputError fileError(std::string file, std::string text) {
    return InputError(
        makeDiagnostic(Severity::Error, "", placeOfFile(std::move(file)), std::move(text)));
}

OutputError outputError(std::string file, std::string text) {
    return OutputError(
        makeDiagnostic(Severity::Error, "", placeOfFile(std::move(file)), std::move(text)));
}

} // namespace tq
