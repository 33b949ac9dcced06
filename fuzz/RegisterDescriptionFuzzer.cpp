// Register descriptions, IP-XACT and CMSIS-SVD: any text is refused with a complaint, or read,
// listed, written and imported.

#include <cstddef>
#include <cstdint>

#include "fuzz/Expect.h"
#include "fuzz/MemoryFile.h"
#include "workbench/ipxact/BlockImport.h"
#include "workbench/ipxact/RegisterDescription.h"
#include "workbench/ipxact/RegisterExport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::MemoryFile file;
    file.fill(data, size);
    tq::DiagnosticList findings;
    try {
        const auto component = tq::ipxact::readDescription(file.path(), {}, findings.sink());
        fuzz::expectJson(tq::ipxact::registerJson(component, {}, findings.all()));
        fuzz::expectXml(tq::ipxact::exportComponent(component, "x.xml", findings.sink()));
        fuzz::expectXml(tq::ipxact::exportComponent(component, "x.svd", findings.sink()));
        tq::ipxact::ImportSummary summary;
        static_cast<void>(tq::ipxact::importComponent(component, summary, findings.sink()));
    } catch (const tq::InputError&) { // the one way to refuse a file
    }
    return 0;
}
