// Hard block definitions from their tables.

#include <gmock/gmock.h>

#include <sys/stat.h>

#include "HUTFile.h"
#include "addressing/DefinitionTables.h"
#include "addressing/HBSAddrParseUtil.h"
#include "blockmodel/HABM.h"
#include "support/support.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// A data area with the tables of one hard block, "hb".
class Tables : public testing::Test {
protected:
    void table(const std::string& name, const std::string& content) const {
        folder.write("hb/data/" + name + ".txt", content);
    }
    std::unique_ptr<HABMBlock> build(bool write = false) {
        auto block = HBSAddrParseUtil::buildHardblockDefinition(HUTFile(folder.path().string()),
                                                                "hb", write, report);
        EXPECT_TRUE(block == nullptr || HABMBlockCheck::run(*block).faults.empty());
        return block;
    }
    /// "table:line reason" of all that was dropped.
    [[nodiscard]] std::vector<std::string> dropped() const {
        std::vector<std::string> texts;
        for (const HBSTableReport& table : report)
            for (const HBSDroppedRow& row : table.dropped)
                texts.push_back(table.table.substr(5) + ":" + std::to_string(row.line) + " " +
                                row.reason);
        return texts;
    }

    support::TempDir folder;
    support::CapturedMessages messages;
    std::vector<HBSTableReport> report;
};

TEST(TableRecord, SplitsTrimsAndKeepsTheLaterPair) {
    const auto record = [](std::string_view line) { return hbs_tables::readRecord(line, {}); };
    EXPECT_THAT(record(" \t a = 1 ;; b=x = y; c ;d=;=z; a=2\r"),
                ElementsAre(Pair("", "z"), Pair("a", "2"), Pair("b", "x = y"), Pair("d", "")));
    for (const char* none : {"", " \t\v\f\r", "  # a=1", "#", ";;;", "word", "a;b"})
        EXPECT_THAT(record(none), IsEmpty()) << none;
    EXPECT_THAT(record("a=1 # b; c=#2"), ElementsAre(Pair("a", "1 # b"), Pair("c", "#2")));
    EXPECT_THAT(record(std::string_view("a=\0;b=1", 7)),
                ElementsAre(Pair("a", std::string(1, '\0')), Pair("b", "1")));
}

TEST_F(Tables, NoDataMakesABlockWithItsVlnvAndNothingElse) {
    const HUTFile here(folder.path().string());
    EXPECT_EQ(nullptr, HBSAddrParseUtil::buildHardblockDefinition(here, "", true));
    EXPECT_EQ(nullptr,
              HBSAddrParseUtil::buildHardblockDefinition(HUTFile(folder.file("none")), "hb", true));
    EXPECT_THAT(std::filesystem::is_empty(folder.path()), true);
    const auto block = build();
    EXPECT_EQ("hb", block->getModuleName());
    EXPECT_EQ("kestrom:hardblock:hb:1.0", block->getModuleVlnv());
    EXPECT_EQ(0U, block->getPorts().size() + block->getInterfaces().size());
    EXPECT_THAT(messages.lines(), IsEmpty());
}

TEST_F(Tables, UnknownKeysAreToldInThreeTablesAlone) {
    table("ports", "port=p; colour=red; =x");
    table("interfaces", "interface=i;mod=master");
    table("parameters", "name=n;val=1");
    for (const char* other :
         {"addrblocks", "registers", "addrsegments", "instances", "connections"})
        table(other, "colour=red");
    const auto block = build();
    EXPECT_NE(nullptr, block->getPort("p"));
    EXPECT_THAT(messages.lines(),
                ElementsAre("@91-48@%s%s|colour|direction left port right type",
                            "@91-48@%s%s||direction left port right type",
                            "@91-48@%s%s|mod|enable interface mode portmaps style vlnv",
                            "@91-48@%s%s|val|name type value"));
    EXPECT_EQ(2, messages.all()[0].count);
    EXPECT_EQ(0x20000000U, messages.all()[0].mask);
    EXPECT_EQ("hbs", messages.all()[0].category);
}

TEST_F(Tables, PortsTakeTheirBoundsOnlyAsVectors) {
    table("ports", "port=a;;;type=vector;left=31x;right=\r\nport=b;left=7\nport=a;type=wire\n"
                   "port=c;type=vector;direction=out;left=-1\ntype=wire\n"
                   "port=d;direction=;type=rope;left=3");
    const auto block = build();
    ASSERT_EQ(4U, block->getPorts().size());
    EXPECT_EQ(31U, block->getPort("a")->getPortLeft());
    EXPECT_EQ(0U, block->getPort("a")->getPortRight());
    EXPECT_EQ(0U, block->getPort("b")->getPortLeft());
    EXPECT_EQ(0xffffffffU, block->getPort("c")->getPortLeft());
    EXPECT_EQ(HABMPort::PortDirection::Out, block->getPort("c")->getPortDirection());
    EXPECT_TRUE(block->getPort("d")->isWirePort());
    EXPECT_THAT(dropped(),
                ElementsAre("ports.txt:1 right without digits",
                            "ports.txt:3 unusable or repeated name 'a'", "ports.txt:5 no port"));
    EXPECT_EQ(6U, report[3].rows);
}

