// Reading a component of 100,000 registers (59 MB), beside a bare DOM of the same bytes. The reader
// should be three times ahead of that.

#include <benchmark/benchmark.h>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <sstream>
#include <stdexcept>
#include <string>

#include "support/temp_dir.h"
#include "workbench/ipxact/RegisterDescription.h"

namespace {

constexpr int kRegisters = 100'000;

std::string fieldText(int offset) {
    return "<ipxact:field><ipxact:name>PART" + std::to_string(offset) +
           "</ipxact:name><ipxact:bitOffset>" + std::to_string(offset) +
           "</ipxact:bitOffset><ipxact:resets><ipxact:reset><ipxact:value>'h5"
           "</ipxact:value></ipxact:reset></ipxact:resets><ipxact:bitWidth>8</ipxact:bitWidth>"
           "</ipxact:field>\n";
}

/// The file, written at the first use and removed at the end.
const std::string& componentFile() {
    static const support::TempDir folder;
    static const std::string path = [] {
        std::ostringstream stream;
        stream << "<ipxact:component xmlns:ipxact=\"http://www.accellera.org/XMLSchema/IPXACT/"
                  "1685-2014\"><ipxact:memoryMaps><ipxact:memoryMap><ipxact:name>map"
                  "</ipxact:name><ipxact:addressBlock><ipxact:name>block</ipxact:name>"
                  "<ipxact:baseAddress>'hF000_0000</ipxact:baseAddress><ipxact:range>'h10_0000"
                  "</ipxact:range><ipxact:width>32</ipxact:width>\n";
        for (int i = 0; i < kRegisters; ++i)
            stream << "<ipxact:register>\n<ipxact:name>REG_" << i
                   << "</ipxact:name>\n<ipxact:addressOffset>'h" << std::hex << 4 * i << std::dec
                   << "</ipxact:addressOffset>\n<ipxact:size>32</ipxact:size>\n"
                   << fieldText(0) << fieldText(16) << "</ipxact:register>\n";
        stream << "</ipxact:addressBlock></ipxact:memoryMap></ipxact:memoryMaps>"
                  "</ipxact:component>\n";
        return folder.write("component.xml", stream.str());
    }();
    return path;
}

void bareDom(benchmark::State& state) {
    xercesc::XMLPlatformUtils::Initialize();
    for (auto _ : state) {
        xercesc::XercesDOMParser parser;
        parser.parse(componentFile().c_str());
        benchmark::DoNotOptimize(parser.getDocument()->getDocumentElement());
    }
}
BENCHMARK(bareDom)->Unit(benchmark::kMillisecond)->Iterations(3);

void readComponent(benchmark::State& state) {
    for (auto _ : state) {
        const auto component = tq::ipxact::readDescription(componentFile(), {}, {});
        if (tq::ipxact::summaryOf(component).registers != kRegisters)
            throw std::runtime_error("the file wasn't read whole");
    }
}
BENCHMARK(readComponent)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace
