// Blocks in files, and copies: what comes back equals what went in, and nothing harms the process.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <functional>

#include "HUTFile.h"
#include "blockmodel/block_generator.h"
#include "support/support.h"

namespace {

class GeneratedBlocks : public testing::TestWithParam<unsigned> {};
INSTANTIATE_TEST_SUITE_P(Seeds, GeneratedBlocks, testing::Range(0U, 30U));

std::unique_ptr<HABMBlock> readBack(const std::string& bytes) {
    const support::TempDir folder;
    return HABMBlock::readTopBlock(HUTFile(folder.write("block.bmj", bytes)));
}

TEST_P(GeneratedBlocks, ComeBackEqualFromFileAndClone) {
    const support::CapturedMessages messages;
    const auto block = generated::block(GetParam());
    const std::string bytes = generated::bytes(*block);
    const auto read = readBack(bytes);
    ASSERT_NE(nullptr, read);
    EXPECT_EQ(bytes, generated::bytes(*read));
    const auto clone = HABMBlock::cloneTopBlock(*block);
    EXPECT_EQ(bytes, generated::bytes(*clone));
    EXPECT_TRUE(block->hasSameContent(*read));
    EXPECT_TRUE(block->hasSameContent(*clone));
    clone->createSubBlock("another", "m", false)->createPort("p", false);
    clone->getSubBlock("inner")->setParameter("x", "1", true);
    EXPECT_EQ(bytes, generated::bytes(*block));
    for (const HABMBlock* tree : {block.get(), read.get(), clone.get()})
        EXPECT_THAT(HABMBlockCheck::run(*tree).faults, testing::IsEmpty());
    EXPECT_THAT(messages.lines(), testing::IsEmpty());
}

TEST_P(GeneratedBlocks, MergedBlockIsTheChildBelowTheStubsPath) {
    const auto top = generated::block(GetParam());
    const auto child = generated::block(GetParam() + 1000);
    HABMBlock* const stub = top->getSubBlock("inner");
    (void)stub->getInstancePath();
    ASSERT_TRUE(HABMBlock::mergeTopBlock(*top, "/inner", *child, true));
    EXPECT_EQ(stub, top->getSubBlock("inner"));
    EXPECT_EQ("inner", stub->getInstanceName());
    EXPECT_FALSE(stub->isBlockStub());
    EXPECT_THAT(HABMBlockCheck::run(*top).faults, testing::IsEmpty());
    child->setBlockStub(false);
    // Taken out again it is the child, as its paths begin at it then.
    EXPECT_EQ(generated::bytes(*child), generated::bytes(*stub));
    EXPECT_EQ(generated::bytes(*child), generated::bytes(*top->removeSubBlock("inner")));
}

/// A block with every field of every kind of object set to something that a fresh one doesn't have.
std::unique_ptr<HABMBlock> filledBlock() {
    auto top = HABMBlock::createTopBlock("soc");
    top->setModuleVlnv("v:l:soc:1");
    top->setEnablement("$e");
    top->setBaseAddress(HABMAddrValue(16));
    top->setBlockStub(true);
    top->setParameter("P", "1", true);
    top->setAttribute("A", "2", true);
    HABMPort& port = *top->createPort("irq", false);
    port.setPortType(HABMPort::PortType::Vector);
    port.setPortDirection(HABMPort::PortDirection::Out);
    port.setPortLeft(7);
    port.setPortRight(1);
    HABMMemoryMap& map = *top->createMemoryMap("map");
    map.setRange(HABMAddrValue("4K"));
    HABMAddrBlock& block = *map.createAddrBlock("regs");
    block.setMemoryType(HABMAddrBlock::MemoryType::Memory);
    block.setAperture({HABMAddrValue(32), HABMAddrValue(64)});
    HABMRegister& member = *block.createRegister("CTRL");
    member.setOffset(HABMAddrValue(4));
    member.setWidth(16);
    member.setReset(HABMAddrValue(5));
    member.setAccess(HABMRegister::RegisterAccess::WriteOnly);
    member.setValue(HABMAddrValue(6));
    HABMAddrSpace& space = *top->createAddrSpace("space");
    space.setRange(HABMAddrValue("4G"));
    HABMAddrSegment& segment = *space.createAddrSegment("low");
    segment.setMemoryType(HABMAddrSegment::MemoryType::Instruction);
    segment.setAperture({HABMAddrValue(), HABMAddrValue(1)});
    HABMInterface& interface = *top->createInterface("M", false);
    interface.setInterfaceVlnv("v:l:axi:1");
    interface.setInterfaceMode(HABMInterface::InterfaceMode::MirroredSlave);
    interface.setEnablement("$m");
    interface.setMemoryMapRef("map");
    interface.setAddrSpaceRef("space");
    interface.setApertures({HABMAddrAperture("0:1"), HABMAddrAperture("8:8")}, false);
    interface.createPortMap("ACLK", "clk");
    HABMPortConnection& wire = *top->createPortConnection("wire", false);
    wire.setConnectionType(HABMPortConnection::ConnectionType::Hard);
    wire.setSourcePath("/irq");
    wire.setTargetPaths({"/a/b", "/c/d"});
    HABMInterfaceConnection& line = *top->createInterfaceConnection("line", false);
    line.setConnectionType(HABMInterfaceConnection::ConnectionType::Hard);
    line.setSourcePath("/M");
    line.setTargetPath("/uart/S");
    HABMAddrAssign& assign = *top->createAddrAssign("assign");
    assign.setAssignType(HABMAddrAssign::Excluded);
    assign.setOffset(HABMAddrValue(2));
    assign.setRange(HABMAddrValue(3));
    assign.setSourcePath("/map/regs");
    assign.setTargetPath("/space/low");
    top->createSubBlock("uart", "uart_module", false);
    return top;
}

constexpr const char* kFilledBlock =
    R"({"format":"tq block model","version":1,"block":{)"
    R"("module":"soc","vlnv":"v:l:soc:1","enable":"$e","base":"0x10","stub":true,)"
    R"("parameters":[["P","1"]],"attributes":[["A","2"]],)"
    R"("ports":[{"name":"irq","type":"vector","direction":"out","left":7,"right":1}],)"
    R"("memory_maps":[{"name":"map","range":"0x1000","blocks":[)"
    R"({"name":"regs","type":"memory","aperture":["0x20","0x40"],"registers":[)"
    R"({"name":"CTRL","offset":"0x4","width":16,"reset":"0x5","access":"write_only",)"
    R"("value":"0x6"}]}]}],)"
    R"("address_spaces":[{"name":"space","range":"0x100000000","segments":[)"
    R"({"name":"low","type":"instruction","aperture":["","0x1"]}]}],)"
    R"("interfaces":[{"name":"M","vlnv":"v:l:axi:1","mode":"mirrored_slave","enable":"$m",)"
    R"("memory_map":"map","address_space":"space","apertures":[["0x0","0x1"],["0x8","0x8"]],)"
    R"("port_maps":[["ACLK","clk"]]}],)"
    R"("port_connections":[{"name":"wire","type":"hard","source":"/irq",)"
    R"("targets":["/a/b","/c/d"]}],)"
    R"("interface_connections":[{"name":"line","type":"hard","source":"/M",)"
    R"("target":"/uart/S"}],)"
    R"("assigns":[{"name":"assign","type":"excluded","offset":"0x2","range":"0x3",)"
    R"("source":"/map/regs","target":"/space/low"}],)"
    R"("blocks":[{"instance":"uart","module":"uart_module"}]}})"
    "\n";

/// Written to the text and read back from it, so that a field lost on either way is seen.
TEST(BmjFile, HoldsEveryFieldUnderItsKey) {
    EXPECT_EQ(kFilledBlock, generated::bytes(*filledBlock()));
    const auto read = readBack(kFilledBlock);
    ASSERT_NE(nullptr, read);
    EXPECT_EQ(kFilledBlock, generated::bytes(*read));
    EXPECT_EQ(kFilledBlock, generated::bytes(*HABMBlock::cloneTopBlock(*read)));
}

TEST(Block, ContentIsTheSameUntilSomethingOfItChanges) {
    const std::vector<std::function<void(HABMBlock&)>> changes{
        [](HABMBlock& b) { b.setBlockStub(false); },
        [](HABMBlock& b) { b.setParameter("P", "2", true); },
        [](HABMBlock& b) { b.getInterface("M")->createPortMap("ARESETN", ""); },
        [](HABMBlock& b) { b.findRegister("CTRL", true)->setWidth(17); },
        [](HABMBlock& b) { b.getAddrSpace("space")->createAddrSegment("high"); },
        [](HABMBlock& b) { b.getPortConnections()[0]->setTargetPaths({"/a/b"}); },
        [](HABMBlock& b) { b.getAddrAssign("assign")->setTargetPath(""); },
        [](HABMBlock& b) { b.getSubBlock("uart")->createPort("p", false); },
    };
    const auto block = filledBlock();
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const auto other = filledBlock();
        EXPECT_TRUE(block->hasSameContent(*other));
        changes[i](*other);
        EXPECT_FALSE(block->hasSameContent(*other)) << i;
    }
}

