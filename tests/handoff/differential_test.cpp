// Handoffs of random jobs against those made the plain way, byte for byte.

#include <gtest/gtest.h>

#include "HEXError.h"
#include "HPAParamMgr.h"
#include "handoff/HBSGenerateService.h"
#include "handoff/HBSHandoff.h"
#include "handoff/job_generator.h"
#include "handoff/plain_handoff.h"

namespace {

using namespace handoff_support;

/// Tool parameters, unset at the end.
struct ToolParameters {
    explicit ToolParameters(bool split) {
        HPAParamMgr::getParamMgr()->setValue("project.NoTimeStamp", "true");
        HPAParamMgr::getParamMgr()->setValue("project.allowPSSubCoreSplit",
                                             split ? "true" : "false");
    }
    ~ToolParameters() {
        HPAParamMgr::getParamMgr()->unsetValue("project.NoTimeStamp");
        HPAParamMgr::getParamMgr()->unsetValue("project.allowPSSubCoreSplit");
    }
    ToolParameters(const ToolParameters&) = delete;
    ToolParameters& operator=(const ToolParameters&) = delete;
};

/// The document, or what went wrong.
template <class Write>
std::string outcomeOf(const std::string& output, Write&& write) {
    try {
        write(output);
        return support::readFile(output);
    } catch (const HEXError& error) {
        return error.what();
    }
}

void expectEqual(const GeneratedJob& job, const std::string& meaning) {
    const ToolParameters parameters(job.splitByCells);
    const support::TempDir folder;
    const std::string input = folder.write("in.json", job.connectivity);
    Texts design = job.design;
    Texts system = job.system;
    const std::string written = outcomeOf(folder.file("out"), [&](const std::string& output) {
        HBSGenerateService::generateHWH(design, system, input, output);
    });
    const std::string checked = outcomeOf(folder.file("checked"), [&](const std::string& output) {
        HBSHandoff(job.design, job.system, input, [&](const tq::Diagnostic& finding) {
            EXPECT_NE(0U, finding.place.line) << finding.text;
        }).writeDocument(output);
    });
    EXPECT_TRUE(written == checked) << meaning << '\n' << job.connectivity;
    const std::string plain = outcomeOf(folder.file("plain"), [&](const std::string& output) {
        writePlainHandoff(job.design, job.system, input, job.splitByCells, output);
    });
    EXPECT_TRUE(written == plain) << meaning << '\n'
                                  << job.connectivity << '\n'
                                  << written << '\n'
                                  << plain;
    EXPECT_EQ(job.design, design) << meaning;
}

TEST(Differential, RandomJobsGiveTheDocumentsMadeThePlainWay) {
    for (unsigned seed = 0; seed < 150; ++seed)
        expectEqual(generateJob(seed), "seed " + std::to_string(seed));
}

/// Lists long enough for every table to grow, with names in an order that isn't theirs.
TEST(Differential, LongListsGiveTheDocumentMadeThePlainWay) {
    constexpr int kSlaves = 400;
    GeneratedJob job;
    job.system = {{"ps_core_name", "core"}};
    job.design["D"] = "{";
    std::string slaves;
    std::string masters;
    for (int i = 0; i < kSlaves; ++i) {
        const std::string number = std::to_string(i * 7 % kSlaves);
        const std::string name = (i % 3 == 0 ? "a_long_name_" : "") + number;
        job.design["D"] += "K" + number + " " + std::to_string(i) + " ";
        slaves += (i == 0 ? "\"" : ",\"") + name + R"(": {"SDKNAME": "s)" + number +
                  R"(", "PARAMETERS": {"P)" + number + R"(": "D_K)" + number +
                  R"("}, "PORTS": [{"NAME": "p", "CONNECTIONS": [{"INSTANCE": "core_top",
                  "PORT": ")" +
                  std::to_string(i % 150) + R"("}, {"INSTANCE": "s)" + std::to_string(i) +
                  R"(", "PORT": "p"}]}]})";
        masters += (i == 0 ? "\"m" : ",\"m") + number + R"(": {"SDKNAME": "m)" + number +
                   R"(", "excluded_slaves": ["s)" + std::to_string(i) + R"(", "a_long_name_)" +
                   std::to_string(i / 2) + "\"]}";
    }
    job.connectivity = connectivity(slaves, masters);
    expectEqual(job, "long lists");
}

/// More than 100,000 ranges, which the library renders once for all masters, against text put
/// together one by one.
TEST(Differential, AHundredThousandRangesAreThoseOfTheirMasters) {
    constexpr int kSlaves = 317;
    constexpr int kMasters = 320;
    const auto quoted = [](const char* key, const std::string& value) {
        return std::string(" ") + key + "=\"" + value + "\"";
    };
    const auto numbered = [](char name, int number) {
        return name + std::to_string(1000 + number);
    };
    std::string slaves;
    std::string masters;
    std::string modules;
    const auto addModule = [&](const std::string& name, const std::string& memoryMap) {
        modules += "\t\t<MODULE" + quoted("INSTANCE", name) + quoted("FULLNAME", name) +
                   R"( HWVERSION="11.0" IPTYPE="" MODTYPE="" MODCLASS="" IS_PL="FALSE")"
                   R"( SLR_NUMBER="" MULTISOCKETSMP="" IS_ENABLE="1">)"
                   "\n\t\t\t<PARAMETERS />\n\t\t\t<PORTS />\n" +
                   memoryMap + "\t\t</MODULE>\n";
    };
    for (int m = 0; m < kMasters; ++m) {
        const std::string excluded = numbered('s', m % kSlaves);
        masters += (m == 0 ? "\"" : ",\"") + numbered('m', m) + R"(": {"SDKNAME": ")" +
                   numbered('m', m) + R"(", "excluded_slaves": [")" + excluded + "\"]}";
        std::string ranges = "\t\t\t<MEMORYMAP>\n";
        std::string peripherals = "\t\t\t<PERIPHERALS>\n";
        for (int s = 0; s < kSlaves; ++s) {
            const std::string slave = numbered('s', s);
            if (slave == excluded)
                continue;
            ranges +=
                "\t\t\t\t<MEMRANGE IS_DATA=\"\" BASENAME=\"C_BASEADDR\"" +
                quoted("BASEVALUE", std::to_string(s * 16)) + quoted("HIGHNAME", "C_HIGHADDR") +
                quoted("HIGHVALUE", std::to_string(s * 16 + 15)) + quoted("INSTANCE", slave) +
                quoted("IS_INSTRUCTION", "") + quoted("MEMTYPE", "") + quoted("ACCESSTYPE", "") +
                quoted("ATRUSTZONE", "") + quoted("ADDRESSBLOCK", "") + " />\n";
            peripherals += "\t\t\t\t<PERIPHERAL" + quoted("INSTANCE", slave) + " />\n";
        }
        addModule(numbered('m', m),
                  ranges + "\t\t\t</MEMORYMAP>\n" + peripherals + "\t\t\t</PERIPHERALS>\n");
    }
    for (int s = 0; s < kSlaves; ++s) {
        slaves += (s == 0 ? "\"" : ",\"") + numbered('s', s) + R"(": {"SDKNAME": ")" +
                  numbered('s', s) + R"(", "BASE_ADDR": ")" + std::to_string(s * 16) +
                  R"(", "HIGH_ADDR": ")" + std::to_string(s * 16 + 15) + "\"}";
        addModule(numbered('s', s), "");
    }
    const ToolParameters parameters(false);
    const support::TempDir folder;
    Texts design;
    Texts system;
    HBSGenerateService::generateHWH(
        design, system, folder.write("in.json", connectivity(slaves, masters)), folder.file("out"));
    const std::string written = support::readFile(folder.file("out"));
    const std::size_t begin = written.find("\t<MODULES>\n");
    EXPECT_TRUE(written.substr(begin) ==
                "\t<MODULES>\n" + modules + "\t</MODULES>\n</LOMSYSTEM>\n");
}

} // namespace
