// How long a configured instance, its report, its address map and the checks and look-ups of it
// take, and how much of the first is Tcl's own time.

#include <benchmark/benchmark.h>
#include <tcl.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "addressing/HBSAddressing.h"
#include "blockmodel/HABM.h"
#include "workbench/addressing/AddressMap.h"
#include "workbench/addressing/AddressViews.h"
#include "workbench/addressing/MapChecks.h"

namespace {

constexpr int kRegistersPerBlock = 500;
constexpr int kInterfacesPerBlock = 9; ///< each with an expression, as the block itself
constexpr int kAssignsPerBlock = 50;

std::string vlnv(const std::string& name) {
    return "kestrom:hardblock:" + name + ":1.0";
}

std::string expression(int reg) {
    return "register_value(R" + std::to_string(reg) + ") == " + std::to_string(reg) + " || 0";
}

/// A subsystem of blocks that each have registers, expressions, a map and a space.
std::unique_ptr<HABMBlock> subsystem(int blocks) {
    auto top = HABMBlock::createTopBlock("soc");
    top->setModuleVlnv(vlnv("soc"));
    for (int b = 0; b < blocks; ++b) {
        HABMBlock& block = *top->createSubBlock("u" + std::to_string(b), "u", false);
        block.setModuleVlnv(vlnv("u"));
        block.setEnablement(expression(0));
        HABMAddrBlock& regs = *block.createMemoryMap("m")->createAddrBlock("regs");
        regs.setAperture({HABMAddrValue("0x0"), HABMAddrValue("64K")});
        for (int r = 0; r < kRegistersPerBlock; ++r)
            regs.createRegister("R" + std::to_string(r))
                ->setValue(HABMAddrValue(std::to_string(r)));
        for (int i = 0; i < kInterfacesPerBlock; ++i)
            block.createInterface("S" + std::to_string(i), false)->setEnablement(expression(i));
        block.createAddrSpace("s")->createAddrSegment("all");
    }
    return top;
}

void addAssigns(HABMBlock& top, int blocks) {
    for (int i = 0; i < blocks * kAssignsPerBlock; ++i) {
        HABMAddrAssign& assign = *top.createAddrAssign("a" + std::to_string(i));
        assign.setSourcePath("/u" + std::to_string(i * 7 % blocks) + "/m/regs");
        assign.setTargetPath("/u" + std::to_string(i % blocks) + "/s/all");
        assign.setRange(HABMAddrValue("64K"));
    }
}

/// The texts that Tcl is given for one instance.
std::vector<std::string> scriptsFor(int blocks) {
    std::vector<std::string> scripts;
    for (int b = 0; b < blocks; ++b) {
        const std::string place = "::u" + std::to_string(b);
        scripts.push_back("namespace eval " + place + " {}");
        const std::string variable = "variable " + place + "::";
        std::string dict = variable + "registers [dict create ";
        std::string variables;
        for (int r = 0; r < kRegistersPerBlock; ++r) {
            const std::string name = "R" + std::to_string(r);
            const std::string value = HABMAddrValue(std::to_string(r)).getPrettyHexStringValue(0);
            dict.append(name).append(" ").append(value).append(" ");
            variables.append(variable).append(name).append(" ").append(value).append("\n");
        }
        scripts.push_back(dict + "]");
        scripts.push_back(variables);
    }
    for (int i = 0; i < blocks * (kInterfacesPerBlock + 1); ++i)
        scripts.push_back("expr {0x" + std::to_string(i % 10) + " == " + std::to_string(i % 10) +
                          " || 0}");
    return scripts;
}

void runTclAlone(const std::vector<std::string>& scripts) {
    Tcl_Interp* const interp = Tcl_CreateInterp();
    for (const std::string& script : scripts)
        Tcl_Eval(interp, script.c_str());
    Tcl_DeleteInterp(interp);
}

double secondsOf(const std::function<void()>& action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Counters: the parts of the time that the block model's copy and Tcl take, and what is left for
/// this library as a multiple of Tcl's time.
void createInstance(benchmark::State& state) {
    const int blocks = static_cast<int>(state.range(0));
    const auto definition = subsystem(blocks);
    const auto config = HABMBlock::createTopBlock("design");
    const std::vector<std::string> scripts = scriptsFor(blocks);
    double whole = 0;
    double tcl = 0;
    double copy = 0;
    for ([[maybe_unused]] auto step : state) {
        const double seconds =
            secondsOf([&] { (void)HBSAddressing::createSubsystemInstance(*definition, *config); });
        state.SetIterationTime(seconds);
        whole += seconds;
        tcl += secondsOf([&] { runTclAlone(scripts); });
        copy += secondsOf([&] { (void)HABMBlock::cloneTopBlock(*definition); });
    }
    state.counters["tcl_share"] = tcl / whole;
    state.counters["copy_share"] = copy / whole;
    state.counters["own_per_tcl"] = (whole - tcl - copy) / tcl;
}
BENCHMARK(createInstance)->Arg(200)->Arg(2000)->UseManualTime()->Unit(benchmark::kMillisecond);

/// All registers in one block: one Tcl namespace holds a variable for each.
void createInstanceOfOneBlock(benchmark::State& state) {
    const auto definition = HABMBlock::createTopBlock("wide");
    definition->setModuleVlnv("kestrom:hardblock:wide:1.0");
    HABMBlock& block = *definition->createSubBlock("u0", "u0", false);
    block.setModuleVlnv("kestrom:hardblock:u0:1.0");
    HABMAddrBlock& regs = *block.createMemoryMap("m")->createAddrBlock("regs");
    for (std::int64_t r = 0; r < state.range(0); ++r)
        regs.createRegister("R" + std::to_string(r))->setValue(HABMAddrValue("0x1"));
    const auto config = HABMBlock::createTopBlock("design");
    for ([[maybe_unused]] auto step : state)
        benchmark::DoNotOptimize(HBSAddressing::createSubsystemInstance(*definition, *config));
}
BENCHMARK(createInstanceOfOneBlock)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void reportAssigns(benchmark::State& state) {
    const int blocks = static_cast<int>(state.range(0));
    const auto instance = subsystem(blocks);
    addAssigns(*instance, blocks);
    for ([[maybe_unused]] auto step : state) {
        rapidjson::Document document;
        HBSAddressing::generateSurfaceLevelAddressing(*instance, document);
        benchmark::DoNotOptimize(document);
    }
}
BENCHMARK(reportAssigns)->Arg(200)->Arg(2000)->Unit(benchmark::kMillisecond);

void mapAddresses(benchmark::State& state, const HABMBlock& subsystem) {
    for ([[maybe_unused]] auto step : state)
        benchmark::DoNotOptimize(tq::AddressMap(subsystem, subsystem));
}

/// As many address spaces as blocks, and fifty times as many assigns.
void mapAssigns(benchmark::State& state) {
    const int blocks = static_cast<int>(state.range(0));
    const auto instance = subsystem(blocks);
    addAssigns(*instance, blocks);
    mapAddresses(state, *instance);
}
BENCHMARK(mapAssigns)->Arg(200)->Arg(2000)->Unit(benchmark::kMillisecond);

/// One block with a base address and as many memories as interfaces, each in a map of its own.
void mapMemories(benchmark::State& state) {
    const auto top = HABMBlock::createTopBlock("soc");
    HABMBlock& block = *top->createSubBlock("u0", "u0", false);
    block.setBaseAddress(HABMAddrValue("2G"));
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        const std::string name = "m" + std::to_string(i);
        HABMAddrBlock& memory = *block.createMemoryMap(name)->createAddrBlock("ram");
        memory.setAperture({HABMAddrValue(std::to_string(i) + "M"), HABMAddrValue("1M")});
        memory.setMemoryType(HABMAddrBlock::MemoryType::Memory);
        block.createInterface(name, false)->setMemoryMapRef(name);
    }
    mapAddresses(state, *top);
}
BENCHMARK(mapMemories)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond);

