// The block model as it grows: ten times the objects may take at most twelve times as long, and
// reading a file at most four times what parsing its bytes takes. "per_object" is to stay level
// from row to row; "of_parse" is the second ratio, measured in turns in one run.

#include <benchmark/benchmark.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "HUTFile.h"
#include "addressing/HBSAddrParseUtil.h"
#include "blockmodel/HABM.h"
#include "rapidjson_headers.h"

namespace {

namespace fs = std::filesystem;

/// A folder of this process, gone with it.
class Folder {
public:
    Folder() : m_path(fs::temp_directory_path() / "tq_blockmodel_benchmark") {
        fs::create_directories(m_path / "hb/data");
    }
    ~Folder() { fs::remove_all(m_path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    [[nodiscard]] std::string file(const char* name) const { return (m_path / name).string(); }

private:
    fs::path m_path;
};

const Folder& folder() {
    static const Folder instance;
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

/// Seconds per object, for the eye to compare from row to row.
void countObjects(benchmark::State& state) {
    state.counters["per_object"] = benchmark::Counter(
        static_cast<double>(state.range(0)),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void build(benchmark::State& state) {
    for (auto _ : state) {
        auto block = design(state.range(0));
        state.PauseTiming();
        block.reset();
        state.ResumeTiming();
    }
    countObjects(state);
}

void write(benchmark::State& state) {
    const auto block = design(state.range(0));
    for (auto _ : state)
        HABMBlock::writeTopBlock(HUTFile(folder().file("block.bmj")), *block, true);
    countObjects(state);
}

void read(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    const std::string path = folder().file("block.bmj");
    HABMBlock::writeTopBlock(HUTFile(path), *design(state.range(0)), true);
    std::ifstream stream(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(stream)),
                            std::istreambuf_iterator<char>());
    Clock::duration reading{};
    Clock::duration parsing{};
    for (auto _ : state) {
        const auto start = Clock::now();
        auto block = HABMBlock::readTopBlock(HUTFile(path));
        reading += Clock::now() - start;
        state.PauseTiming();
        block.reset();
        const auto parseStart = Clock::now();
        rapidjson::Document document;
        document.Parse(bytes.data(), bytes.size());
        benchmark::DoNotOptimize(document.HasParseError());
        parsing += Clock::now() - parseStart;
        state.ResumeTiming();
    }
    countObjects(state);
    state.counters["of_parse"] =
        std::chrono::duration<double>(reading) / std::chrono::duration<double>(parsing);
}

void clone(benchmark::State& state) {
    const auto block = design(state.range(0));
    for (auto _ : state) {
        auto copy = HABMBlock::cloneTopBlock(*block);
        state.PauseTiming();
        copy.reset();
        state.ResumeTiming();
    }
    countObjects(state);
}

/// What configuring a design does: takes every second sub-block out, then the connections that
/// lead nowhere, asking each interface for its connections.
void prune(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto block = design(state.range(0));
        state.ResumeTiming();
        bool removes = false;
        for (HABMBlock* const subBlock : block->getSubBlocks())
            if ((removes = !removes))
                block->removeSubBlock(std::string(subBlock->getInstanceName()));
        for (HABMInterfaceConnection* const line : block->findInterfaceConnections("", true))
            if (!line->isValid())
                line->getParent()->removeInterfaceConnection(std::string(line->getName()));
        for (HABMBlock* const subBlock : block->getSubBlocks())
            for (HABMInterface* const interface : subBlock->getInterfaces())
                if (!interface->hasConnections())
                    subBlock->removeInterface(std::string(interface->getInterfaceName()));
        state.PauseTiming();
        block.reset();
        state.ResumeTiming();
    }
    countObjects(state);
}

/// One hard block of so many registers, from its tables.
void tables(benchmark::State& state) {
    std::ofstream(folder().file("hb/data/addrblocks.txt")) << "addrblock=regs;size=16M\n";
    std::ofstream registers(folder().file("hb/data/registers.txt"));
    for (std::int64_t i = 0; i < state.range(0); ++i)
        registers << "register=REG_" << i << "; addrblock=regs; offset=0x" << std::hex << 4 * i
                  << std::dec << "; reset=0x0\n";
    registers.close();
    const HUTFile place(fs::path(folder().file("hb")).parent_path().string());
    for (auto _ : state)
        benchmark::DoNotOptimize(HBSAddrParseUtil::buildHardblockDefinition(place, "hb", false));
    countObjects(state);
}

constexpr std::int64_t kMost = 1000000;

BENCHMARK(build)->RangeMultiplier(10)->Range(kMost / 100, kMost)->Unit(benchmark::kMillisecond);
BENCHMARK(write)->RangeMultiplier(10)->Range(kMost / 100, kMost)->Unit(benchmark::kMillisecond);
BENCHMARK(read)->RangeMultiplier(10)->Range(kMost / 100, kMost)->Unit(benchmark::kMillisecond);
BENCHMARK(clone)->RangeMultiplier(10)->Range(kMost / 100, kMost)->Unit(benchmark::kMillisecond);
BENCHMARK(prune)->RangeMultiplier(10)->Range(kMost / 100, kMost)->Unit(benchmark::kMillisecond);
BENCHMARK(tables)
    ->RangeMultiplier(10)
    ->Range(kMost / 1000, kMost / 10)
    ->Unit(benchmark::kMillisecond);

} // namespace