/// Every prefix of a file, and every file with a byte changed, is read whole or refused with one
/// message.
TEST(BmjFile, DamagedFilesGiveNothingAndOneMessage) {
    const std::string bytes = generated::bytes(*generated::block(7, 1));
    const auto isHandled = [](const std::string& text) {
        const support::CapturedMessages messages;
        const auto block = readBack(text);
        return messages.all().size() == (block == nullptr ? 1U : 0U);
    };
    const support::CapturedMessages hidden;
    EXPECT_EQ(nullptr, readBack(bytes + '\0' + bytes));
    EXPECT_EQ(1U, hidden.all().size());
    const std::size_t step = bytes.size() / 60 + 1;
    for (std::size_t i = 0; i + 2 < bytes.size(); i += step) {
        const support::CapturedMessages messages;
        EXPECT_EQ(nullptr, readBack(bytes.substr(0, i))) << i;
        EXPECT_EQ(1U, messages.all().size()) << i;
        for (const char change : {'"', '{', '\0', '9'}) {
            std::string changed = bytes;
            changed[i] = change;
            EXPECT_TRUE(isHandled(changed)) << i << change;
        }
    }
}

struct HostileCase {
    const char* block;
    const char* reason;
};

TEST(BmjFile, SaysWhyItIsRefused) {
    const auto reasonFor = [](const std::string& text) -> std::string {
        const support::CapturedMessages messages;
        EXPECT_EQ(nullptr, readBack(text));
        if (messages.all().size() != 1)
            return "not one message";
        EXPECT_EQ("@92-1@%s%s", messages.all()[0].format);
        const std::string& reason = messages.all()[0].arguments[1];
        return reason.substr(0, reason.find(" (at byte "));
    };
    const std::string head = R"({"format":"tq block model","version":)";
    EXPECT_EQ("it isn't a block model file", reasonFor(R"({"block":{}})"));
    EXPECT_EQ("it is of version 2, and only version 1 can be read",
              reasonFor(head + R"(2,"block":{},"new":{}})"));
    EXPECT_EQ("it holds no block", reasonFor(head + "1}"));
    EXPECT_EQ("it holds a NUL byte", reasonFor(head + std::string("1}\0", 3)));
    EXPECT_EQ("an object was expected",
              reasonFor(std::string(500000, '[') + std::string(500000, ']')));
    EXPECT_EQ("nothing more was expected", reasonFor(head + R"(1,"block":{}} x)"));
    EXPECT_EQ("a comma or '}' was expected", reasonFor(head + R"(1,"block":{})"));
    EXPECT_EQ("it ends too early", reasonFor(head + R"(1,"block":{"vlnv":)"));
    EXPECT_EQ("the key 'new' is unknown, repeated or out of place",
              reasonFor(head + R"(1,"block":{},"new":1})"));
    EXPECT_EQ("'" + std::string(60, 'x') + "…' is unknown as 'type'",
              reasonFor(head + R"(1,"block":{"ports":[{"name":"p","type":")" +
                        std::string(61, 'x') + R"("}]}})"));
    const std::vector<HostileCase> cases{
        {R"("ports":[{"name":"p"},{"name":"p"}])",
         "the name 'p' is empty, holds a '/' or occurs twice"},
        {R"("ports":[{"name":"a/b"}])", "the name 'a/b' is empty, holds a '/' or occurs twice"},
        {R"("ports":[{"name":"p","left":-1}])", "'-1' is no number for 'left'"},
        {R"("ports":[{"name":"p","left":1e-2147483600}])",
         "'1e-2147483600' is no number for 'left'"},
        {R"("ports":[{"name":"p","type":"rope"}])", "'rope' is unknown as 'type'"},
        {R"("ports":{})", "an array was expected as 'ports'"},
        {R"("ports":[null])", "an object was expected"},
        {R"("module":"7","ports":[],"module":"m")",
         "the key 'module' is unknown, repeated or out of place"},
        {R"("module":[])", "a text was expected"},
        {R"("module":7)", "a text was expected"},
        {R"("base":"12z")", "'12z' is no address"},
        {R"("stub":"yes")", "true or false was expected as 'stub'"},
        {R"("parameters":[["a"]])", "a pair was expected"},
        {R"("parameters":[["a","1"],["a","2"]])",
         "the name 'a' is empty, holds a '/' or occurs twice"},
        {R"("colour":"red")", "the key 'colour' is unknown, repeated or out of place"},
        {R"("ports":[{"name":"p","left":1.5}])", "'1.5' is no number for 'left'"},
        {R"("ports":[{"name":"p","left":4294967296}])", "'4294967296' is no number for 'left'"},
        {R"("ports":[{"name":"p","left":"7"}])", "'7' is no number for 'left'"},
        {R"("ports":[{"name":"p","left":true}])", "'' is no number for 'left'"},
        {R"("ports":[{"name":"p"} {"name":"q"}])", "a comma or ']' was expected"},
        {R"("ports":[{"name":"p"])", "a comma or '}' was expected"},
        {R"("stub":null)", "true or false was expected as 'stub'"},
        {R"("vlnv":false)", "a text was expected"},
        {R"("vlnv":tru)", "Invalid value."},
        {R"("vlnv" "v")", "a colon was expected"},
        {R"(7:"v")", "a text was expected"},
        {R"("vlnv":"v" "enable":"e")", "a comma or '}' was expected"},
        {R"("parameters":["a","1"])", "a pair was expected"},
        {R"("parameters":[["a" "1"]])", "a pair was expected"},
        {R"("parameters":[["a","1","2"]])", "a pair was expected"},
        {R"("memory_maps":[{"name":"m","blocks":[{"name":"b","aperture":["0x1",2]}]}])",
         "a text was expected"},
        {R"("blocks":[{"instance":"a/b","module":"m"}])",
         "the sub-block 'a/b' has an unusable or repeated name, or is nested too deeply"},
        {R"("port_connections":[{"name":""}])",
         "the name '' is empty, holds a '/' or occurs twice"},
        {R"("interface_connections":[{"name":""}])",
         "the name '' is empty, holds a '/' or occurs twice"},
    };
    for (const HostileCase& c : cases)
        EXPECT_EQ(c.reason, reasonFor(head + R"(1,"block":{)" + c.block + "}}")) << c.block;
}

