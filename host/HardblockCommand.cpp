// hbs hardblock: pins, interfaces and port maps of one hard block of a metadata file.

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>

#include "host/Command.h"
#include "workbench/hardblock/HardBlockReport.h"
#include "workbench/text/Text.h"

namespace host {

namespace {

using hardblock::HardBlockData;

struct Options {
    std::string file;
    std::string name;
    std::string port;
    bool json = false;
};

int noResult(const std::string& reason) {
    std::cerr << "hbs: " << tq::printable(reason) << '\n';
    return kNoResult;
}

int showPort(const Options& options, HardBlockData& block) {
    const tq::PortAnswer answer = tq::findPin(block, options.port);
    if (answer.pin.empty())
        return noResult(answer.problem);
    std::cout << (options.json ? tq::portJson(options.port, answer)
                               : tq::printable(answer.pin) + "\n");
    return kSuccess;
}

int run(const Options& options) {
    tq::DiagnosticList findings(kMostFindings);
    const auto blocks = tq::readHardBlocks(options.file, findings.sink());
    printFindings(findings);
    const auto found = std::find_if(blocks.begin(), blocks.end(), [&](const HardBlockData* block) {
        return block->getName() == options.name;
    });
    if (found != blocks.end() && !options.port.empty())
        return showPort(options, **found);
    if (found != blocks.end()) {
        std::cout << (options.json ? tq::hardBlockJson(**found) : tq::hardBlockTables(**found));
        return kSuccess;
    }
    std::string names;
    for (const auto* block : blocks)
        names += (names.empty() ? ", which holds: " : ", ") + block->getName();
    return noResult("no hard block \"" + options.name + "\" in " + options.file + names);
}

} // namespace

void declareHardblock(CLI::App& app, int& status) {
    auto options = std::make_shared<Options>();
    CLI::App* command =
        app.add_subcommand("hardblock", "Lists the pins, interfaces and port maps of a hard block");
    command->add_option("FILE", options->file, "Hard block metadata (JSON)")->required();
    command->add_option("NAME", options->name, "Name of a hard block in it")->required();
    command->add_option("--port", options->port,
                        "INTERFACE:PORT, such as M_AXI:AWADDR[6]: the pin behind that bit");
    command->add_flag("--json", options->json, "Prints JSON for programs");
    command->callback([options, &status] { status = run(*options); });
}

} // namespace host
