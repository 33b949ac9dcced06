// Reading a file of 100,000 registers, beside a bare parse of the same file with the same settings.
// The reader should stay within 1.3 times the bare parse; counting in front takes half of the rest.

#include <benchmark/benchmark.h>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/SecurityManager.hpp>

#include <sstream>
#include <stdexcept>
#include <string>

#include "regfile/HBSRegFileParser.h"
#include "support/temp_dir.h"

namespace {

constexpr int kRegisters = 100000;

/// The register file, written at the first use and removed at the end.
const std::string& registerFile() {
    static const support::TempDir folder;
    static const std::string path = [] {
        std::ostringstream stream;
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
        return folder.write("registers.xml", stream.str());
    }();
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