TEST(BmjFile, DeepestTreeMakesTheTripAndDeeperOnesAreRefused) {
    auto top = HABMBlock::createTopBlock("top");
    HABMBlock* deepest = top.get();
    for (int level = 2; level <= HABMBlock::kMostLevels; ++level)
        deepest = deepest->createSubBlock("b", "m", false);
    EXPECT_EQ(nullptr, deepest->createSubBlock("b", "m", false));
    std::string bytes = generated::bytes(*top);
    EXPECT_EQ(bytes, generated::bytes(*readBack(bytes)));
    EXPECT_EQ(bytes, generated::bytes(*HABMBlock::cloneTopBlock(*top)));
    const auto other = HABMBlock::createTopBlock("other");
    other->createSubBlock("b", "m", false);
    EXPECT_FALSE(HABMBlock::mergeTopBlock(*other, "/b", *top, true));

    const support::CapturedMessages messages;
    const std::string leaf = R"({"instance":"b","module":"m"})";
    bytes.replace(bytes.find(leaf), leaf.size(),
                  R"({"instance":"b","module":"m","blocks":[{"instance":"b"}]})");
    EXPECT_EQ(nullptr, readBack(bytes));
    ASSERT_EQ(1U, messages.all().size());
    EXPECT_THAT(messages.all()[0].arguments[1], testing::HasSubstr("is nested too deeply"));
}

