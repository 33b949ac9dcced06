// The program's words while memory runs out.

#include <gtest/gtest.h>

#include <array>
#include <iostream>
#include <stdexcept>
#include <streambuf>

#include "HUTFile.h"
#include "addressing/HBSAddrParseUtil.h"
#include "blockmodel/HABM.h"
#include "host/Program.h"
#include "memory/trial.h"
#include "support/support.h"

namespace {

/// Takes the place of a stream's buffer; itself it allocates nothing.
class FixedBuffer : public std::streambuf {
public:
    explicit FixedBuffer(std::ostream& stream) : m_stream(stream), m_before(stream.rdbuf(this)) {
        setp(m_text.data(), m_text.data() + m_text.size());
    }
    ~FixedBuffer() override { m_stream.rdbuf(m_before); }
    FixedBuffer(const FixedBuffer&) = delete;
    FixedBuffer& operator=(const FixedBuffer&) = delete;

    [[nodiscard]] std::string text() const { return {pbase(), pptr()}; }

private:
    std::ostream& m_stream;
    std::streambuf* m_before;
    std::array<char, 1 << 17> m_text;
};

/// Runs the program. A failing status needs a sentence that goes with it.
std::optional<std::string> hbs(const memory::Attempt& attempt, std::vector<std::string> words) {
    words.insert(words.begin(), "hbs");
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    const FixedBuffer output(std::cout);
    const FixedBuffer errors(std::cerr);
    const int status = attempt(
        [&] { return host::runProgram(static_cast<int>(arguments.size()), arguments.data()); });
    if (status == host::kSuccess)
        return output.text() + errors.text();
    if (errors.text().empty())
        throw std::logic_error("no word of the failure");
    return std::nullopt;
}

constexpr const char* kDevice = TQ_SOURCE_DIR "/examples/device/";

struct Word {
    const char* name;
    std::vector<std::string> words;
    memory::Trial::Keeps keeps = memory::Trial::Keeps::Results;
};

class Program : public testing::TestWithParam<Word> {};

TEST_P(Program, DoesItsWorkOrSaysThatItCannot) {
    const support::TempDir folder;
    folder.write("tree.json", R"({"plls": 1, "reference_mhz": 33.333, "domains":
        [{"name": "LOW", "plls": [{"name": "PLL0", "max_mhz": 2000}]}], "peripherals":
        [{"name": "UART", "domain": "LOW", "mhz": 100}]})");
    folder.write("mirrel/hardblocks/ps/data/addrsegments.txt",
                 "addrsegment=low;addrspace=view;interfaces=M_AXI;offset=0x0;size=2G\nrow\n");
    folder.write("mirrel/hardblocks/ps/data/addrblocks.txt", "addrblock=regs;offset=0x0;size=4K\n");
    folder.write("mirrel/hardblocks/ps/data/interfaces.txt", "interface=M_AXI;mode=master\n");
    const HUTFile hardblocks(folder.file("mirrel/hardblocks"));
    ASSERT_NE(nullptr, HBSAddrParseUtil::buildHardblockDefinition(hardblocks, "ps", true));
    folder.write("boot.cdo",
                 "create boot\nopen boot power\nvalue 0x3\nclose boot power\ndelete boot\n");
    std::vector<std::string> words = GetParam().words;
    for (std::string& word : words) {
        if (word.starts_with("TMP/"))
            word = folder.file(word.substr(4));
        if (word.starts_with("DEVICE/"))
            word = kDevice + word.substr(7);
    }
    memory::run({.operation = [&](const memory::Attempt& attempt) { return hbs(attempt, words); },
                 .keeps = GetParam().keeps});
}

INSTANTIATE_TEST_SUITE_P(
    , Program,
    testing::Values(Word{"clocks", {"clocks", "TMP/tree.json", "--svg", "/dev/null"}},
                    Word{"clocks_json", {"clocks", "TMP/tree.json", "--json"}},
                    Word{"define", {"define", "TMP/mirrel/hardblocks", "ps"}},
                    Word{"hardblock",
                         {"hardblock", "DEVICE/sce/hardblocks/sorrel.json", "sorrel_ps", "--json"},
                         memory::Trial::Keeps::PartsToo},
                    Word{"addressing", {"addressing", "tq.com:hb:ps:1.0", "--data", "TMP/."}},
                    Word{"cdo", {"cdo", "TMP/boot.cdo"}},
                    Word{"registers",
                         {"registers", "DEVICE/registers.xml", "--json"},
                         memory::Trial::Keeps::PartsToo},
                    Word{"help", {"--help"}}),
    [](const auto& param) { return param.param.name; });

} // namespace
