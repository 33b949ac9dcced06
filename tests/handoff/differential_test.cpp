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

} // namespace
