// Whole handoffs of seventeen shapes, 100,000 items each, against what no handoff can do without:
// RapidJSON's parse of the input's text in memory and a plain write of the output's bytes, all
// three measured one after the other.
//
// Counters: "times_floor" is the handoff's time over the sum of the other two (expected: at most
// 5), "memory" its peak over the size of the input (at most 5), "growth" its time over that of a
// tenth of the items (at most 12). Times are of the processor and the best of three.

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <string_view>

#include "base/RapidJson.h"
#include "handoff/HBSGenerateService.h"
#include "support/temp_dir.h"

namespace {

using Texts = std::map<std::string, std::string>;

constexpr int kItems = 100'000;

std::string numbered(std::string_view name, int number) {
    return std::string(name) + std::to_string(number);
}

std::string inQuotes(std::string_view text) {
    return '"' + std::string(text) + '"';
}

std::string member(std::string_view name, std::string_view text) {
    return inQuotes(name) + ": " + inQuotes(text);
}

/// Calls `item(i)` for each number below `count`, and joins what it gives.
template <class Item>
std::string repeated(int count, Item&& item) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text.append(i == 0 ? "\n  " : ",\n  ").append(item(i));
    return text;
}

std::string instance(const std::string& name, const std::string& members) {
    return "{ " + inQuotes(name) + ": { " + members + " } }";
}

std::string sdkName(const std::string& name) {
    return member("SDKNAME", name);
}

std::string slave(const std::string& name) {
    return instance(name, sdkName(name) + ", " + member("IP_TYPE", "PERIPHERAL") + ", " +
                              member("BASE_ADDR", "0x40000000") + ", " +
                              member("HIGH_ADDR", "0x40000FFF"));
}

std::string port(const std::string& name, const std::string& more) {
    return "{ " + member("NAME", name) + ", " + member("DIR", "O") + ", " +
           member("SIG_IS", "DATA") + more + " }";
}

std::string end(const std::string& instanceName, const std::string& portName) {
    return "{ " + member("INSTANCE", instanceName) + ", " + member("PORT", portName) + " }";
}

std::string connections(const std::string& ends) {
    return R"(, "CONNECTIONS": [ )" + ends + " ]";
}

std::string ports(const std::string& list) {
    return R"(, "PORTS": [ )" + list + " ]";
}

/// What a handoff is given.
struct Job {
    std::string slaves;
    std::string masters;
    Texts design;

    [[nodiscard]] std::string connectivity() const {
        return R"({ "metadata": { "slaves": [ )" + slaves + R"( ], "masters": [ )" + masters +
               " ] } }\n";
    }
};

int side(int items) {
    return static_cast<int>(std::sqrt(items));
}

/// One module with the given parameters, "P_<number>" each.
template <class Value>
Job parameters(int items, Texts design, Value&& value) {
    const auto parameter = [&](int i) { return member(numbered("P_", i), value(i)); };
    return {
        instance("m", sdkName("m") + R"(, "PARAMETERS": { )" + repeated(items, parameter) + " }"),
        "", std::move(design)};
}

Job modules(int items) {
    return {repeated(items, [](int i) { return slave(numbered("block_", i)); }), "", {}};
}

Job portsOfOne(int items) {
    const auto one = [](int i) {
        return port(numbered("port_", i), connections(end(numbered("b_", i % 100), "p")));
    };
    return {instance("m", sdkName("m") + ports(repeated(items, one))), "", {}};
}

Job hub(int items) {
    const auto spoke = [](int i) { return end(numbered("block_", i), "port"); };
    return {instance("m", sdkName("m") + ports(port("hub", connections(repeated(items, spoke))))),
            "",
            {}};
}

Job externalPorts(int items) {
    const auto one = [](int i) {
        return port(numbered("port_", i), connections(end("core_top", numbered("pad_", i))));
    };
    return {instance("m", sdkName("m") + ports(repeated(items, one))), "", {}};
}