TEST(BmjFile, MissingFileIsNoFaultAndOtherThingsAre) {
    const support::CapturedMessages messages;
    const support::TempDir folder;
    EXPECT_EQ(nullptr, HABMBlock::readTopBlock(HUTFile(folder.file("none.bmj"))));
    EXPECT_THAT(messages.lines(), testing::IsEmpty());
    EXPECT_EQ(nullptr, HABMBlock::readTopBlock(HUTFile(folder.path().string())));
    const std::string fifo = folder.file("fifo");
    ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
    EXPECT_EQ(nullptr, HABMBlock::readTopBlock(HUTFile(fifo)));
    EXPECT_EQ(2U, messages.all().size());
    EXPECT_EQ("it isn't a file", messages.all()[1].arguments[1]);
}

TEST(BmjFile, ASinkIsToldWhereTheReadingEnded) {
    const support::CapturedMessages messages;
    const support::TempDir folder;
    const auto findingsOf = [&](const std::string& path) {
        std::string texts;
        EXPECT_EQ(nullptr, HABMBlock::readTopBlock(HUTFile(path), [&](const tq::Diagnostic& told) {
                      texts += std::to_string(told.place.line) + ":" +
                               std::to_string(told.place.column) + " " + told.text + "\n" +
                               told.place.lineText;
                  }));
        return texts;
    };
    EXPECT_EQ("", findingsOf(folder.file("none.bmj")));
    EXPECT_EQ("0:0 can't be read: it is a folder\n", findingsOf(folder.path().string()));
    EXPECT_EQ("2:13 it is of version 2, and only version 1 can be read\n\"version\":2}",
              findingsOf(folder.write("b.bmj", "{\"format\":\"tq block model\",\n\"version\":2}")));
    EXPECT_THAT(messages.lines(), testing::IsEmpty());
}

