#include "workbench/addressing/export/AddressMapModel.h"

#include <utility>

#include "workbench/addressing/AddressNumber.h"

namespace tq {

namespace {

MapUsage usageOf(HABMAddrBlock::MemoryType type) {
    switch (type) {
    case HABMAddrBlock::MemoryType::Memory:
        return MapUsage::Memory;
    case HABMAddrBlock::MemoryType::Reserved:
        return MapUsage::Reserved;
    case HABMAddrBlock::MemoryType::Register:
        break;
    }
    return MapUsage::Register;
}

MapAccess accessOf(HABMRegister::RegisterAccess access) {
    switch (access) {
    case HABMRegister::RegisterAccess::ReadOnly:
        return MapAccess::ReadOnly;
    case HABMRegister::RegisterAccess::WriteOnly:
        return MapAccess::WriteOnly;
    case HABMRegister::RegisterAccess::ReadWrite:
        break;
    }
    return MapAccess::ReadWrite;
}

void tell(const DiagnosticSink& sink, const std::string& path) {
    if (sink)
        sink(makeDiagnostic(Severity::Remark, "not-exported", {},
                            "\"" + path +
                                "\" isn't in the exported file: its address or its size "
                                "has no value of 64 bits"));
}

void addRegisters(MapBlock& made, const AddressMap::Block& block, const DiagnosticSink& sink) {
    for (const HABMRegister* const reg : AddressMap::registersOf(block)) {
        const auto offset = numberOf(reg->getOffset());
        if (!offset || *offset > UINT64_MAX - made.base)
            tell(sink, block.path + "/" + reg->getName());
        else
            made.registers.push_back({reg->getName(),
                                      "",
                                      *offset,
                                      reg->getWidth(),
                                      accessOf(reg->getAccess()),
                                      numberOf(reg->getReset()),
                                      numberOf(reg->getGivenValue()),
                                      {}});
    }
}

} // namespace

MapModel mapModelOf(const AddressMap& map, const std::string& name, bool withRegisters,
                    const DiagnosticSink& sink) {
    MapModel model{name, "", {}};
    for (const AddressMap::Block& block : map.blocks()) {
        const auto base = numberOf(block.base);
        const auto size = numberOf(block.size);
        if (!base || !size) {
            tell(sink, block.path);
            continue;
        }
        MapBlock made{block.path,
                      "",
                      *base,
                      *size,
                      usageOf(block.definition->getMemoryType()),
                      block.instance != nullptr,
                      {}};
        if (withRegisters)
            addRegisters(made, block, sink);
        model.blocks.push_back(std::move(made));
    }
    return model;
}

} // namespace tq
