// Clock tree files: any text is refused with a complaint, or solved and reported.

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <sstream>
#include <string>

#include "HPAParamMgr.h"
#include "fuzz/Expect.h"
#include "workbench/clocks/ClockReport.h"
#include "workbench/clocks/ClockTree.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // One thread: the same input takes the same way.
    HPAParamMgr::getParamMgr()->setValue("general.maxThreads", "1");
    std::ostringstream quiet;
    std::streambuf* const before = std::cout.rdbuf(quiet.rdbuf()); // what the library says
    try {
        const auto file = tq::JsonFile::parse("tree.json", std::string(data, data + size));
        const tq::ClockTree tree = tq::readClockTree(file);
        const auto solver = tq::buildClockSolver(tree);
        solver->runSolution();
        const tq::ClockReport report = tq::makeClockReport(tree, *solver);
        tq::printClockTables(report, quiet);
        std::ostringstream json;
        tq::printClockJson(report, json);
        fuzz::expectJson(json.str());
        std::ostringstream picture;
        if (report.found) {
            tq::printClockPicture(report, tree.referenceMhz, picture);
            fuzz::expectXml(picture.str());
        }
    } catch (const tq::InputError&) { // the one way to refuse a file
    }
    std::cout.rdbuf(before);
    return 0;
}
