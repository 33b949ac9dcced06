// The checks find each planted fault and nothing else, and what lies at an address is what a search
// of all rows finds.

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/support.h"
#include "workbench/addressing/AddressViews.h"
#include "workbench/addressing/MapChecks.h"
#include "workbench/design_generator.h"

namespace {

using tq::AddressMap;
using tq::AddressViews;

std::vector<std::string> findingsOf(const HABMBlock& definition, const HABMBlock& instance) {
    const AddressMap map(definition, instance);
    const AddressViews views(map, instance);
    const tq::AddressingConfig config;
    std::vector<std::string> ids;
    tq::checkMap({definition, instance, map, views, config, "", ""},
                 [&](const tq::Diagnostic& finding) { ids.push_back(finding.id); });
    return ids;
}

TEST(MapChecks, FindEachPlantedFaultAndNothingElse) {
    designs::Dice dice(1);
    for (int round = 0; round < 100; ++round)
        for (const designs::Fault& fault : designs::kFaults) {
            const auto definition = designs::makeDesign(dice, true);
            // What a config would switch off, for assigns that lead there.
            definition->createSubBlock("gone", "cpu", false)
                ->createAddrSpace("data")
                ->createAddrSegment("low");
            const auto clean = HABMBlock::cloneTopBlock(*definition);
            clean->removeSubBlock("gone");
            EXPECT_THAT(findingsOf(*definition, *clean), testing::IsEmpty());
            if (fault.plant != nullptr)
                fault.plant(*definition);
            const auto instance = HABMBlock::cloneTopBlock(*definition);
            instance->removeSubBlock("gone");
            if (fault.plantInInstance != nullptr)
                fault.plantInInstance(*instance);
            EXPECT_THAT(findingsOf(*definition, *instance), testing::ElementsAre(fault.id));
        }
}

/// A subsystem whose port sees blocks of one size each at the given addresses.
std::unique_ptr<HABMBlock> makeRow(const std::vector<std::pair<int, int>>& startsAndSizes) {
    auto top = HABMBlock::createTopBlock("row");
    HABMInterface& port = *top->createInterface("S", false);
    port.setInterfaceMode(HABMInterface::InterfaceMode::Slave);
    for (const auto& [start, size] : startsAndSizes) {
        const std::string name = "b" + std::to_string(top->getSubBlocks().size());
        HABMBlock& block = *top->createSubBlock(name, name, false);
        block.createMemoryMap("m")->createAddrBlock("r")->setAperture(
            {HABMAddrValue(std::to_string(start)), HABMAddrValue(std::to_string(size))});
        HABMInterface& target = *block.createInterface("S", false);
        target.setInterfaceMode(HABMInterface::InterfaceMode::Slave);
        target.setMemoryMapRef("m");
        HABMInterfaceConnection& made = *top->createInterfaceConnection("", false);
        made.setSourcePath("/S");
        made.setTargetPath("/" + name + "/S");
    }
    return top;
}

TEST(MapChecks, FindEachPairThatOverlaps) {
    // Each covers the next, so that the first reaches furthest.
    const auto nested = makeRow({{0, 64}, {8, 8}, {8, 4}, {32, 32}, {64, 64}});
    EXPECT_THAT(findingsOf(*nested, *nested),
                testing::UnorderedElementsAre("overlap:b0/b1", "overlap:b0/b2", "overlap:b1/b2",
                                              "overlap:b0/b3"));
    designs::Dice dice(4);
    for (int round = 0; round < 200; ++round) {
        std::vector<std::pair<int, int>> row;
        std::set<std::string> expected;
        for (int i = 0; i < 12; ++i) {
            const int size = 1 << dice() % 6;
            row.emplace_back(static_cast<int>(dice() % 64) * size, size);
            for (int k = 0; k < i; ++k)
                if (const auto& [start, length] = row[static_cast<std::size_t>(k)];
                    start < row.back().first + size && row.back().first < start + length)
                    expected.insert(
                        "overlap:" + std::min("b" + std::to_string(k), "b" + std::to_string(i)) +
                        "/" + std::max("b" + std::to_string(k), "b" + std::to_string(i)));
        }
        const auto design = makeRow(row);
        ASSERT_THAT(findingsOf(*design, *design), testing::UnorderedElementsAreArray(expected));
    }
}

TEST(MapChecks, SayThatNotEachOverlapIsListed) {
    const auto heap = makeRow(std::vector<std::pair<int, int>>(600, {0, 64}));
    const std::vector<std::string> ids = findingsOf(*heap, *heap);
    EXPECT_EQ(1, std::count(ids.begin(), ids.end(), "more-overlaps:row"));
    EXPECT_LT(ids.size(), 101000U);
    // The last is still told, with one of the others.
    EXPECT_TRUE(std::any_of(ids.begin(), ids.end(),
                            [](const std::string& id) { return id.ends_with("/b99"); }));
}

/// So that a list that ends early holds what matters.
TEST(MapChecks, TellHintsLast) {
    const auto row = makeRow({{0, 3}, {1, 3}, {8, 5}});
    EXPECT_THAT(findingsOf(*row, *row),
                testing::ElementsAre("overlap:b0/b1", "aperture-size:b0/m/r",
                                     "aperture-size:b1/m/r", "aperture-size:b2/m/r"));
}

TEST(MapChecks, LeaveOutWhatIsAllowedAndTellOfAllowsThatDoNothing) {
    std::vector<std::string> ids;
    const tq::DiagnosticSink sink = [&](const tq::Diagnostic& finding) {
        ids.push_back(finding.id);
    };
    tq::AllowedFindings allowed({"overlap:b/a", "aperture-size", "misaligned:x"});
    const tq::DiagnosticSink filtered = allowed.filter(sink);
    for (const char* id : {"overlap:a/b", "overlap:a/c", "aperture-size:m/x", "misaligned:y"})
        filtered(tq::makeDiagnostic(tq::Severity::Error, id, {}, ""));
    allowed.reportUnused(sink);
    EXPECT_THAT(ids,
                testing::ElementsAre("overlap:a/c", "misaligned:y", "unused-allow:misaligned:x"));
}

// --- what lies at an address, by brute force ---

struct Seen {
    HABMAddrValue first;
    HABMAddrValue last;
    HABMAddrValue origin;
    const HABMAddrBlock* block;
};

bool holds(const HABMAddrValue& first, const HABMAddrValue& last, const HABMAddrValue& address) {
    return !(address < first) && !(last < address);
}

HABMAddrValue lastOf(const HABMAddrValue& first, const HABMAddrValue& size) {
    return HABMAddrAperture(first, size).getHighAddress();
}

/// The blocks that interfaces lead to, those of their own included.
void addReached(std::vector<Seen>& seen, const std::vector<HABMInterface*>& starts) {
    std::vector<HABMInterface*> targets = starts;
    for (HABMInterface* const start : starts)
        for (HABMInterface* const target : start->getTargetInterfaces())
            targets.push_back(target);
    for (HABMInterface* const target : targets) {
        const HABMMemoryMap* const map =
            target->isSourceInterface()
                ? nullptr
                : target->getParent()->getMemoryMap(target->getMemoryMapRef());
        if (map == nullptr)
            continue;
        for (const HABMAddrBlock* const block : map->getAddrBlocks()) {
            const HABMAddrValue base =
                target->getParent()->getBaseAddress().plus(block->getOffset());
            const bool isKnown = std::any_of(
                seen.begin(), seen.end(), [&](const Seen& entry) { return entry.block == block; });
            if (!isKnown)
                seen.push_back({base, lastOf(base, block->getRange()), base, block});
        }
    }
}

std::vector<std::string> searchAll(const HABMBlock& instance, const HABMAddrValue& address) {
    std::vector<std::string> found;
    const auto report = [&](const std::string& from, const std::vector<Seen>& seen) {
        for (const Seen& entry : seen) {
            if (!holds(entry.first, entry.last, address))
                continue;
            const std::string text = from + " " + entry.block->getPath() + " ";
            const HABMAddrValue offset = address.minus(entry.origin);
            bool isRegister = false;
            for (const HABMRegister* const reg : entry.block->getRegisters())
                if (holds(
                        reg->getOffset(),
                        lastOf(reg->getOffset(), HABMAddrValue(std::uint64_t{reg->getWidth() / 8})),
                        offset)) {
                    found.push_back(text + reg->getName());
                    isRegister = true;
                }
            if (!isRegister)
                found.push_back(text + "-");
        }
    };
    for (const HABMAddrSpace* const space : instance.findAddrSpaces("", true)) {
        std::vector<Seen> seen;
        for (const HABMAddrAssign* const assign :
             HABMAddrAssign::filterByAddrSpace(instance.findAddrAssigns("", true), space))
            if (const HABMAddrBlock* const block = assign->getSourceAddrBlock()) {
                const bool isHidden = assign->getAssignType() == HABMAddrAssign::Excluded;
                seen.push_back(
                    {assign->getOffset(),
                     isHidden ? HABMAddrValue() : lastOf(assign->getOffset(), assign->getRange()),
                     assign->getOffset(), block});
            }
        const std::size_t assigned = seen.size();
        std::vector<HABMInterface*> starts;
        for (HABMInterface* const interface : space->getParent()->getInterfaces())
            if (interface->isSourceInterface())
                starts.push_back(interface);
        addReached(seen, starts);
        bool isInWindow = false;
        for (const HABMAddrSegment* const segment : space->getAddrSegments())
            isInWindow = isInWindow || holds(segment->getOffset(),
                                             segment->getAperture().getHighAddress(), address);
        if (!isInWindow)
            seen.resize(assigned);
        report(space->getPath().substr(1), seen);
    }
    for (HABMInterface* const port : instance.getInterfaces()) {
        std::vector<Seen> seen;
        addReached(seen, {port});
        report(port->getInterfaceName(), seen);
    }
    return found;
}

TEST(AddressViews, FindWhatASearchOfAllRowsFinds) {
    designs::Dice dice(2);
    for (int round = 0; round < 2000; ++round) {
        const auto design = designs::makeDesign(dice, round % 4 == 0);
        const AddressMap map(*design, *design);
        const AddressViews views(map, *design);
        for (int i = 0; i < 10; ++i) {
            const HABMAddrValue address(round % 4 == 0 ? 0x10000 * (dice() % 4) + dice() % 64
                                                       : std::uint64_t{dice() % 0x4000});
            std::vector<std::string> found;
            for (const AddressViews::Match& match : views.at(address))
                found.push_back(match.view->path + " " +
                                match.region->value.block->instance->getPath() + " " +
                                (match.reg == nullptr ? "-" : match.reg->getName()));
            ASSERT_THAT(found, testing::UnorderedElementsAreArray(searchAll(*design, address)))
                << address.getHexStringValue(0);
        }
    }
}

TEST(AddressViews, TellTheWayAndCutBlocksAtTheWindows) {
    designs::Dice dice(3);
    const auto design = designs::makeDesign(dice, true);
    HABMBlock& cpu = *design->getSubBlock("cpu1");
    cpu.getAddrSpace("data")->getAddrSegment("low")->setAperture(
        {HABMAddrValue("0x10010"), HABMAddrValue("0x10")});
    const AddressMap map(*design, *design);
    const AddressViews views(map, *design);
    EXPECT_TRUE(views.at(HABMAddrValue("0x1000F"), "cpu1").empty());
    EXPECT_TRUE(views.at(HABMAddrValue("0x10020"), "cpu1").empty());
    const auto matches = views.at(HABMAddrValue("0x10010"), "cpu1/data");
    ASSERT_EQ(1U, matches.size());
    EXPECT_EQ("0x10", matches[0].offset.getHexStringValue(0));
    const auto way = views.wayTo(*matches[0].view, matches[0].region->value);
    ASSERT_EQ(1U, way.size());
    EXPECT_EQ("/p0/S", way[0]->getTargetPath());
}

} // namespace