TEST_F(Tables, RangesGrowToTheHighestRowWhicheverComesFirst) {
    table("addrblocks", "addrblock=low;offset=0;size=0x10\n"
                        "addrblock=high;offset=0x200;size=0x100;type=memory\n"
                        "addrblock=low;memorymap=other;offset=0x10;size=1\n"
                        "addrblock=low;offset=0x5000;size=0x1000\n"
                        "addrblock=bad;memorymap=third;offset=x;size=4K\n");
    table("addrsegments", "addrsegment=s;size=16M;type=data\naddrsegment=t;addrspace=u");
    const auto block = build();
    HABMMemoryMap* const own = block->getMemoryMap("hb");
    // The refused row has widened the map all the same.
    EXPECT_EQ("0x8000", own->getRange().getHexStringValue(0));
    EXPECT_EQ("0x10", block->getMemoryMap("other")->getRange().getHexStringValue(0));
    EXPECT_EQ("0x0", block->getMemoryMap("third")->getRange().getHexStringValue(0));
    EXPECT_EQ(HABMAddrValue("0x10"), own->getAddrBlock("low")->getRange());
    EXPECT_EQ(HABMAddrBlock::MemoryType::Memory, own->getAddrBlock("high")->getMemoryType());
    EXPECT_EQ("16M", block->getAddrSpace("hb")->getRange().getAbrvStringValue());
    EXPECT_EQ(HABMAddrSegment::MemoryType::Data,
              block->getAddrSpace("hb")->getAddrSegment("s")->getMemoryType());
    EXPECT_EQ(HABMAddrValue(1), block->getAddrSpace("u")->getRange());
    EXPECT_THAT(dropped(), ElementsAre("addrblocks.txt:4 unusable or repeated name 'low'",
                                       "addrblocks.txt:5 offset that can't be read 'x'"));
    EXPECT_TRUE(report[0].dropped[0].isWhole);
    EXPECT_FALSE(report[0].dropped[1].isWhole);
}

TEST_F(Tables, RegistersGoIntoEveryAddressBlockOfTheirName) {
    table("addrblocks", "addrblock=a\naddrblock=a;memorymap=m\naddrblock=b");
    table("registers",
          "register=R;addrblock=a;offset=0x4;width=64;reset=0xff;access=read_only\n"
          "register=S;addrblock=a;width=;reset=\nregister=T;addrblock=none\n"
          "register=R;addrblock=b\nregister=R;addrblock=b\nregister=U;word\naddrblock=b");
    const auto block = build();
    for (const char* map : {"hb", "m"}) {
        const auto registers = block->getMemoryMap(map)->getAddrBlock("a")->getRegisters();
        ASSERT_EQ(2U, registers.size());
        EXPECT_EQ(HABMAddrValue(4), registers[0]->getOffset());
        EXPECT_EQ(64U, registers[0]->getWidth());
        EXPECT_EQ(HABMAddrValue(255), registers[0]->getValue());
        EXPECT_EQ(HABMRegister::RegisterAccess::ReadOnly, registers[0]->getAccess());
        EXPECT_EQ(0U, registers[1]->getWidth());
        EXPECT_FALSE(registers[1]->getReset().isValid());
    }
    const HABMRegister& plain = *block->findRegister("hb/b/R", true);
    EXPECT_EQ(32U, plain.getWidth());
    EXPECT_EQ(HABMAddrValue(0), plain.getReset());
    EXPECT_THAT(dropped(),
                ElementsAre("registers.txt:2 reset that can't be read",
                            "registers.txt:2 width without digits",
                            "registers.txt:3 there is no address block 'none'",
                            "registers.txt:5 unusable or repeated name 'R'",
                            "registers.txt:6 no '=' in 'word'", "registers.txt:6 no addrblock",
                            "registers.txt:7 no register"));
}

TEST_F(Tables, InterfacesReferToTheFirstMapAndCarryAllApertures) {
    table("addrblocks", "addrblock=x;memorymap=z;interfaces= S , S,;offset=0x100;size=0x100\n"
                        "addrblock=y;memorymap=y;interfaces=S;offset=0x200;size=0x10\n"
                        "addrblock=y;memorymap=y;interfaces=S;offset=0x1000;size=0x10\n");
    table("addrsegments", "addrsegment=g;interfaces=M,S;size=4K");
    table("interfaces", "interface=S;mode=slave;vlnv=v:l:n:1;enable=1 == 1\n"
                        "interface=M;mode=master;portmaps=B  two words,A a,lone,A b\n"
                        "interface=N;mode=slave\ninterface=U");
    const auto block = build();
    const HABMInterface& target = *block->getInterface("S");
    EXPECT_EQ("y", target.getMemoryMapRef());
    EXPECT_EQ("", target.getAddrSpaceRef());
    EXPECT_EQ("1 == 1", target.getEnablement());
    EXPECT_THAT(target.getApertures(),
                ElementsAre(HABMAddrAperture("0x100:0x110"), HABMAddrAperture("0x1000:0x10")));
    const HABMInterface& source = *block->getInterface("M");
    EXPECT_EQ("hb", source.getAddrSpaceRef());
    EXPECT_THAT(source.getApertures(), ElementsAre(HABMAddrAperture("0:4K")));
    ASSERT_EQ(2U, source.getPortMaps().size());
    EXPECT_EQ("b", source.getPortMaps()[0]->getPhysicalPort());
    EXPECT_EQ("B", source.getPortMaps()[1]->getLogicalPort());
    EXPECT_EQ("two words", source.getPortMaps()[1]->getPhysicalPort());
    EXPECT_THAT(dropped(), ElementsAre("addrblocks.txt:3 unusable or repeated name 'y'",
                                       "interfaces.txt:2 portmaps item without a blank 'lone'"));
    EXPECT_EQ("", block->getInterface("N")->getMemoryMapRef());
    EXPECT_EQ(HABMInterface::InterfaceMode::Unknown, block->getInterface("U")->getInterfaceMode());
}

