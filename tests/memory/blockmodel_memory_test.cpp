// Blocks while memory runs out.

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

#include "HUTFile.h"
#include "blockmodel/block_generator.h"
#include "memory/block_text.h"
#include "memory/trial.h"
#include "support/support.h"

namespace {

constexpr unsigned kSeed = 7;

/// Expects a block to be as it was after a call that ran out of memory.
template <class Call>
auto unchanged(const HABMBlock& block, const std::string& before, Call call) {
    try {
        return call();
    } catch (const std::bad_alloc&) {
        if (memory::textOf(block) != before)
            throw std::logic_error("the block has changed");
        throw;
    }
}

class Block : public testing::Test {
protected:
    memory::NoMessages quiet;
    support::TempDir folder;
    std::unique_ptr<HABMBlock> block = generated::block(kSeed, 1);
    std::string content = memory::textOf(*block);
};

TEST_F(Block, IsCopiedWholeOrNotAtAll) {
    memory::failEachAllocation([&](const memory::Attempt& attempt) {
        const auto copy = attempt([&] { return HABMBlock::cloneTopBlock(*block); });
        return copy ? std::optional(memory::textOf(*copy)) : std::nullopt;
    });
}

TEST_F(Block, IsReadWholeOrNotAtAll) {
    const std::string path = folder.write("block.bmj", generated::bytes(*block));
    memory::failEachAllocation([&](const memory::Attempt& attempt) {
        const auto read = attempt([&] { return HABMBlock::readTopBlock(HUTFile(path)); });
        return read ? std::optional(memory::textOf(*read)) : std::nullopt;
    });
}

TEST_F(Block, IsWrittenWholeOrNotAtAll) {
    const std::string bytes = generated::bytes(*block);
    memory::failEachAllocation([&](const memory::Attempt& attempt) -> std::optional<std::string> {
        const std::string path = folder.write("block.bmj", "old");
        const bool written =
            attempt([&] { return HABMBlock::writeTopBlock(HUTFile(path), *block, true); });
        const std::string now = support::readFile(path);
        if (now != (written ? bytes : "old"))
            throw std::logic_error("the file isn't what was reported");
        return written ? std::optional(now) : std::nullopt;
    });
}

TEST_F(Block, IsMergedWholeOrNotAtAll) {
    const auto child = generated::block(kSeed + 1, 1);
    memory::failEachAllocation([&](const memory::Attempt& attempt) -> std::optional<std::string> {
        const auto top = generated::block(kSeed, 1);
        const std::string path = top->getSubBlocks().front()->getInstancePath();
        const bool merged = unchanged(*top, content, [&] {
            return attempt([&] { return HABMBlock::mergeTopBlock(*top, path, *child, true); });
        });
        return merged ? std::optional(memory::textOf(*top)) : std::nullopt;
    });
}

TEST_F(Block, ASubBlockIsTakenOutWholeOrNotAtAll) {
    memory::failEachAllocation([&](const memory::Attempt& attempt) -> std::optional<std::string> {
        const auto top = generated::block(kSeed, 1);
        const std::string name = top->getSubBlocks().front()->getInstanceName();
        const auto taken = unchanged(
            *top, content, [&] { return attempt([&] { return top->removeSubBlock(name); }); });
        if (!taken)
            return std::nullopt;
        return memory::textOf(*top) + memory::textOf(*taken);
    });
}

/// A change of a connection gives the index of connections up, and the next question makes it anew.
TEST_F(Block, AnswersAreRightAfterAChangeThatRanOutOfMemory) {
    memory::failEachAllocation([&](const memory::Attempt& attempt) {
        const auto top = HABMBlock::createTopBlock("top");
        for (const char* const name : {"a_port_of_a_longer_name", "b_port_of_a_longer_name"})
            top->createInterface(name, false);
        HABMInterfaceConnection* const connection = top->createInterfaceConnection("", false);
        connection->setSourcePath("/a_port_of_a_longer_name");
        const auto answers = [&] {
            std::string text;
            for (HABMInterface* interface : top->getInterfaces())
                text += interface->hasConnections() ? '1' : '0';
            return text;
        };
        std::string before = answers();
        try {
            attempt([&] {
                connection->setSourcePath("/b_port_of_a_longer_name");
                top->removeInterface("a_port_of_a_longer_name");
            });
        } catch (const std::bad_alloc&) {
            const bool isMoved = connection->getSourcePath() == "/b_port_of_a_longer_name";
            if (answers() != (isMoved ? "01" : before))
                throw std::logic_error("the index is wrong");
            throw;
        }
        return answers();
    });
}

} // namespace
