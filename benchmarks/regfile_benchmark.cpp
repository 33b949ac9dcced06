// Reading a file of 100,000 registers, beside a bare parse of the same file with the same settings.
// The reader should stay within 1.15 times the bare parse.

#include <benchmark/benchmark.h>
#include <unistd.h>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/SecurityManager.hpp>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "regfile/HBSRegFileParser.h"

namespace {

constexpr int kRegisters = 100000;

/// A file that goes with the program.
class RegisterFile {
public:
    RegisterFile()
        : m_path(std::filesystem::temp_directory_path() /
                 ("regfile_benchmark_" + std::to_string(getpid()) + ".xml")) {
        std::ofstream stream(m_path);
        stream << "<spirit:component><spirit:memoryMaps><spirit:memoryMap>"
                  "<spirit:name>map</spirit:name><spirit:addressBlock>"
                  "<spirit:baseAddress>0xF1000000</spirit:baseAddress>\n";
        for (int i = 0; i < kRegisters; ++i)
            stream << "  <spirit:register>\n    <spirit:name>REG_" << i
                   << "</spirit:name>\n    <spirit:description>Holds word " << i
                   << " of the configuration.</spirit:description>\n    <spirit:addressOffset>0x"
                   << std::hex << 4 * i << std::dec
                   << "</spirit:addressOffset>\n    <spirit:access>read-write</spirit:access>\n"
                      "    <spirit:size>32</spirit:size>\n  </spirit:register>\n";
        stream << "</spirit:addressBlock></spirit:memoryMap></spirit:memoryMaps>"
                  "</spirit:component>\n";
    }
    ~RegisterFile() { std::filesystem::remove(m_path); }
    RegisterFile(const RegisterFile&) = delete;
    RegisterFile& operator=(const RegisterFile&) = delete;

    [[nodiscard]] std::string path() const { return m_path.string(); }

private:
    std::filesystem::path m_path;
};

const std::string& registerFile() {
    static const RegisterFile file;
    static const std::string path = file.path();
    return path;
}

void bareParse(benchmark::State& state) {
    xercesc::XMLPlatformUtils::Initialize();
    for (auto _ : state) {
        xercesc::SecurityManager limits;
        xercesc::XercesDOMParser parser;
        parser.setValidationScheme(xercesc::XercesDOMParser::Val_Never);
        parser.setDoNamespaces(false);
        parser.setDoSchema(false);
        parser.setLoadExternalDTD(false);
        parser.setDisableDefaultEntityResolution(true);
        parser.setSecurityManager(&limits);
        parser.parse(registerFile().c_str());
        benchmark::DoNotOptimize(parser.getDocument()->getDocumentElement());
    }
}
BENCHMARK(bareParse)->Unit(benchmark::kMillisecond)->Iterations(3);

void parseFile(benchmark::State& state) {
    for (auto _ : state) {
        const auto map = hbs::HBSRegFileParser::parseFile(registerFile());
        if (map == nullptr || map->getRegister("REG_99999") == nullptr)
            throw std::runtime_error("the file wasn't read whole");
    }
}
BENCHMARK(parseFile)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace
