#include "workbench/requests/RegisterRequest.h"

#include <ostream>

#include "workbench/files/InputError.h"
#include "workbench/files/OutputFile.h"
#include "workbench/ipxact/RegisterDescription.h"
#include "workbench/ipxact/RegisterExport.h"
#include "workbench/ipxact/SchemaCheck.h"
#include "workbench/registers/RegisterReport.h"

namespace tq {

namespace {

/// Counts the registers that the whole reader finds beyond those of the narrow one.
void noteRest(const RegisterRequest& request, const Console& console, std::size_t seen) {
    try {
        const ipxact::Summary all =
            ipxact::summaryOf(ipxact::readDescription(request.file, request.libraries, {}));
        const std::size_t beyond = all.registers > seen ? all.registers - seen : 0;
        console.note(std::to_string(beyond) + " registers lie beyond");
    } catch (const InputError&) {
        return; // not the standard's: nothing lies beyond that could be counted
    }
}

} // namespace

Outcome RegisterRequest::runStrict(const Console& console) const {
    DiagnosticList findings(json ? DiagnosticList::kMost : kMostFindings);
    const RegisterList list = listRegisters(file, match, findings.sink());
    console.out << (json ? registerJson(list, findings.all()) : registerTable(list));
    console.print(findings);
    if (!json && !list.stops.empty())
        noteRest(*this, console, list.map->getRegisters().size());
    return list.registers.empty() ? Outcome::Nothing : Outcome::Found;
}

Outcome RegisterRequest::run(const Console& console) const {
    if (strict)
        return runStrict(console);
    DiagnosticList findings(json ? DiagnosticList::kMost : kMostFindings);
    const ipxact::Component component = ipxact::readDescription(file, libraries, findings.sink());
    for (const std::string& path : exports) {
        refuseInput(path, {file});
        writeOutput(path, ipxact::exportComponent(component, path, findings.sink()));
    }
    const std::size_t violations =
        schemas.empty() ? 0 : ipxact::checkSchema(file, schemas, findings.sink());
    const ipxact::RegisterSelection selection{match, fields};
    console.out << (json ? ipxact::registerJson(component, selection, findings.all())
                         : ipxact::registerTable(component, selection));
    if (!json) {
        console.print(findings);
        console.err << component.format << ": " << ipxact::summaryText(ipxact::summaryOf(component))
                    << '\n';
    }
    const bool isEmpty = ipxact::countRegisters(component, selection) == 0;
    return isEmpty || violations != 0 ? Outcome::Nothing : Outcome::Found;
}

} // namespace tq
