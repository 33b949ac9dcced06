// The block model as it grows: ten times the objects may take at most twelve times as long, and
// reading a file at most four times what parsing its bytes takes. A row's time is the processor's,
// per turn; "growth" is the ratio of its median to that of the row before, which has a tenth of the
// objects, and "of_parse" the second ratio, measured in turns in one run. Each turn begins in the
// same state whatever the size: its memory comes fresh from the system and nothing of the design is
// left in the cache, as when a tool does the work once. Without that, small designs would seem
// faster than they are, and the large ones to grow worse.

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "HUTFile.h"
#include "addressing/HBSAddrParseUtil.h"
#include "base/RapidJson.h"
#include "blockmodel/HABM.h"
#include "support/temp_dir.h"

namespace {

const support::TempDir& folder() {
    static const support::TempDir instance;
    return instance;
}

/// A design of so many objects: a sub-block has 2 interfaces, 1 connection, 2 ports, a map with an
/// address block of 80 registers, and 12 parameters.
constexpr std::int64_t kPerSubBlock = 100;

std::unique_ptr<HABMBlock> design(std::int64_t objects) {
    auto top = HABMBlock::createTopBlock("top");
    top->createInterface("M", false);
    for (std::int64_t i = 0; i < objects / kPerSubBlock; ++i) {
        HABMBlock& block = *top->createSubBlock("block" + std::to_string(i), "m", false);
        block.createInterface("M", false)->setInterfaceMode(HABMInterface::InterfaceMode::Master);
        block.createInterface("S", false)->setMemoryMapRef("map");
        block.createPort("clk", false);
        block.createPort("irq", false);
        HABMInterfaceConnection& line = *top->createInterfaceConnection("", false);
        line.setSourcePath(block.getInstancePath() + "/M");
        line.setTargetPath("/M");
        HABMAddrBlock& registers = *block.createMemoryMap("map")->createAddrBlock("regs");
        for (int r = 0; r < 80; ++r) {
            HABMRegister& member = *registers.createRegister("REGISTER_" + std::to_string(r));
            member.setOffset(HABMAddrValue(static_cast<std::uint64_t>(4 * r)));
            member.setReset(HABMAddrValue(0));
        }
        for (int p = 0; p < 12; ++p)
            block.setParameter("PARAMETER_" + std::to_string(p), "1", true);
    }
    return top;
}

using Seconds = double;

Seconds processorTime() {
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<Seconds>(now.tv_sec) + 1e-9 * static_cast<Seconds>(now.tv_nsec);
}

/// Gives free memory back to the system and fills the cache with something else.
void startAfresh() {
    malloc_trim(0);
    static std::vector<char> other(std::size_t{64} << 20);
    for (std::size_t i = 0; i < other.size(); i += 64)
        ++other[i];
}

template <class Work>
Seconds timeOf(const Work& work) {
    startAfresh();
    const Seconds start = processorTime();
    work();
    return processorTime() - start;
}

Seconds middleOf(std::vector<Seconds>& times) {
    const auto middle = times.begin() + std::ssize(times) / 2;
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

/// The turns of one row.
class Turns {
public:
    Turns(benchmark::State& state, const std::string& name) : m_state(state), m_name(name) {}
    Turns(const Turns&) = delete;
    Turns& operator=(const Turns&) = delete;
    ~Turns() {
        static std::map<std::pair<std::string, std::int64_t>, Seconds> medians;
        const std::int64_t objects = m_state.range(0);
        const Seconds now = medians[{m_name, objects}] = median();
        m_state.counters["per_object"] = now / static_cast<double>(objects);
        const auto before = medians.find({m_name, objects / 10});
        if (before != medians.end())
            m_state.counters["growth"] = now / before->second;
    }
    template <class Work>
    void add(const Work& work) {
        m_times.push_back(timeOf(work));
        m_state.SetIterationTime(m_times.back());
    }

    [[nodiscard]] Seconds median() { return middleOf(m_times); }

private:
    benchmark::State& m_state;
    std::string m_name;
    std::vector<Seconds> m_times;
};

void build(benchmark::State& state) {
    Turns turns(state, "build");
    for (auto _ : state) {
        std::unique_ptr<HABMBlock> block;
        turns.add([&] { block = design(state.range(0)); });
    }
}

void write(benchmark::State& state) {
    const auto block = design(state.range(0));
    const HUTFile file(folder().file("block.bmj"));
    Turns turns(state, "write");
    for (auto _ : state)
        turns.add([&] { HABMBlock::writeTopBlock(file, *block, true); });
}

void read(benchmark::State& state) {
    const std::string path = folder().file("block.bmj");
    HABMBlock::writeTopBlock(HUTFile(path), *design(state.range(0)), true);
    std::ifstream stream(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(stream)),
                            std::istreambuf_iterator<char>());
    std::vector<Seconds> parsing;
    Turns turns(state, "read");
    for (auto _ : state) {
        std::unique_ptr<HABMBlock> block;
        turns.add([&] { block = HABMBlock::readTopBlock(HUTFile(path)); });
        block.reset();
        parsing.push_back(timeOf([&] {
            rapidjson::Document document;
            document.Parse(bytes.data(), bytes.size());
            benchmark::DoNotOptimize(document.HasParseError());
        }));
    }
    state.counters["of_parse"] = turns.median() / middleOf(parsing);
}

void clone(benchmark::State& state) {
    const auto block = design(state.range(0));
    Turns turns(state, "clone");
    for (auto _ : state) {
        std::unique_ptr<HABMBlock> copy;
        turns.add([&] { copy = HABMBlock::cloneTopBlock(*block); });
    }
}

/// What configuring a design does: takes every second sub-block out, then the connections that
/// lead nowhere, asking each interface for its connections.
void pruneOnce(HABMBlock& block) {
    bool removes = false;
    for (HABMBlock* const subBlock : block.getSubBlocks())
        if ((removes = !removes))
            block.removeSubBlock(std::string(subBlock->getInstanceName()));
    for (HABMInterfaceConnection* const line : block.findInterfaceConnections("", true))
        if (!line->isValid())
            line->getParent()->removeInterfaceConnection(std::string(line->getName()));
    for (HABMBlock* const subBlock : block.getSubBlocks())
        for (HABMInterface* const interface : subBlock->getInterfaces())
            if (!interface->hasConnections())
                subBlock->removeInterface(std::string(interface->getInterfaceName()));
}

void prune(benchmark::State& state) {
    Turns turns(state, "prune");
    for (auto _ : state) {
        const auto block = design(state.range(0));
        turns.add([&] { pruneOnce(*block); });
    }
}

/// One hard block of so many registers, from its tables.
void tables(benchmark::State& state) {
    (void)folder().write("hb/data/addrblocks.txt", "addrblock=regs;size=16M\n");
    std::ofstream registers(folder().file("hb/data/registers.txt"));
    for (std::int64_t i = 0; i < state.range(0); ++i)
        registers << "register=REG_" << i << "; addrblock=regs; offset=0x" << std::hex << 4 * i
                  << std::dec << "; reset=0x0\n";
    registers.close();
    const HUTFile place(folder().path().string());
    Turns turns(state, "tables");
    for (auto _ : state) {
        std::unique_ptr<HABMBlock> block;
        turns.add([&] { block = HBSAddrParseUtil::buildHardblockDefinition(place, "hb", false); });
    }
}

constexpr std::int64_t kMost = 1000000;

void rows(benchmark::internal::Benchmark* work) {
    work->RangeMultiplier(10)->Range(kMost / 100, kMost)->Unit(benchmark::kMillisecond);
    work->UseManualTime()->MinTime(1);
}

BENCHMARK(build)->Apply(rows);
BENCHMARK(write)->Apply(rows);
BENCHMARK(read)->Apply(rows);
BENCHMARK(clone)->Apply(rows);
BENCHMARK(prune)->Apply(rows);
BENCHMARK(tables)->Apply(rows);

} // namespace
