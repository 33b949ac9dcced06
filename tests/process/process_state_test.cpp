// What a call may leave behind in the process: nothing.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cfenv>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "HEXError.h"
#include "HPAParamMgr.h"
#include "HUTFile.h"
#include "addressing/HBSAddrParseUtil.h"
#include "addressing/HBSAddressing.h"
#include "blockmodel/HABM.h"
#include "cdo/HBSCdoCommandParse.h"
#include "cdo/HBSCdoSequenceMgr.h"
#include "cdo/HBSCdoSequenceWrapper.h"
#include "clocking/trees46.h"
#include "handoff/HBSGenerateService.h"
#include "hardblock/HBSHardBlockDataMgr.h"
#include "regfile/HBSRegFileParser.h"
#include "regfile/HBSRegistersMap.h"
#include "support/support.h"

namespace {

namespace fs = std::filesystem;

const fs::path kDevice = fs::path(TQ_SOURCE_DIR) / "examples/device";

/// Names of properties of the process, with a text of their state.
using State = std::map<std::string, std::string>;

void addSignals(State& state) {
    for (int signal = 1; signal < NSIG; ++signal) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) == 0)
            state["signal " + std::to_string(signal)] =
                std::to_string(reinterpret_cast<std::uintptr_t>(action.sa_handler)) + " flags " +
                std::to_string(action.sa_flags);
    }
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    for (int signal = 1; signal < NSIG; ++signal)
        state["blocked signals"] += sigismember(&blocked, signal) == 1 ? '1' : '0';
}

void addDescriptors(State& state) {
    std::vector<std::string> open;
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd"))
        open.push_back(entry.path().filename());
    for (const std::string& descriptor : open) {
        const int number = std::stoi(descriptor);
        const int flags = fcntl(number, F_GETFL); // -1 for the one of the listing
        if (flags >= 0)
            state["descriptor " + descriptor] =
                fs::read_symlink("/proc/self/fd/" + descriptor).string() + " flags " +
                std::to_string(flags) + " " + std::to_string(fcntl(number, F_GETFD));
    }
}

void addStream(State& state, const std::string& name, const std::ios& stream) {
    state[name] = std::to_string(stream.flags()) + " " + std::to_string(stream.precision()) + " " +
                  std::to_string(stream.width()) + " " + std::to_string(stream.fill()) + " " +
                  std::to_string(stream.rdstate()) + " " + std::to_string(stream.exceptions()) +
                  " " + stream.getloc().name() + " " +
                  std::to_string(reinterpret_cast<std::uintptr_t>(stream.rdbuf()));
}

State readState() {
    State state;
    addSignals(state);
    addDescriptors(state);
    addStream(state, "cin", std::cin);
    addStream(state, "cout", std::cout);
    addStream(state, "cerr", std::cerr);
    addStream(state, "clog", std::clog);
    state["C locale"] = std::setlocale(LC_ALL, nullptr);
    state["C++ locale"] = std::locale().name();
    state["rounding"] = std::to_string(std::fegetround());
    const mode_t mask = umask(0);
    umask(mask);
    state["umask"] = std::to_string(mask);
    state["working directory"] = fs::current_path();
    for (char** entry = environ; *entry != nullptr; ++entry)
        state["environment " + std::string(*entry)] = "set";
    return state;
}

std::string addressing(const support::TempDir& area) {
    const fs::path blocks = area.path() / "mirrel/hardblocks";
    fs::copy(kDevice / "mirrel", area.path() / "mirrel", fs::copy_options::recursive);
    for (const char* name :
         {"sorrel_cpu", "sorrel_ddr", "sorrel_uart", "sorrel_eth", "sorrel_noc", "sorrel_ps"})
        if (HBSAddrParseUtil::buildHardblockDefinition(HUTFile(blocks.string()), name, true) ==
            nullptr)
            return "no definition";
    const HABMBlock* const definition =
        HBSAddressing::createSubsystemDefinition("kestrom:hardblock:sorrel_ps:1.0", "design");
    if (definition == nullptr)
        return "no subsystem";
    const auto instance =
        HBSAddressing::createSubsystemInstance(*definition, *HABMBlock::createTopBlock("config"));
    rapidjson::Document report;
    HBSAddressing::generateSurfaceLevelAddressing(*instance, report);
    return report.IsObject() && !report.ObjectEmpty() ? "" : "no report";
}

