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
        auto block = HBSAddrParseUtil::buildHardblockDefinition(
            HUTFile(folder.path().string()), "hb", write, findings.sink(), &report);
        EXPECT_TRUE(block == nullptr || HABMBlockCheck::run(*block).faults.empty());
        return block;
    }
    /// "table:line:column id" of each finding.
    [[nodiscard]] std::vector<std::string> found() const {
        std::vector<std::string> texts;
        for (const tq::Diagnostic& finding : findings.all())
            texts.push_back(std::filesystem::path(finding.place.file).stem().string() + ":" +
                            std::to_string(finding.place.line) + ":" +
                            std::to_string(finding.place.column) + " " + finding.id);
        return texts;
    }

    /// What a build finds, joined by "|".
    [[nodiscard]] std::string allFound() {
        findings = tq::DiagnosticList();
        (void)build();
        std::string all;
        for (const std::string& text : found())
            all.append(all.empty() ? "" : "|").append(text);
        return all;
    }

    support::TempDir folder;
    support::CapturedMessages messages;
    std::vector<HBSTableReport> report;
    tq::DiagnosticList findings;
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
    EXPECT_THAT(found(), ElementsAre("ports:1:27 bad-number", "ports:1:37 bad-number",
                                     "ports:4:39 bad-number", "ports:5:1 missing-key",
                                     "ports:6:24 unknown-value", "ports:6:18 unknown-value",
                                     "ports:3:6 repeated-name", "ports:2:13 unused-bounds",
                                     "ports:6:34 unused-bounds"));
    EXPECT_EQ(6U, report[3].rows);
    EXPECT_EQ(4U, report[3].used);
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
    EXPECT_THAT(found(),
                ElementsAre("addrblocks:5:38 bad-address", "addrblocks:4:11 repeated-name"));
    EXPECT_EQ(5U, report[0].rows);
    EXPECT_EQ(4U, report[0].used);
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
    EXPECT_THAT(found(), ElementsAre("registers:2:30 bad-number", "registers:2:37 bad-address",
                                     "registers:6:12 not-a-pair", "registers:6:1 missing-key",
                                     "registers:7:1 missing-key", "registers:5:10 repeated-name",
                                     "registers:3:22 unknown-addrblock", "addrblocks:1:1 no-size",
                                     "registers:1:31 misaligned", "addrblocks:2:1 no-size",
                                     "addrblocks:3:1 no-size"));
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
    EXPECT_THAT(found(),
                ElementsAre("interfaces:2:51 bad-portmap", "interfaces:2:56 repeated-portmap",
                            "addrblocks:3:11 repeated-name", "addrsegments:1:26 unused-interface"));
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
    EXPECT_THAT(found(),
                ElementsAre("instances:4:41 bad-address", "connections:5:1 missing-key",
                            "instances:2:17 bad-vlnv", "instances:3:10 repeated-name",
                            "connections:1:1 missing-key", "connections:4:6 unknown-value"));
}

TEST_F(Tables, TellsTheSinkWhatIsDroppedOrTakenForSomethingElse) {
    struct Case {
        const char *name, *rows, *found;
    };
    for (const auto& [name, rows, expected] : std::initializer_list<Case>{
             {"addrblocks", "size=4K\naddrblock=;size=4K",
              "addrblocks:1:1 missing-key|addrblocks:2:1 missing-key"},
             {"addrblocks", " addrblock=b; siz=4K",
              "addrblocks:1:15 unknown-key|addrblocks:1:1 no-size"},
             {"addrblocks", "addrblock=b;type=Register;size=1", "addrblocks:1:18 unknown-value"},
             {"addrblocks", "addrblock=b;memorymap=a/b;size=1", "addrblocks:1:23 unusable-name"},
             {"registers", "addrblock=b\nregister=r",
              "registers:1:1 missing-key|registers:2:1 missing-key"},
             {"registers", "register=r;addrblock=b;reset=x;offset=y",
              "registers:1:39 bad-address|registers:1:30 bad-address|registers:1:22 "
              "unknown-addrblock"},
             {"registers", "register=r;addrblock=b; acces=read_only;access= rw",
              "registers:1:25 unknown-key|registers:1:49 unknown-value|registers:1:22 "
              "unknown-addrblock"},
             {"addrsegments", "addrspace=s", "addrsegments:1:1 missing-key"},
             {"addrsegments", "addrsegment=g;size=1 G", "addrsegments:1:20 bad-address"},
             {"addrsegments", "addrsegment=g;type=code;Offset=1",
              "addrsegments:1:25 unknown-key|addrsegments:1:20 unknown-value"},
             {"ports", "# port=p\n\tdirection=out", "ports:2:2 missing-key"},
             {"ports", "port=p;type=bus;direction=output",
              "ports:1:13 unknown-value|ports:1:27 unknown-value"},
             {"ports", "port=p;type=;port=p", "ports:1:6 repeated-key|ports:1:13 unknown-value"},
             {"ports", "port=p;type=vector;left=-1;right=0x0",
              "ports:1:25 bad-number|ports:1:34 bad-number"},
             {"ports", "port=p;type=vector;left=9999999999", "ports:1:25 bad-number"},
             {"interfaces", "mode=master", "interfaces:1:1 missing-key"},
             {"interfaces", "interface=i;mode=Slave\ninterface=j;mode=target",
              "interfaces:1:18 unknown-value"},
             {"interfaces", "interface=i;portmaps=a b,c,,d e,a f",
              "interfaces:1:26 bad-portmap|interfaces:1:33 repeated-portmap"},
             {"parameters", "value=1;word", "parameters:1:9 not-a-pair|parameters:1:1 missing-key"},
             {"parameters", "name=A;value=1\nname=A;value=2", "parameters:2:6 repeated-name"},
             {"instances", "vlnv=v:l:n:1.0", "instances:1:1 missing-key"},
             {"instances", "instance=i;vlnv=v:l:n:1.0;base=0", "instances:1:27 unknown-key"},
             {"connections", "type=port;targets=/a", "connections:1:1 missing-key"},
             {"connections", "type=port;source=/a;target=/b",
              "connections:1:21 unknown-key|connections:1:1 missing-key"},
             {"connections", "type=port;source=/a;targets=/b;style=Hard",
              "connections:1:38 unknown-value"}}) {
        std::filesystem::remove_all(folder.file("hb"));
        table(name, rows);
        EXPECT_EQ(expected, allFound()) << name << ": " << rows;
        EXPECT_EQ(findings.count(), findings.count(tq::Severity::Warning)) << rows;
    }
}

