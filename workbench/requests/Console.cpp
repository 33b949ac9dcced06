#include "workbench/requests/Console.h"

#include <algorithm>

#include "workbench/files/InputError.h"
#include "workbench/files/OutputFile.h"
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

FileConsole::FileConsole(const Console& console, const std::vector<std::string>& outputs)
    : m_console{std::count(outputs.begin(), outputs.end(), kStandardOutput) == 0 ? console.out
                                                                                 : m_nowhere,
                console.err, console.showsProgress, console.program} {
    if (std::count(outputs.begin(), outputs.end(), kStandardOutput) > 1)
        throw InputError("only one file can be the standard output (-)");
}

} // namespace tq