TEST_F(Tables, InstancesMakeStubsAndConnectionsNeedTheirType) {
    table("instances", "instance=a;vlnv=v:l:core:1.0;enable=x;base_address=0x1000\n"
                       "instance=b;vlnv=v:l:core\ninstance=a;vlnv=v:l:other:1\n"
                       "instance=c;vlnv=v:l:core:1;base_address=");
    table("connections", "source=/a/M;targets=/S\n"
                         "type=interface;source=/a/M;targets=/T,/S,/T;style=hard\n"
                         "type=port;source=/clk;targets=/b/clk,/a/clk\n"
                         "type=bus;source=/a;targets=/b\ntype=port;source=/a;targets= , \n");
    const auto block = build();
    ASSERT_EQ(2U, block->getSubBlocks().size());
    const HABMBlock& stub = *block->getSubBlock("a");
    EXPECT_TRUE(stub.isBlockStub());
    EXPECT_EQ("core", stub.getModuleName());
    EXPECT_EQ("v:l:core:1.0", stub.getModuleVlnv());
    EXPECT_EQ("x", stub.getEnablement());
    EXPECT_EQ(HABMAddrValue("4K"), stub.getBaseAddress());
    EXPECT_FALSE(block->getSubBlock("c")->getBaseAddress().isValid());
    const auto lines = block->getInterfaceConnections();
    ASSERT_EQ(2U, lines.size());
    EXPECT_EQ("/S", lines[0]->getTargetPath());
    EXPECT_EQ("/T", lines[1]->getTargetPath());
    EXPECT_EQ(HABMInterfaceConnection::ConnectionType::Hard, lines[1]->getConnectionType());
    ASSERT_EQ(1U, block->getPortConnections().size());
    EXPECT_THAT(block->getPortConnections()[0]->getTargetPaths(), ElementsAre("/a/clk", "/b/clk"));
    EXPECT_THAT(dropped(),
                ElementsAre("instances.txt:2 vlnv hasn't four fields 'v:l:core'",
                            "instances.txt:3 unusable or repeated name 'a'",
                            "instances.txt:4 base_address that can't be read",
                            "connections.txt:1 neither type=port nor type=interface but type "
                            "' interface'",
                            "connections.txt:4 neither type=port nor type=interface but type 'bus'",
                            "connections.txt:5 no targets"));
}

TEST_F(Tables, WrittenBlockIsTheOneReturned) {
    table("parameters", "name=A;type=long;value=1\nname=A;value=a=b\nname=B\nvalue=3");
    const auto block = build(true);
    EXPECT_EQ("a=b", block->getGenerics()[0]->getValue());
    EXPECT_EQ("", block->getGenerics()[1]->getValue());
    const auto read = HABMBlock::readTopBlock(HUTFile(folder.file("hb/hb.bmj")));
    ASSERT_NE(nullptr, read);
    EXPECT_EQ(2U, read->getGenerics().size());
    EXPECT_EQ(block->getModuleVlnv(), read->getModuleVlnv());
}

TEST_F(Tables, HostileTablesDropWhatTheyMust) {
    std::filesystem::create_directories(folder.file("hb/data/registers.txt"));
    ASSERT_EQ(0, mkfifo(folder.file("hb/data/addrblocks.txt").c_str(), 0600));
    table("ports", "port=" + std::string(1 << 20, 'p') + ";x=" + std::string(1 << 20, ';') +
                       "\nport=" + std::string("n\0l", 3) + "\nport=a/b\nport=last");
    table("instances", "instance=up/down;vlnv=v:l:n:1\ninstance=ok;vlnv=:::");
    const auto block = build();
    EXPECT_EQ(3U, block->getPorts().size());
    EXPECT_NE(nullptr, block->getPort(std::string("n\0l", 3)));
    EXPECT_NE(nullptr, block->getPort("last"));
    EXPECT_EQ(1U, block->getSubBlocks().size());
    EXPECT_TRUE(report[0].isThere && !report[0].isRead);
    EXPECT_TRUE(report[1].isThere && !report[1].isRead);
    EXPECT_FALSE(report[2].isThere);
    EXPECT_TRUE(report[3].isThere && report[3].isRead);
}

} // namespace
