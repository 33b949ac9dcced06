#include "workbench/requests/HardBlockRequest.h"

#include <algorithm>
#include <ostream>

#include "workbench/hardblock/HardBlockReport.h"

namespace tq {

using hardblock::HardBlockData;

/// Of a range that has pins in part, those are shown.
Outcome HardBlockRequest::showPort(const Console& console, HardBlockData& block) const {
    const PortAnswer answer = findPins(block, port);
    if (answer.isWhole() || answer.mappings.size() > 1)
        console.out << (json ? portJson(port, answer) : portTable(answer));
    if (answer.isWhole())
        return Outcome::Found;
    console.note(answer.problem);
    return Outcome::Nothing;
}

Outcome HardBlockRequest::showBlock(const Console& console, HardBlockData& block) const {
    if (!port.empty())
        return showPort(console, block);
    if (tree)
        console.out << (json ? hardBlockTreeJson(block) : hardBlockTree(block));
    else
        console.out << (json ? hardBlockJson(block) : hardBlockTables(block));
    return Outcome::Found;
}

Outcome HardBlockRequest::run(const Console& console) const {
    DiagnosticList findings(kMostFindings);
    const auto blocks = readHardBlocks(file, findings.sink());
    console.print(findings);
    if (name.empty()) {
        console.out << (json ? hardBlockListJson(blocks) : hardBlockList(blocks));
        return Outcome::Found;
    }
    const auto found =
        std::find_if(blocks.begin(), blocks.end(),
                     [this](const HardBlockData* block) { return block->getName() == name; });
    if (found != blocks.end())
        return showBlock(console, **found);
    std::string names;
    for (const auto* block : blocks)
        names += (names.empty() ? ", which holds: " : ", ") + block->getName();
    console.note("no hard block \"" + name + "\" in " + file + names);
    return Outcome::Nothing;
}

} // namespace tq
