// Definitions, instances and addressing reports while memory runs out.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "HPAParamMgr.h"
#include "HUTFile.h"
#include "addressing/HBSAddrParseUtil.h"
#include "addressing/HBSAddressing.h"
#include "diagnostics/Diagnostic.h"
#include "memory/block_text.h"
#include "memory/trial.h"
#include "support/support.h"

namespace {

/// A data area with the hard block "ps", whose sub-block "uart0" is a stub of the hard block
/// "uart".
class DataArea {
public:
    DataArea() {
        const std::string ps = "mirrel/hardblocks/ps/";
        m_folder.write(ps + "data/addrblocks.txt",
                       "addrblock=regs;memorymap=control;interfaces=S_AXI;offset=0x0;size=4K\n");
        m_folder.write(ps + "data/registers.txt",
                       "register=MODE;addrblock=regs;offset=0x4;reset=0x1\n"
                       "register=A_REGISTER_OF_A_LONGER_NAME;addrblock=regs;offset=0x8\n");
        m_folder.write(ps + "data/addrsegments.txt",
                       "addrsegment=low;addrspace=view;interfaces=M_AXI;offset=0x0;size=2G\n");
        m_folder.write(ps + "data/ports.txt", "port=irq;type=vector;left=7;direction=out\n");
        m_folder.write(ps + "data/interfaces.txt",
                       "interface=M_AXI;mode=master;portmaps=CLK aclk;vlnv=kestrom:bus:axi:1.0\n"
                       "interface=S_AXI;mode=slave;enable=register_value(MODE) == 1\n");
        m_folder.write(ps + "data/parameters.txt", "name=WIDTH;value=64;unknown=1\n");
        m_folder.write(ps + "data/instances.txt",
                       "instance=uart0;vlnv=kestrom:hardblock:uart:1.0;base_address=0xFF000000;"
                       "enable=register_value(MODE) == 1\n");
        m_folder.write(ps + "data/connections.txt",
                       "type=interface;source=/M_AXI;targets=/uart0/S_AXI,/S_AXI\n"
                       "type=port;source=/irq;targets=/uart0/irq\n");
        m_folder.write(ps + "ps.tcl", "set ::seen 1\n");
        const std::string uart = "mirrel/hardblocks/uart/";
        m_folder.write(uart + "data/addrblocks.txt",
                       "addrblock=regs;interfaces=S_AXI;offset=0x0;size=4K\n");
        m_folder.write(uart + "data/registers.txt", "register=MODE;addrblock=regs;reset=0x1\n");
        m_folder.write(uart + "data/interfaces.txt", "interface=S_AXI;mode=slave\n");
        setenv("TQ_DATA_PATH", m_folder.path().c_str(), 1);
        for (const char* const name : {"ps", "uart"})
            EXPECT_NE(nullptr,
                      HBSAddrParseUtil::buildHardblockDefinition(hardblocks(), name, true));
    }