/// Blocks of 500 registers at addresses of their own, as many spaces as blocks and fifty times as
/// many assigns, and a port that leads to all blocks: nothing to find fault with.
std::unique_ptr<HABMBlock> faultlessSubsystem(int blocks) {
    auto top = subsystem(blocks);
    top->createInterface("S", false);
    for (int b = 0; b < blocks; ++b) {
        HABMBlock& block = *top->getSubBlock("u" + std::to_string(b));
        block.setModuleVlnv(vlnv("u" + std::to_string(b)));
        block.setBaseAddress(HABMAddrValue(std::uint64_t{0x10000} * static_cast<unsigned>(b)));
        std::uint64_t offset = 0;
        for (HABMRegister* const reg :
             block.getMemoryMap("m")->getAddrBlock("regs")->getRegisters())
            reg->setOffset(HABMAddrValue(offset += 4));
        block.getInterface("S0")->setMemoryMapRef("m");
        HABMAddrSpace& space = *block.getAddrSpace("s");
        space.setRange(HABMAddrValue("1T"));
        space.getAddrSegment("all")->setAperture({HABMAddrValue("0"), HABMAddrValue("1T")});
        HABMInterfaceConnection& connection = *top->createInterfaceConnection("", false);
        connection.setSourcePath("/S");
        connection.setTargetPath("/u" + std::to_string(b) + "/S0");
    }
    addAssigns(*top, blocks);
    int number = 0;
    for (HABMAddrAssign* const assign : top->getAddrAssigns())
        assign->setOffset(HABMAddrValue(std::uint64_t{0x10000} * static_cast<unsigned>(number++)));
    return top;
}