std::string clocking(const support::TempDir&) {
    for (const bool sixPlls : {false, true})
        for (unsigned seed = 0; seed < 10; ++seed)
            trees46::build(trees46::generate(seed, sixPlls, 8, trees46::Kind::Ordinary))
                ->runSolution();
    return "";
}

std::string handoff(const support::TempDir& area) {
    std::map<std::string, std::string> design{{"SORREL_CPU_FREQMHZ", "1299.987"}};
    std::map<std::string, std::string> system{{"family", "mirrel"}, {"ps_core_name", "sorrel_ps"}};
    const std::string connectivity = (kDevice / "connectivity.json").string();
    HBSGenerateService::generateHWH(design, system, connectivity, area.file("out.hwh"));
    try {
        HBSGenerateService::generateHWH(design, system, connectivity, area.file("none/out.hwh"));
    } catch (const HEXError&) {
        return "";
    }
    return "wrote into a folder that isn't there";
}

std::string hardblocks(const support::TempDir&) {
    HBSHardBlockDataMgr& manager = *HBSHardBlockDataMgr::getHardBlockDataMgr();
    return manager.createHardBlocks((kDevice / "sce/hardblocks/sorrel.json").string()) &&
                   manager.getHardBlockByName("sorrel_ps") != nullptr
               ? ""
               : "no metadata";
}

std::string sequences(const support::TempDir&) {
    HBSCdoSequenceMgr& manager = HBSCdoSequenceMgr::getGlobal();
    HBSCdoSequenceWrapper* const wrapper = manager.createCdoSequenceWrapper("boot", nullptr);
    wrapper->addMarker("power", HBSCdoSequenceWrapper::kMarkerOpens);
    wrapper->addMarker("power", HBSCdoSequenceWrapper::kMarkerCloses);
    manager.deleteCdoSequenceWrapper("boot");
    return HBSCdoCommandParse::parseValue("0x3") == 3 ? "" : "no value";
}

std::string registers(const support::TempDir& area) {
    const std::string broken = area.write("broken.xml", "<a><b>");
    static_cast<void>(hbs::HBSRegFileParser::parseFile(broken));
    return hbs::HBSRegFileParser::parseFile((kDevice / "registers.xml").string()) != nullptr
               ? ""
               : "no registers";
}

std::string scripting(const support::TempDir&) {
    auto solver = trees46::build(trees46::generate(0, false, 8, trees46::Kind::Ordinary));
    solver.reset(); // tells both tables of the deletion of its objects
    return "";
}

struct Island {
    const char* name;
    std::function<std::string(const support::TempDir&)> walk; ///< says what went wrong
};

const std::vector<Island> kIslands = {{"clocking", clocking},  {"addressing", addressing},
                                      {"handoff", handoff},    {"hardblock", hardblocks},
                                      {"cdo", sequences},      {"regfile", registers},
                                      {"scripting", scripting}};

TEST(ProcessState, IsAfterACallAsBefore) {
    const support::TempDir area;
    // Read at each call by the library; not a change of the library's.
    setenv("TQ_DATA_PATH", area.path().c_str(), 1);
    HPAParamMgr::getParamMgr()->setValue("general.maxThreads", "2");
    // Other than what Tcl sets.
    std::setlocale(LC_ALL, "C.UTF-8");
    std::signal(SIGPIPE, SIG_DFL);
    for (const Island& island : kIslands) {
        const State before = readState();
        EXPECT_EQ("", island.walk(area)) << island.name;
        const State after = readState();
        for (const auto& [name, value] : before)
            EXPECT_TRUE(after.count(name) != 0 && after.at(name) == value)
                << island.name << " changed " << name << ": " << value << " to "
                << (after.count(name) != 0 ? after.at(name) : "nothing");
        for (const auto& [name, value] : after)
            EXPECT_TRUE(before.count(name) != 0) << island.name << " made " << name << ' ' << value;
    }
    std::setlocale(LC_ALL, "C");
    HPAParamMgr::getParamMgr()->unsetValue("general.maxThreads");
    unsetenv("TQ_DATA_PATH");
}

} // namespace
