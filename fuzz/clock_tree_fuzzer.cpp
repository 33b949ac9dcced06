// Clock tree files: any text is refused with a complaint, or solved and reported.

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <sstream>
#include <string>

#include "host/ClockTree.h"
#include "host/clocks_report.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::ostringstream quiet;
    std::streambuf* const before = std::cout.rdbuf(quiet.rdbuf()); // what the library says
    try {
        const auto file = host::JsonFile::parse("tree.json", std::string(data, data + size));
        const host::ClockTree tree = host::readClockTree(file);
        const auto solver = host::buildClockSolver(tree);
        solver->runSolution();
        const host::ClockReport report = host::makeClockReport(tree, *solver);
        host::printClockTables(report, quiet);
        host::printClockJson(report, quiet);
    } catch (const host::BadInput&) { // the one way to refuse a file
    }
    std::cout.rdbuf(before);
    return 0;
}