/// The map with what each initiator sees and all checks; the counter gives their time as a
/// multiple of that of building the instance.
void checkMap(benchmark::State& state) {
    const auto definition = faultlessSubsystem(static_cast<int>(state.range(0)));
    const auto config = HABMBlock::createTopBlock("design");
    double building = 0;
    double checking = 0;
    std::size_t count = 0;
    for ([[maybe_unused]] auto step : state) {
        std::unique_ptr<HABMBlock> instance;
        building += secondsOf(
            [&] { instance = HBSAddressing::createSubsystemInstance(*definition, *config); });
        const double seconds = secondsOf([&] {
            const tq::AddressMap map(*definition, *instance);
            const tq::AddressViews views(map, *instance);
            tq::checkMap({*definition, *instance, map, views, tq::AddressingConfig(), "", ""},
                         [&](const tq::Diagnostic&) { ++count; });
        });
        state.SetIterationTime(seconds);
        checking += seconds;
    }
    state.counters["per_instance"] = checking / building;
    state.counters["findings"] = static_cast<double>(count);
}
BENCHMARK(checkMap)->Arg(200)->Arg(2000)->UseManualTime()->Unit(benchmark::kMillisecond);

/// What lies at an address, for all initiators or for one.
void lookUp(benchmark::State& state, const std::string& from) {
    const auto top = faultlessSubsystem(200);
    const tq::AddressMap map(*top, *top);
    const tq::AddressViews views(map, *top);
    std::uint64_t address = 0;
    std::size_t found = 0;
    for ([[maybe_unused]] auto step : state) {
        address = (address * 6364136223846793005U + 1442695040888963407U);
        found += views.at(HABMAddrValue((address >> 33) % 0xC80000), from).size();
    }
    state.counters["found"] = static_cast<double>(found) / static_cast<double>(state.iterations());
}
BENCHMARK_CAPTURE(lookUp, all, "")->Iterations(1000000);
BENCHMARK_CAPTURE(lookUp, port, "S")->Iterations(10000000);

} // namespace
