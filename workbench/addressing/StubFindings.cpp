#include "workbench/addressing/StubFindings.h"

#include <string>
#include <utility>

namespace tq {

namespace {

/// The name in a block's VLNV; empty if that can't be split.
std::string definitionName(const HABMBlock& block) {
    std::string vendor, library, name, version;
    HABMUtils::splitVLNV(block.getModuleVlnv(), vendor, library, name, version);
    return name;
}

bool isInside(const HABMBlock& stub, const std::string& definition) {
    for (const HABMBlock* around = stub.getParent(); around != nullptr;
         around = around->getParent())
        if (definitionName(*around) == definition)
            return true;
    return false;
}

Diagnostic finding(std::string id, const HABMBlock& stub, const std::string& reason,
                   std::string expected) {
    return makeDiagnostic(Severity::Error, std::move(id), {},
                          "the sub-block \"" + stub.getInstancePath().substr(1) +
                              "\" is still a stub: " + reason,
                          std::move(expected));
}

} // namespace

Diagnostic findingOfStub(const HABMBlock& stub) {
    const std::string name = definitionName(stub);
    const std::string vlnv = "\"" + stub.getModuleVlnv() + "\"";
    if (name.empty())
        return finding("unresolved-stub", stub, vlnv + " names no definition",
                       "vendor:library:name:version");
    if (isInside(stub, name))
        return finding("recursive-definition", stub, "the definition " + vlnv + " contains itself",
                       "");
    return finding("unresolved-stub", stub,
                   "the definition " + vlnv + " can't be read or nests too deeply",
                   name + "/" + name + ".bmj in mirrel/hardblocks");
}

void reportStubs(const HABMBlock& block, const DiagnosticSink& sink) {
    if (!sink)
        return;
    for (const HABMBlock* stub : block.findStubs())
        sink(findingOfStub(*stub));
}

} // namespace tq
