#include "workbench/requests/Console.h"

#include <ostream>

#include "workbench/text/DiagnosticText.h"
#include "workbench/text/Text.h"

namespace tq {

void Console::note(const std::string& text) const {
    err << program << ": " << printable(text) << '\n';
}

void Console::print(const DiagnosticList& findings) const {
    for (const Diagnostic& finding : findings.all())
        err << describe(finding);
    if (const std::size_t more = findings.count() - findings.all().size(); more != 0)
        note(std::to_string(more) + " more findings");
}

} // namespace tq
