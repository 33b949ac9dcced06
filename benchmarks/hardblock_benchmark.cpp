// How long hard block metadata takes to load, beside RapidJSON reading the same file through the
// same stream, and what a million look-ups in a port map cost.

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "hardblock/metadata_reader.h"
#include "rapidjson_headers.h"
#include "xp_autodetect.h"

namespace {

constexpr int kHardBlocks = 500;
constexpr int kLookUps = 1'000'000;

/// One text for each of `count` numbers, separated by commas; "#" stands for the number.
std::string repeated(int count, const std::string& pattern) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        if (i > 0)
            text += ',';
        for (const char c : pattern)
            c == '#' ? text += std::to_string(i) : text += c;
    }
    return text;
}

std::string hardBlock(int number) {
    const std::string pins =
        repeated(40, R"("PIN_#": {"type": "vector", "direction": "in", "default_val": "0",
                                  "size_left": 31, "size_right": 0})");
    const std::string portMaps = repeated(20, R"("mapped_#[31:0]": "PORT_#[31:0]")");
    const std::string parameters = repeated(6, R"("PARAMETER_#": 64)");
    const std::string interfaces =
        repeated(4, R"("AXI_#": {"access_point": {"module": "noc", "parameters": {)" + parameters +
                        R"(}, "port_maps": {)" + portMaps + "}}}");
    return "\"block" + std::to_string(number) + R"(": {"interfaces": {)" + interfaces +
           R"(}, "pins": {)" + pins + "}}\n";
}

/// The metadata file, written at the first use and removed at the end.
class MetadataFile {
public:
    MetadataFile()
        : m_path(std::filesystem::temp_directory_path() /
                 ("tq_hardblock_benchmark_" + std::to_string(::getpid()) + ".json")) {
        std::ofstream stream(m_path);
        for (int i = 0; i < kHardBlocks; ++i)
            stream << (i == 0 ? "{" : ",") << hardBlock(i);
        stream << "}\n";
    }
    ~MetadataFile() {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
    MetadataFile(const MetadataFile&) = delete;
    MetadataFile& operator=(const MetadataFile&) = delete;

    [[nodiscard]] std::string path() const { return m_path.string(); }
    [[nodiscard]] static const MetadataFile& get() {
        static const MetadataFile file;
        return file;
    }

private:
    std::filesystem::path m_path;
};

void setBytes(benchmark::State& state) {
    const auto size = std::filesystem::file_size(MetadataFile::get().path());
    state.SetBytesProcessed(static_cast<std::int64_t>(size) * state.iterations());
}

void parseAlone(benchmark::State& state) {
    const std::string path = MetadataFile::get().path();
    for (auto _ : state) {
        boost::iostreams::filtering_istream stream;
        isl::iostreams::xp_autodetect()(path, stream);
        rapidjson::IStreamWrapper wrapper(stream);
        rapidjson::Document document;
        if (document.ParseStream(wrapper).HasParseError())
            state.SkipWithError("malformed");
    }
    setBytes(state);
}
BENCHMARK(parseAlone)->Unit(benchmark::kMillisecond);

/// Expected within twice the time of `parseAlone`.
void load(benchmark::State& state) {
    const HUTFile file(MetadataFile::get().path());
    for (auto _ : state) {
        hardblock::HardBlocks hardBlocks;
        if (!hardblock::readMetadataFile(file, hardBlocks) || hardBlocks.size() != kHardBlocks)
            state.SkipWithError("not loaded");
        state.PauseTiming(); // the manager never frees its hard blocks
        hardBlocks.clear();
        state.ResumeTiming();
    }
    setBytes(state);
}
BENCHMARK(load)->Unit(benchmark::kMillisecond);

/// Each look-up goes to the last mapping, so it must look at all of them.
void millionLookUps(benchmark::State& state) {
    hardblock::Interface interface("i");
    for (std::int64_t i = 0; i < state.range(0); ++i)
        interface.addPortMap("A[" + std::to_string(i) + "]", "X");
    const std::string last = "A[" + std::to_string(state.range(0) - 1) + "]";
    for (auto _ : state)
        for (int i = 0; i < kLookUps; ++i)
            benchmark::DoNotOptimize(interface.getPortMapByName(last));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(millionLookUps)
    ->Unit(benchmark::kMillisecond)
    ->RangeMultiplier(4)
    ->Range(1, 1024)
    ->Complexity(benchmark::oN);

} // namespace
