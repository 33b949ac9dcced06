// The manager: its scan of a data area at the first use, and files added later.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <boost/iostreams/filter/gzip.hpp>
#include <boost/iostreams/filtering_stream.hpp>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "hardblock/HBSHardBlockDataMgr.h"
#include "support/support.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string gzip(const std::string& content) {
    std::ostringstream bytes;
    boost::iostreams::filtering_ostream stream;
    stream.push(boost::iostreams::gzip_compressor());
    stream.push(bytes);
    stream << content;
    stream.reset();
    return bytes.str();
}

/// The manager, and what its one scan of this data area did.
class Manager : public testing::Test {
protected:
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
            manager = HBSHardBlockDataMgr::getHardBlockDataMgr();
            messages = captured.lines();
            for (const auto* block : manager->getHardBlocksData())
                names.push_back(block->getName());
        }

        support::TempDir area;
        std::string bad;
        HBSHardBlockDataMgr* manager = nullptr;
        std::vector<std::string> messages;
        std::vector<std::string> names;
    };

    static const Scan& scan() {
        static const Scan scan;
        return scan;
    }
};

TEST_F(Manager, ReadsEveryFileOfTheDataAreaInOrder) {
    EXPECT_THAT(scan().names, ElementsAre("hidden", "same", "same", "protected"));
    EXPECT_THAT(scan().messages,
                ElementsAre(testing::StartsWith("@90-2@%s|"), "@90-4@%s|" + scan().bad));
    EXPECT_EQ(scan().manager, HBSHardBlockDataMgr::getHardBlockDataMgr());
}

TEST_F(Manager, FindsTheFirstOfAName) {
    hardblock::HardBlockData* block = scan().manager->getHardBlockByName("same");
    ASSERT_NE(nullptr, block);
    EXPECT_EQ("first", (*block->getPinsStartIterator())->getName());
    support::CapturedOutput output;
    EXPECT_EQ(nullptr, scan().manager->getHardBlockByName("Same"));
    EXPECT_EQ("Warning : Unable to find Information for Hard Block: Same\n", output.text());
}

TEST_F(Manager, AddsNothingFromFilesThatCannotBeRead) {
    const support::TempDir folder;
    HBSHardBlockDataMgr& manager = *scan().manager;
    const std::size_t before = manager.getHardBlocksData().size();
    const support::CapturedMessages messages;
    support::CapturedOutput output;
    const std::string whole = gzip(R"({"protected": {}})");
    const std::string cut = folder.write("cut", whole.substr(0, whole.size() - 3));
    EXPECT_FALSE(manager.createHardBlocks(folder.file("none")));
    EXPECT_FALSE(manager.createHardBlocks(folder.path().string()));
    EXPECT_FALSE(manager.createHardBlocks(cut));
    EXPECT_EQ("Error : Metadata file " + folder.file("none") + " does not exists\n", output.text());
    EXPECT_THAT(messages.lines(),
                ElementsAre("@90-4@%s|" + folder.path().string(), "@90-4@%s|" + cut));
    EXPECT_EQ(before, manager.getHardBlocksData().size());
}

TEST_F(Manager, AddsAFileAsOftenAsItIsRead) {
    const support::TempDir folder;
    HBSHardBlockDataMgr& manager = *scan().manager;
    const auto first = manager.getHardBlocksData();
    const support::CapturedMessages messages;
    const std::string path = folder.write("f", R"({"twice": {}})");
    EXPECT_TRUE(manager.createHardBlocks(path));
    EXPECT_TRUE(manager.createHardBlocks(path));
    EXPECT_TRUE(manager.createHardBlocks(folder.write("empty", " {}\n")));
    const auto all = manager.getHardBlocksData();
    ASSERT_EQ(first.size() + 2, all.size());
    EXPECT_EQ(all[first.size()], manager.getHardBlockByName("twice"));
    EXPECT_THAT(messages.lines(), IsEmpty());
}

} // namespace