TEST_F(Tables, TellsTheSinkOfAddressesAndInterfacesThatDontFit) {
    struct Case {
        const char *addrblocks, *registers, *found;
    };
    for (const auto& [addrblocks, registers, expected] : std::initializer_list<Case>{
             {"addrblock=a;size=4K\naddrblock=b;offset=4K;size=4K\naddrblock=c;offset=8K;size=1",
              "", ""},
             {"addrblock=b;offset=4K;size=4K\naddrblock=a;size=0x1001", "",
              "addrblocks:2:1 overlap"},
             {"addrblock=a;size=64K\naddrblock=b;size=4K\naddrblock=c;offset=8K;size=4K", "",
              "addrblocks:2:1 overlap|addrblocks:3:20 overlap"},
             {"addrblock=a;size=4K\naddrblock=b;memorymap=m;size=4K", "", ""},
             {"addrblock=a", "register=r;addrblock=a", "addrblocks:1:1 no-size"},
             {"addrblock=a;size=8",
              "register=r;addrblock=a;offset=4\nregister=s;addrblock=a;offset=8",
              "registers:2:31 outside-addrblock"},
             {"addrblock=a;size=8", "register=r;addrblock=a;width=128",
              "registers:1:1 outside-addrblock"},
             {"addrblock=a;size=4K", "register=r;addrblock=a;offset=2;width=64",
              "registers:1:31 misaligned"},
             {"addrblock=a;size=4K", "register=r;addrblock=a;offset=3;width=8", ""},
             {"addrblock=a;size=4K",
              "register=r;addrblock=a;offset=4\nregister=s;addrblock=a;offset=0;width=64",
              "registers:2:31 overlap"},
             {"addrblock=a;size=4K",
              "register=r;addrblock=a;access=read_only\nregister=s;addrblock=a;access=write_only",
              ""},
             {"addrblock=a;size=4K",
              "register=r;addrblock=a;access=write_only\nregister=s;addrblock=a",
              "registers:2:1 overlap"},
             {"addrblock=a;size=4K;interfaces=S,T,M", "",
              "addrblocks:1:32 unknown-interface|addrblocks:1:32 unused-interface"}}) {
        std::filesystem::remove_all(folder.file("hb"));
        table("interfaces", "interface=S;mode=slave\ninterface=M;mode=master");
        table("addrblocks", addrblocks);
        table("registers", registers);
        EXPECT_EQ(expected, allFound()) << addrblocks << '\n' << registers;
    }
    table("addrsegments", "addrsegment=g;interfaces=M,S");
    table("ports", "port=p;left=31;right=0");
    EXPECT_THAT(allFound(), testing::StartsWith("ports:1:13 unused-bounds|"));
    EXPECT_THAT(allFound(), testing::EndsWith("|addrsegments:1:26 unused-interface"));
}

TEST_F(Tables, FindingsShowTheLineWhatWasExpectedAndTheFirstOfAName) {
    table("ports", "port=clk\nport=b; direction=output\nport=clk");
    (void)build();
    ASSERT_EQ(2U, findings.all().size());
    const tq::Diagnostic& direction = findings.all()[0];
    EXPECT_EQ(folder.file("hb/data/ports.txt"), direction.place.file);
    EXPECT_EQ("port=b; direction=output", direction.place.lineText);
    EXPECT_EQ("unknown direction \"output\", taken for \"in\"", direction.text);
    EXPECT_EQ("one of: in, out, inout", direction.expected);
    const tq::Diagnostic& repeated = findings.all()[1];
    EXPECT_EQ("the row isn't used: a second port \"clk\"", repeated.text);
    ASSERT_EQ(1U, repeated.notes.size());
    EXPECT_EQ("first defined here", repeated.notes[0].text);
    EXPECT_EQ(1U, repeated.notes[0].place.line);
    EXPECT_EQ(6U, repeated.notes[0].place.column);
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
