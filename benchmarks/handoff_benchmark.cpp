// Whole handoffs against what no handoff can do without: RapidJSON's parse of the input and a plain
// write of the output's bytes, all three measured in each iteration.
//
// Counters: "parse_ms" and "write_ms" are that floor, "times_floor" is the handoff over their sum.
// The second run holds ten times the design of the first; the ratio of their times is the growth.

#include <benchmark/benchmark.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include "HPAParamMgr.h"
#include "handoff/HBSGenerateService.h"
#include "rapidjson_headers.h"

namespace {

using Texts = std::map<std::string, std::string>;

struct Size {
    int masters, slaves, modulesWithPorts, portsEach, parametersEach, designParams, composites;
};

constexpr Size kTenth{100, 200, 50, 200, 100, 2000, 200};
constexpr Size kFull{100, 2000, 500, 200, 100, 20000, 2000};
constexpr int kPairsEach = 10;

std::string number(int value) {
    return std::to_string(value);
}

void writePorts(std::ostream& out, int instance, const Size& size) {
    out << "\"PORTS\": [";
    for (int p = 0; p < size.portsEach; ++p)
        out << (p == 0 ? "\n" : ",\n") << R"(        { "NAME": "port_)" << p
            << R"(", "DIR": "O", "SIG_IS": ")" << (p % 10 == 0 ? "CLK" : "DATA")
            << R"(", "IRQID": "", "CONNECTIONS": [ { "INSTANCE": "block_)"
            << (instance + 1) % size.modulesWithPorts << R"(", "PORT": "port_)" << p << "\" } ] }";
    out << " ],\n";
}

void writeParameters(std::ostream& out, int instance, const Size& size) {
    out << "      \"PARAMETERS\": {";
    for (int p = 0; p < size.parametersEach; ++p) {
        const int n = instance * size.parametersEach + p;
        out << (p == 0 ? "\n" : ",\n") << "        \"C_PARAM_" << p << "\": \"";
        if (n % 2 == 0)
            out << "DESIGN_COMPOSITE_" << n % size.composites << "_KEY_" << n % kPairsEach;
        else
            out << "DESIGN_PLAIN_" << n % size.designParams;
        out << '"';
    }
    out << " },\n";
}

void writeInstance(std::ostream& out, int instance, const Size& size) {
    out << "    { \"block_" << instance << "\": {\n      ";
    if (instance < size.modulesWithPorts) {
        writePorts(out, instance, size);
        writeParameters(out, instance, size);
    }
    out << "      \"SDKNAME\": \"block_" << instance << "\", \"IP_TYPE\": \"PERIPHERAL\",\n"
        << "      \"BASE_ADDR\": \"0x" << 0x40000000 + instance << "\", \"HIGH_ADDR\": \"0x"
        << 0x40000FFF + instance << "\",\n      \"MEMTYPE\": \"REGISTER\", \"IS_DATA\": \"TRUE\", "
        << "\"IS_INSTRUCTION\": \"FALSE\" } }";
}

void writeInput(const std::string& path, const Size& size) {
    std::ofstream out(path);
    out << "{ \"metadata\": {\n  \"slaves\": [\n";
    for (int i = 0; i < size.slaves; ++i)
        writeInstance(out << (i == 0 ? "" : ",\n"), i, size);
    out << " ],\n  \"masters\": [\n";
    for (int i = 0; i < size.masters; ++i)
        out << (i == 0 ? "" : ",\n") << "    { \"core_" << i << "\": { \"SDKNAME\": \"core_" << i
            << "\", \"excluded_slaves\": [ \"block_" << i << "\" ] } }";
    out << " ] } }\n";
}

Texts makeDesign(const Size& size) {
    Texts design;
    for (int i = 0; i < size.composites; ++i) {
        std::string pairs;
        for (int k = 0; k < kPairsEach; ++k)
            pairs += (k == 0 ? "{KEY_" : " KEY_") + number(k) + " " + number(i + k);
        design["DESIGN_COMPOSITE_" + number(i)] = pairs + "}";
    }
    for (int i = size.composites; i < size.designParams; ++i)
        design["DESIGN_PLAIN_" + number(i)] = number(i);
    return design;
}

/// Of the processor, so that other work on the machine doesn't count.
template <class Action>
double secondsOf(Action&& action) {
    const std::clock_t start = std::clock();
    action();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

void parse(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    rapidjson::IStreamWrapper wrapper(stream);
    rapidjson::Document document;
    benchmark::DoNotOptimize(document.ParseStream(wrapper).HasParseError());
}

void write(const std::string& path, const std::string& bytes) {
    std::ofstream stream(path, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string read(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void Handoff(benchmark::State& state, Size size) {
    const auto folder = std::filesystem::temp_directory_path() / "tq_handoff_benchmark";
    std::filesystem::create_directories(folder);
    const std::string input = folder / "connectivity.json";
    const std::string output = folder / "out.hwh";
    const std::string plain = folder / "plain";
    writeInput(input, size);
    Texts design = makeDesign(size);
    Texts system{{"ps_core_name", "core"}};
    HBSGenerateService::generateHWH(design, system, input, output);
    const std::string bytes = read(output);

    double parsing = 0;
    double writing = 0;
    double handing = 0;
    for (auto _ : state) {
        parsing += secondsOf([&] { parse(input); });
        writing += secondsOf([&] { write(plain, bytes); });
        const double seconds =
            secondsOf([&] { HBSGenerateService::generateHWH(design, system, input, output); });
        handing += seconds;
        state.SetIterationTime(seconds);
    }
    const double perIteration = 1000.0 / static_cast<double>(state.iterations());
    state.counters["input_MB"] = static_cast<double>(std::filesystem::file_size(input)) / 1e6;
    state.counters["output_MB"] = static_cast<double>(bytes.size()) / 1e6;
    state.counters["parse_ms"] = parsing * perIteration;
    state.counters["write_ms"] = writing * perIteration;
    state.counters["times_floor"] = handing / (parsing + writing);
    std::filesystem::remove_all(folder);
}

BENCHMARK_CAPTURE(Handoff, tenth, kTenth)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Handoff, full, kFull)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