Job excludedLists(int items) {
    const int count = side(items);
    const auto excluded = [](int i) { return inQuotes(numbered("block_", i)); };
    const auto master = [&](int i) {
        return instance(numbered("core_", i), sdkName(numbered("core_", i)) +
                                                  R"(, "excluded_slaves": [ )" +
                                                  repeated(count - 1, excluded) + " ]");
    };
    return {repeated(count, [](int i) { return slave(numbered("block_", i)); }),
            repeated(count, master),
            {}};
}

Job enableParameters(int items) {
    Job job;
    for (int i = 0; i < items; ++i)
        job.design[numbered("ENABLE_", i)] = i % 2 == 0 ? "1" : "0";
    job.slaves = repeated(items, [](int i) {
        return instance(numbered("block_", i), sdkName(numbered("block_", i)) + ", " +
                                                   member("ENPARAM", numbered("ENABLE_", i)));
    });
    return job;
}

Job oneComposite(int items) {
    std::string words = "{";
    for (int i = 0; i < items; ++i)
        words += numbered("KEY_", i) + " " + std::to_string(i) + " ";
    words.back() = '}';
    return parameters(items, {{"DESIGN", words}}, [](int i) { return numbered("DESIGN_KEY_", i); });
}

Job manyParameters(int items) {
    Texts design;
    for (int i = 0; i < items; ++i)
        design[numbered("DESIGN_PLAIN_", i)] = std::to_string(i);
    return parameters(items, std::move(design), [](int i) { return numbered("DESIGN_PLAIN_", i); });
}

/// Modules of a hundred ports, each port joined to its like in the next module.
Job nets(int items) {
    const int count = items / 100;
    const auto module = [&](int m) {
        const std::string next = numbered("block_", (m + 1) % count);
        return instance(numbered("block_", m),
                        sdkName(numbered("block_", m)) + ports(repeated(100, [&](int i) {
                            return port(numbered("port_", i),
                                        connections(end(next, numbered("port_", i))));
                        })));
    };
    return {repeated(count, module), "", {}};
}

Job ranges(int items) {
    return {repeated(side(items), [](int i) { return slave(numbered("block_", i)); }),
            repeated(side(items), [](int i) { return slave(numbered("core_", i)); }),
            {}};
}

Job oneSdkName(int items) {
    return {repeated(items,
                     [](int i) {
                         return instance(numbered("block_", i),
                                         sdkName("m") + ports(port("p", "")));
                     }),
            "",
            {}};
}

Job disabledModules(int items) {
    return {repeated(items,
                     [](int i) {
                         return instance(numbered("block_", i), sdkName(numbered("block_", i)) +
                                                                    ", " +
                                                                    member("ENPARAM", "OFF"));
                     }),
            "",
            {{"OFF", "0"}}};
}

Job interfaces(int items) {
    const auto interface = [](int i) {
        return instance(numbered("axi_", i),
                        member("EN_PARAM", "EN") + R"(, "APERTURE": [ "0x0", "0x1000" ])");
    };
    return {"",
            instance("m", sdkName("m") + R"(, "EXCLUDED_INTERFACES": [ )" +
                              repeated(items, interface) + " ]"),
            {}};
}

Job scalars(int items) {
    const auto scalar = [](int i) { return member(numbered("SCALAR_", i), "value"); };
    return {instance("m", sdkName("m") + ", " + repeated(items, scalar)), "", {}};
}

Job members(int items) {
    const auto unknown = [](int i) { return member(numbered("MEMBER_", i), "value"); };
    return {
        instance("m", sdkName("m") + ports(port("p", ", " + repeated(items, unknown)))), "", {}};
}

/// Names below twenty composites of which each continues the key of the one before.
Job deepParents(int items) {
    Texts design;
    std::string key = "A";
    for (int i = 0; i < 20; ++i, key += "_A")
        design[key] = "{FIRST 1 SECOND 2}";
    design[key] = "{FIRST 3 SECOND 4}";
    return parameters(items, std::move(design),
                      [&](int i) { return key + (i % 2 == 0 ? "_FIRST" : "_SECOND"); });
}

