// The manager: its scan of a data area at the first use, and files added later.

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "hardblock/HBSHardBlockDataMgr.h"
#include "support/support.h"

namespace {

using support::gzip;
using testing::ElementsAre;

/// What the one scan of a data area did.
struct Scan {
    Scan() {
        const std::string sce = "sce/hardblocks/";
        area.write(sce + "b.json", R"({"same": {"pins": {"second": {}}}})");
        area.write(sce + "a", R"({"same": {"pins": {"first": {}}}})");
        bad = area.write(sce + "a.bad", "{");
        area.write(sce + ".hidden~", R"({"hidden": {}})");
        area.write(sce + "protected", gzip(R"({"protected": {}})"));
        area.write(sce + "folder/c", R"({"deeper": {}})");
        mkfifo(area.file(sce + "fifo").c_str(), 0600);
        setenv("TQ_DATA_PATH", area.path().c_str(), 1);
        const support::CapturedMessages captured;
        for (const auto* block : HBSHardBlockDataMgr::getHardBlockDataMgr()->getHardBlocksData())
            names.push_back(block->getName());
        messages = captured.lines();
    }

    support::TempDir area;
    std::string bad;
    std::vector<std::string> messages;
    std::vector<std::string> names;
};

const Scan& scan() {
    static const Scan scan;
    return scan;
}

HBSHardBlockDataMgr& manager() {
    (void)scan();
    return *HBSHardBlockDataMgr::getHardBlockDataMgr();
}

TEST(Manager, ReadsEveryFileOfTheDataAreaInOrder) {
    EXPECT_THAT(scan().names, ElementsAre("hidden", "same", "same", "protected"));
    EXPECT_THAT(scan().messages,
                ElementsAre(testing::StartsWith("@90-2@%s|"), "@90-4@%s|" + scan().bad));
}

TEST(Manager, FindsTheFirstOfAName) {
    hardblock::HardBlockData* block = manager().getHardBlockByName("same");
    ASSERT_NE(nullptr, block);
    EXPECT_EQ("first", (*block->getPinsStartIterator())->getName());
    support::CapturedOutput output;
    EXPECT_EQ(nullptr, manager().getHardBlockByName("Same"));
    EXPECT_EQ("Warning : Unable to find Information for Hard Block: Same\n", output.text());
}

TEST(Manager, FindsBlocksByTheNamesThatTheyHaveNow) {
    const support::TempDir folder;
    ASSERT_TRUE(manager().createHardBlocks(folder.write("f", R"({"one": {}, "two": {}})")));
    hardblock::HardBlockData* one = manager().getHardBlockByName("one");
    ASSERT_NE(nullptr, one);
    one->setName("two");
    EXPECT_EQ(one, manager().getHardBlockByName("two"));
    one->setName("three");
    EXPECT_EQ(one, manager().getHardBlockByName("three"));
    EXPECT_NE(one, manager().getHardBlockByName("two"));
    ASSERT_TRUE(manager().createHardBlocks(folder.write("f", R"({"three": {}, "four": {}})")));
    EXPECT_EQ(one, manager().getHardBlockByName("three"));
    EXPECT_NE(nullptr, manager().getHardBlockByName("four"));
}

TEST(Manager, AddsNothingFromFilesThatCannotBeRead) {
    const support::TempDir folder;
    const std::size_t before = manager().getHardBlocksData().size();
    const support::CapturedMessages messages;
    support::CapturedOutput output;
    const std::string whole = gzip(R"({"protected": {}})");
    const std::string cut = folder.write("cut", whole.substr(0, whole.size() - 3));
    EXPECT_FALSE(manager().createHardBlocks(folder.file("none")));
    EXPECT_FALSE(manager().createHardBlocks(folder.path().string()));
    EXPECT_FALSE(manager().createHardBlocks(cut));
    EXPECT_EQ("Error : Metadata file " + folder.file("none") + " does not exists\n", output.text());
    EXPECT_THAT(messages.lines(),
                ElementsAre("@90-4@%s|" + folder.path().string(), "@90-4@%s|" + cut));
    EXPECT_EQ(before, manager().getHardBlocksData().size());
}

} // namespace
