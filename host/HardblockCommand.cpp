// hbs hardblock: the hard blocks of a metadata file; pins, interfaces and port maps of one.

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
    bool tree = false;
    bool json = false;
};

int noResult(const std::string& reason) {
    std::cerr << "hbs: " << tq::printable(reason) << '\n';
    return kNoResult;
}

/// Of a range that has pins in part, those are shown.
int showPort(const Options& options, HardBlockData& block) {
    const tq::PortAnswer answer = tq::findPins(block, options.port);
    if (answer.isWhole() || answer.mappings.size() > 1)
        std::cout << (options.json ? tq::portJson(options.port, answer) : tq::portTable(answer));
    return answer.isWhole() ? kSuccess : noResult(answer.problem);
}

int showTree(const Options& options, HardBlockData& block) {
    std::cout << (options.json ? tq::hardBlockTreeJson(block) : tq::hardBlockTree(block));
    return kSuccess;
}

int showBlock(const Options& options, HardBlockData& block) {
    if (!options.port.empty())
        return showPort(options, block);
    if (options.tree)
        return showTree(options, block);
    std::cout << (options.json ? tq::hardBlockJson(block) : tq::hardBlockTables(block));
    return kSuccess;
}

int run(const Options& options) {
    tq::DiagnosticList findings(kMostFindings);
    const auto blocks = tq::readHardBlocks(options.file, findings.sink());
    printFindings(findings);
    if (options.name.empty()) {
        std::cout << (options.json ? tq::hardBlockListJson(blocks) : tq::hardBlockList(blocks));
        return kSuccess;
    }
    const auto found = std::find_if(blocks.begin(), blocks.end(), [&](const HardBlockData* block) {
        return block->getName() == options.name;
    });
    if (found != blocks.end())
        return showBlock(options, **found);
    std::string names;
    for (const auto* block : blocks)
        names += (names.empty() ? ", which holds: " : ", ") + block->getName();
    return noResult("no hard block \"" + options.name + "\" in " + options.file + names);
}

} // namespace

void declareHardblock(CLI::App& app, int& status) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand(
        "hardblock", "Lists hard blocks, or the pins, interfaces and port maps of one");
    command->add_option("FILE", options->file, "Hard block metadata (JSON)")->required();
    CLI::Option* name = command->add_option(
        "NAME", options->name, "Name of a hard block in it; without one, all are listed");
    CLI::Option* port = command
                            ->add_option("--port", options->port,
                                         "INTERFACE:PORT, such as M_AXI:AWADDR[6] or "
                                         "M_AXI:AWADDR[7:4]: the pins behind those bits")
                            ->needs(name);
    command
        ->add_flag("--tree", options->tree,
                   "Shows interfaces, their logical ports and the physical pins")
        ->needs(name)
        ->excludes(port);
    command->add_flag("--json", options->json, "Prints JSON for programs");
    command->callback([options, &status] { status = run(*options); });
}

} // namespace host