Job longNames(int items) {
    const std::string tail(150, 'x');
    const auto name = [&](int i) { return numbered("block_", i) + tail + std::to_string(i); };
    return {repeated(items,
                     [&](int i) {
                         return instance(
                             name(i), sdkName(name(i)) +
                                          ports(port("p", connections(end(name(items - i), "p")))));
                     }),
            "",
            {}};
}

/// Of the processor, so that other work on the machine doesn't count.
template <class Action>
double secondsOf(Action&& action) {
    double best = HUGE_VAL;
    for (int i = 0; i < 3; ++i) {
        const std::clock_t start = std::clock();
        action();
        best = std::min(best, static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    return best;
}

void parse(const std::string& text) {
    rapidjson::Document document;
    benchmark::DoNotOptimize(document.Parse(text.data(), text.size()).HasParseError());
}

void write(const std::string& path, const std::string& bytes) {
    std::ofstream stream(path, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string read(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// A line of /proc/self/status, in bytes.
double memoryLine(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name))
            return std::stod(line.substr(name.size() + 1)) * 1024;
    return 0;
}

/// By how much an action lifts the process's memory at its peak.
template <class Action>
double peakBytesOf(Action&& action) {
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << 5; // the peak counts from here
    const double before = memoryLine("VmRSS");
    action();
    return memoryLine("VmHWM") - before;
}

/// A job with its files.
class Handoff {
public:
    explicit Handoff(const Job& job) : m_job(job), m_text(job.connectivity()) {
        write(file("in.json"), m_text);
    }

    void run() {
        Texts system{{"ps_core_name", "core"}};
        HBSGenerateService::generateHWH(m_job.design, system, file("in.json"), file("out.hwh"));
    }
    [[nodiscard]] std::string file(const char* name) const { return m_folder.file(name); }
    [[nodiscard]] const std::string& text() const { return m_text; }

private:
    support::TempDir m_folder;
    Job m_job;
    std::string m_text;
};

void handOff(benchmark::State& state, Job (*shape)(int)) {
    double tenth = 0;
    {
        Handoff small(shape(kItems / 10));
        tenth = secondsOf([&] { small.run(); });
    }
    Handoff handoff(shape(kItems));
    const double peak = peakBytesOf([&] { handoff.run(); });
    const std::string bytes = read(handoff.file("out.hwh"));
    for (auto _ : state) {
        const double parsing = secondsOf([&] { parse(handoff.text()); });
        const double writing = secondsOf([&] { write(handoff.file("plain"), bytes); });
        const double handing = secondsOf([&] { handoff.run(); });
        state.SetIterationTime(handing);
        state.counters["input_MB"] = static_cast<double>(handoff.text().size()) / 1e6;
        state.counters["output_MB"] = static_cast<double>(bytes.size()) / 1e6;
        state.counters["floor_ms"] = (parsing + writing) * 1e3;
        state.counters["times_floor"] = handing / (parsing + writing);
        state.counters["growth"] = handing / tenth;
        state.counters["memory"] = peak / static_cast<double>(handoff.text().size());
    }
}

#define TQ_SHAPE(shape)                                                                            \
    BENCHMARK_CAPTURE(handOff, shape, shape)                                                       \
        ->UseManualTime()                                                                          \
        ->Iterations(1)                                                                            \
        ->Unit(benchmark::kMillisecond)

TQ_SHAPE(modules);
TQ_SHAPE(portsOfOne);
TQ_SHAPE(hub);
TQ_SHAPE(externalPorts);
TQ_SHAPE(excludedLists);
TQ_SHAPE(enableParameters);
TQ_SHAPE(oneComposite);
TQ_SHAPE(manyParameters);
TQ_SHAPE(nets);
TQ_SHAPE(ranges);
TQ_SHAPE(oneSdkName);
TQ_SHAPE(disabledModules);
TQ_SHAPE(interfaces);
TQ_SHAPE(scalars);
TQ_SHAPE(members);
TQ_SHAPE(deepParents);
TQ_SHAPE(longNames);

} // namespace
