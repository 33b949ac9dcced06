// Job files of hbs handoff: any text is refused or gives a document and a report on it.

#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "fuzz/Expect.h"
#include "fuzz/MemoryFile.h"
#include "fuzz/ProgramRun.h"
#include "support/temp_dir.h"

namespace {

/// What a job reaches as "connectivity": "900", since the job lies among the open descriptors.
constexpr int kConnectivity = 900;
constexpr std::string_view kMetadata = R"({"metadata": {
    "slaves": [{"s": {"SDKNAME": "S", "ENPARAM": "E", "METAPARAM": "M", "BASE_ADDR": "0x0",
      "PORTS": [{"NAME": "clk", "DIR": "I", "SIG_IS": "CLK", "CONNECTIONS":
                 [{"INSTANCE": "core_top", "PORT": "c"}]}],
      "PARAMETERS": {"P": "A_B", "F": "A_F_FREQMHZ"}}}],
    "masters": [{"core_top": {"SDKNAME": "T", "excluded_slaves": ["x"],
      "PORTS": [{"NAME": "c", "DIR": "O", "SIG_IS": "CLK"}]}}], "external_addressing": []}})";

void placeMetadata() {
    static const fuzz::MemoryFile metadata;
    metadata.fill(reinterpret_cast<const std::uint8_t*>(kMetadata.data()), kMetadata.size());
    if (dup2(metadata.descriptor(), kConnectivity) < 0)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const support::TempDir folder;
    static const fuzz::MemoryFile job;
    static const bool isPlaced = (placeMetadata(), true);
    (void)isPlaced;
    job.fill(data, size);
    const std::string json = fuzz::runProgram(
        {"handoff", job.path(), "-o", folder.file("out.hwh"), "--no-time-stamp", "--json"});
    if (!json.empty()) // refused
        fuzz::expectJson(json);
    return 0;
}
