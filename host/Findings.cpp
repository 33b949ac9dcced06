#include <iostream>

#include "host/Command.h"
#include "workbench/text/DiagnosticText.h"

namespace host {

void printFindings(const tq::DiagnosticList& findings) {
    for (const tq::Diagnostic& finding : findings.all())
        std::cerr << tq::describe(finding);
    if (const std::size_t more = findings.count() - findings.all().size(); more != 0)
        std::cerr << "hbs: " << more << " more findings\n";
}

} // namespace host
