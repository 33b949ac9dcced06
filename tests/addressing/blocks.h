// Blocks, and a data area to keep them in, for the tests of the addressing subsystem.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "HPAParamMgr.h"
#include "HUTFile.h"
#include "addressing/TclInterpreter.h"
#include "blockmodel/HABM.h"
#include "support/support.h"

namespace blocks {

inline std::string vlnv(const std::string& name) {
    return "kestrom:hardblock:" + name + ":1.0";
}

inline std::unique_ptr<HABMBlock> top(const std::string& name) {
    auto block = HABMBlock::createTopBlock(name);
    block->setModuleVlnv(vlnv(name));
    return block;
}

inline HABMBlock& sub(HABMBlock& parent, const std::string& instance,
                      const std::string& enablement = "") {
    HABMBlock& block = *parent.createSubBlock(instance, instance, false);
    block.setModuleVlnv(vlnv(instance));
    block.setEnablement(enablement);
    return block;
}

inline HABMBlock& stub(HABMBlock& parent, const std::string& instance, const std::string& name) {
    HABMBlock& block = sub(parent, instance);
    block.setModuleVlnv(vlnv(name));
    block.setBlockStub(true);
    return block;
}

inline HABMInterface& interface(HABMBlock& parent, const std::string& name, const std::string& mode,
                                const std::string& enablement = "") {
    HABMInterface& made = *parent.createInterface(name, false);
    made.setInterfaceMode(HABMInterface::encodeInterfaceMode(mode));
    made.setEnablement(enablement);
    return made;
}

inline void connect(HABMBlock& parent, const std::string& source, const std::string& target) {
    HABMInterfaceConnection& made = *parent.createInterfaceConnection("", false);
    made.setSourcePath(source);
    made.setTargetPath(target);
}

inline HABMAddrBlock& addressBlock(HABMBlock& parent, const std::string& map,
                                   const std::string& name, const std::string& start,
                                   const std::string& size) {
    HABMMemoryMap* memoryMap = parent.getMemoryMap(map);
    if (memoryMap == nullptr)
        memoryMap = parent.createMemoryMap(map);
    HABMAddrBlock& block = *memoryMap->createAddrBlock(name);
    block.setAperture({HABMAddrValue(start), HABMAddrValue(size)});
    return block;
}

/// A register in the map "m", block "b"; an empty value gives none.
inline void setRegister(HABMBlock& parent, const std::string& name, const std::string& value) {
    const HABMMemoryMap* const map = parent.getMemoryMap("m");
    HABMAddrBlock& block =
        map != nullptr ? *map->getAddrBlock("b") : addressBlock(parent, "m", "b", "0x0", "0x1000");
    block.createRegister(name)->setValue(HABMAddrValue(value));
}

/// The tool's data area of this test program, with all in its path that means something to Tcl.
/// Made before the first test, as the library looks it up once.
class DataArea {
public:
    DataArea() {
        const std::filesystem::path area = m_folder.path() / kArea;
        std::filesystem::create_directories(area / "mirrel");
        setenv("TQ_DATA_PATH", area.c_str(), 1);
    }

    /// Puts a block there under its module name.
    void publish(const HABMBlock& block) const {
        const std::string& name = block.getModuleName();
        const std::string path = m_folder.write(file(name, ".bmj"), "");
        ASSERT_TRUE(HABMBlock::writeTopBlock(HUTFile(path), block, true));
    }

    /// The same for the text of a file, which isn't flushed to the disk.
    void publishText(const std::string& name, const std::string& text) const {
        m_folder.write(file(name, ".bmj"), text);
    }

    void publishScript(const std::string& name, const std::string& script) const {
        m_folder.write(file(name, ".tcl"), script);
    }

    void remove(const std::string& name) const {
        std::filesystem::remove_all(m_folder.path() / kArea / ("mirrel/hardblocks/" + name));
    }

private:
    static std::string file(const std::string& name, const char* extension) {
        return std::string(kArea) + "/mirrel/hardblocks/" + name + "/" + name + extension;
    }

    static constexpr const char* kArea = "data [exit] {area} }{ $x \"q\" ;#\\ \u00E4\u20AC";

    support::TempDir m_folder;
};

inline const DataArea data;

/// The debug switch, on while it lives, in a working directory of its own.
class Debugging {
public:
    Debugging() : m_before(std::filesystem::current_path()) {
        HPAParamMgr::getParamMgr()->setValue("vorn.writeAddressingJson", "true");
        std::filesystem::current_path(folder.path());
    }
    ~Debugging() {
        std::filesystem::current_path(m_before);
        HPAParamMgr::getParamMgr()->unsetValue("vorn.writeAddressingJson");
    }
    Debugging(const Debugging&) = delete;
    Debugging& operator=(const Debugging&) = delete;

    support::TempDir folder;

private:
    std::filesystem::path m_before;
};

} // namespace blocks
