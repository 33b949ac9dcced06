#include "workbench/requests/ClockRequest.h"

#include <ostream>

#include "HPAParamMgr.h"

#include "workbench/clocks/ClockBatch.h"
#include "workbench/clocks/ClockCheck.h"
#include "workbench/clocks/ClockPage.h"
#include "workbench/clocks/ClockReport.h"
#include "workbench/clocks/ClockRun.h"
#include "workbench/clocks/ClockSweep.h"
#include "workbench/clocks/ClockTerms.h"
#include "workbench/clocks/export/ClockExport.h"
#include "workbench/files/InputError.h"
#include "workbench/files/OutputFile.h"
#include "workbench/text/DiagnosticText.h"
#include "workbench/text/TextStream.h"

namespace tq {

namespace {

/// Writes what `print` prints, if a file was asked for.
template <class Print>
void writeFile(const std::string& path, Print print) {
    if (path.empty())
        return;
    TextStream text;
    print(text);
    writeOutput(path, text.view());
}

/// A tree that the solver refuses is a fault of the file, said in the library's words.
[[nodiscard]] ClockTree readTree(const std::string& path) {
    const JsonFile file = JsonFile::read(path);
    ClockTree tree = readClockTree(file);
    if (const std::string fault = faultOfClockTree(tree); !fault.empty())
        file.fail(file.require(file.root(), "domains").offset, fault);
    return tree;
}

/// Whether an option is given that shapes or shows a single answer.
[[nodiscard]] bool asksForAnswer(const ClockRequest& request) {
    return request.explain || request.alternatives != 0 || !request.pins.empty() ||
           !request.weights.empty() || !request.pagePath.empty();
}

[[nodiscard]] hbs_clocking::SearchTerms termsOf(const ClockRequest& request,
                                                const ClockTree& tree) {
    hbs_clocking::SearchTerms terms;
    for (const std::string& pin : request.pins)
        addPin(tree, pin, terms);
    for (const std::string& weight : request.weights)
        addWeight(tree, weight, terms);
    terms.settings = request.alternatives;
    return terms;
}

[[nodiscard]] ClockReport reportOf(const ClockRequest& request, const ClockTree& tree,
                                   const ClockRun& run) {
    ClockReport report = makeClockReport(tree, *run.solver);
    const hbs_clocking::SearchTerms& terms = run.solver->getTerms();
    if (terms.multipliers.empty() && terms.sources.empty())
        addConflicts(report, tree);
    addAlternatives(report, tree, *run.solver);
    if (request.explain)
        addSearch(report, *run.solver, tree.pllCount);
    return report;
}

void writeExports(const ClockRequest& request, const Console& console, const ClockTree& tree,
                  const ClockReport& report) {
    DiagnosticList findings;
    for (const std::string& path : request.exports)
        writeOutput(path,
                    exportClocks(report, tree.referenceMhz, *clockFormatOf(path), findings.sink()));
    console.print(findings);
}

} // namespace

bool ClockRequest::isBatch() const {
    return paths.size() > 1 || isFolder(paths.front());
}

void ClockRequest::checkOutputs() const {
    refuseInput(picturePath, paths);
    refuseInput(pagePath, paths);
    for (const std::string& path : exports) {
        refuseInput(path, paths);
        if (!clockFormatOf(path))
            throw InputError("--export " + path +
                             ": expected a file that ends in one of: " + clockFormatEndings());
    }
}

Outcome ClockRequest::runCheck(const Console& console, const ClockTree& tree) const {
    if (asksForAnswer(*this) || !sweep.empty() || !picturePath.empty() || !exports.empty())
        throw InputError("--check " + settingPath + ": takes --json only");
    ClockCheck result = checkClockSetting(tree, JsonFile::read(settingPath));
    addBestSum(result, tree);
    if (json) {
        printClockCheckJson(result, console.out);
    } else {
        console.print(result.findings);
        printClockCheck(result, console.out);
    }
    return result.holds() ? Outcome::Found : Outcome::Nothing;
}

Outcome ClockRequest::runSweep(const Console& console, const ClockTree& tree) const {
    if (asksForAnswer(*this) || !exports.empty())
        throw InputError("--sweep " + sweep + ": takes --json and --svg only");
    const ClockSweep values = readClockSweep(tree, sweep);
    const std::vector<SweepPoint> points = runClockSweep(tree, values);
    if (json)
        printClockSweepJson(values, points, console.out);
    else
        printClockSweep(values, points, console.out);
    writeFile(picturePath, [&](std::ostream& out) { printClockSweepPicture(values, points, out); });
    return bestPoint(points) != nullptr ? Outcome::Found : Outcome::Nothing;
}

Outcome ClockRequest::runBatch(const Console& console) const {
    if (asksForAnswer(*this) || !settingPath.empty() || !sweep.empty() || !picturePath.empty())
        throw InputError("several trees take --json and --export FILE.csv only");
    for (const std::string& path : exports)
        if (clockFormatOf(path) != ClockFormat::Csv)
            throw InputError("--export " + path + ": several trees are exported as .csv only");
    const ClockBatch batch =
        runClockBatch(findTrees(paths), console.showsProgress ? &console.err : nullptr);
    if (json)
        printClockBatchJson(batch, console.out);
    else
        printClockBatch(batch, console.out);
    for (const std::string& path : exports)
        writeOutput(path, clockBatchCsv(batch));
    if (batch.failed != 0)
        return Outcome::BadInput;
    return batch.unsolved == 0 && !batch.isInterrupted ? Outcome::Found : Outcome::Nothing;
}

Outcome ClockRequest::solve(const Console& console, const ClockTree& tree) const {
    HPAParamMgr::getParamMgr()->setValue("general.maxThreads", std::to_string(threads));
    StepObserver observer;
    if (console.showsProgress)
        observer = [&console](float tolerance) {
            console.err << console.program << ": searching at tolerance " << tolerance << '\n';
        };
    const ClockRun run = runClockTree(tree, observer, nullptr, termsOf(*this, tree));
    for (const std::string& line : run.said)
        console.note(line);
    const ClockReport report = reportOf(*this, tree, run);
    for (const Diagnostic& warning : warningsOf(report))
        console.err << console.program << ": " << describe(warning);
    if (json)
        printClockJson(report, console.out);
    else
        printClockTables(report, console.out);
    writeFile(pagePath, [&](std::ostream& out) {
        printClockPage(report, tree.referenceMhz, paths.front(), out);
    });
    if (!report.found)
        return Outcome::Nothing;
    writeFile(picturePath,
              [&](std::ostream& out) { printClockPicture(report, tree.referenceMhz, out); });
    writeExports(*this, console, tree, report);
    return Outcome::Found;
}

Outcome ClockRequest::run(const Console& console) const {
    checkOutputs();
    if (isBatch())
        return runBatch(console);
    const FileConsole files(console, {picturePath, pagePath});
    const ClockTree tree = readTree(paths.front());
    if (!settingPath.empty())
        return runCheck(files.get(), tree);
    return sweep.empty() ? solve(files.get(), tree) : runSweep(files.get(), tree);
}

} // namespace tq