    [[nodiscard]] HUTFile hardblocks() const { return HUTFile(m_folder.file("mirrel/hardblocks")); }
    [[nodiscard]] std::string file(const std::string& name) const { return m_folder.file(name); }

private:
    support::TempDir m_folder;
};

class Addressing : public testing::Test {
protected:
    /// The definition of the block "ps", each time in a cache of its own.
    static const HABMBlock* definition() {
        static int made = 0;
        return HBSAddressing::createSubsystemDefinition(
            "kestrom:hardblock:ps:1.0", "context " + std::to_string(1'000'000'000 + ++made));
    }

    static std::unique_ptr<HABMBlock> config() {
        auto config = HABMBlock::createTopBlock("design");
        config->setParameter("WIDTH", "128", true);
        HABMBlock* const uart =
            config->createSubBlock("inst", "inst", false)->createSubBlock("uart0", "uart", false);
        HABMAddrBlock* const regs = uart->createMemoryMap("uart")->createAddrBlock("regs");
        regs->createRegister("MODE")->setValue(HABMAddrValue("0x1"));
        return config;
    }

    /// A configured instance with one assign.
    static std::unique_ptr<HABMBlock> instance(const HABMBlock& definition) {
        auto instance = HBSAddressing::createSubsystemInstance(definition, *config());
        HABMAddrAssign* const assign = instance->createAddrAssign("assign");
        HABMBlock* const uart = instance->getSubBlock("uart0");
        assign->setSourceAddrBlock(uart->getMemoryMaps().front()->getAddrBlocks().front());
        assign->setTargetAddrSegment(instance->getAddrSpaces().front()->getAddrSegments().front());
        return instance;
    }

    /// The library looks for its data area once in a process.
    static const DataArea& area() {
        static const DataArea area;
        return area;
    }

    Addressing() { area(); }

    memory::NoMessages quiet;
};

std::string text(const rapidjson::Value& value) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    value.Accept(writer);
    return buffer.GetString();
}

TEST_F(Addressing, ADefinitionIsCompiledWholeOrNotAtAll) {
    memory::failEachAllocation([&](const memory::Attempt& attempt) {
        const auto block = attempt([&] {
            return HBSAddrParseUtil::buildHardblockDefinition(area().hardblocks(), "ps", false);
        });
        return block ? std::optional(memory::textOf(*block)) : std::nullopt;
    });
}

TEST_F(Addressing, TheFindingsOfACompilationAreComplete) {
    memory::failEachAllocation([&](const memory::Attempt& attempt) {
        tq::DiagnosticList findings;
        std::vector<HBSTableReport> tables;
        const auto block = attempt([&] {
            return HBSAddrParseUtil::buildHardblockDefinition(area().hardblocks(), "ps", false,
                                                              findings.sink(), &tables);
        });
        if (!block)
            return std::optional<std::string>();
        std::string text = memory::textOf(*block);
        for (const HBSTableReport& table : tables)
            text += table.table + std::to_string(table.used) + table.fault;
        for (const tq::Diagnostic& finding : findings.all())
            text += finding.text + finding.expected;
        return std::optional(text);
    });
}

TEST_F(Addressing, ADefinitionsFileIsOldOrNew) {
    const std::string path = area().file("mirrel/hardblocks/ps/ps.bmj");
    const std::string right = support::readFile(path);
    const auto write = [&](const memory::Attempt& attempt) -> std::optional<std::string> {
        const auto check = [&] {
            const std::string now = support::readFile(path);
            if (now != right && now != "old")
                throw std::logic_error("the file is neither old nor new");
            return now;
        };
        std::ofstream(path) << "old";
        try {
            const auto block = attempt([&] {
                return HBSAddrParseUtil::buildHardblockDefinition(area().hardblocks(), "ps", true);
            });
            return check() == right ? std::optional(right) : std::nullopt;
        } catch (const std::bad_alloc&) {
            check();
            throw;
        }
    };
    memory::run({.operation = write, .step = 2});
}

TEST_F(Addressing, ADefinitionIsReadWholeOrNotAtAll) {
    memory::run({.operation =
                     [&](const memory::Attempt& attempt) {
                         const HABMBlock* const block = attempt([] { return definition(); });
                         return block != nullptr ? std::optional(memory::textOf(*block))
                                                 : std::nullopt;
                     },
                 .keeps = memory::Trial::Keeps::Results});
}

TEST_F(Addressing, AnInstanceIsConfiguredWholeOrNotAtAll) {
    const HABMBlock& given = *definition();
    const auto settings = config();
    memory::failEachAllocation([&](const memory::Attempt& attempt) {
        const auto instance =
            attempt([&] { return HBSAddressing::createSubsystemInstance(given, *settings); });
        return instance ? std::optional(memory::textOf(*instance)) : std::nullopt;
    });
}

TEST_F(Addressing, AReportIsWrittenWholeOrNotAtAll) {
    const auto given = instance(*definition());
    memory::failEachAllocation([&](const memory::Attempt& attempt) {
        rapidjson::Document document;
        document.SetArray();
        try {
            attempt([&] { HBSAddressing::generateSurfaceLevelAddressing(*given, document); });
        } catch (const std::bad_alloc&) {
            if (text(document) != "[]")
                throw std::logic_error("the document has changed");
            throw;
        }
        return text(document);
    });
}

/// The first use in a process looks for the data area and starts Tcl.
TEST_F(Addressing, AFirstInstanceIsWholeOrNotAtAll) {
    const auto settings = config();
    memory::run({.operation = [&](const memory::Attempt& attempt) -> std::optional<std::string> {
                     const HABMBlock* block = nullptr;
                     const auto instance = attempt([&]() -> std::unique_ptr<HABMBlock> {
                         block = definition();
                         return block == nullptr
                                    ? nullptr
                                    : HBSAddressing::createSubsystemInstance(*block, *settings);
                     });
                     return instance ? std::optional(memory::textOf(*instance)) : std::nullopt;
                 },
                 .fresh = true,
                 .step = 5});
}

} // namespace