TEST(BmjFile, FailedWriteLeavesTheOldFileWhole) {
    const support::TempDir folder;
    const std::string path = folder.write("block.bmj", "old");
    const auto block = generated::block(3);
    EXPECT_FALSE(HABMBlock::writeTopBlock(HUTFile(path), *block, false));
    EXPECT_FALSE(HABMBlock::writeTopBlock(HUTFile(folder.path().string()), *block, true));
    EXPECT_FALSE(HABMBlock::writeTopBlock(HUTFile(folder.file("none/block.bmj")), *block, true));
    EXPECT_FALSE(HABMBlock::writeTopBlock(HUTFile("/dev/full"), *block, true));
    {
        // A full disk, as far as one process can have it for itself.
        const auto before = signal(SIGXFSZ, SIG_IGN);
        rlimit limit = {};
        getrlimit(RLIMIT_FSIZE, &limit);
        const rlimit small = {100, limit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
        EXPECT_FALSE(HABMBlock::writeTopBlock(HUTFile(path), *block, true));
        setrlimit(RLIMIT_FSIZE, &limit);
        signal(SIGXFSZ, before);
    }
    EXPECT_EQ("old", support::readFile(path));
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(folder.path()), {}));

    std::filesystem::create_symlink("block.bmj", folder.file("link.bmj"));
    EXPECT_TRUE(HABMBlock::writeTopBlock(HUTFile(folder.file("link.bmj")), *block, true));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("link.bmj")));
    EXPECT_EQ(generated::bytes(*block), support::readFile(path));
    std::filesystem::remove(path);
    EXPECT_TRUE(HABMBlock::writeTopBlock(HUTFile(folder.file("link.bmj")), *block, false));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("link.bmj")));
    EXPECT_EQ(generated::bytes(*block), support::readFile(path));
}

} // namespace
