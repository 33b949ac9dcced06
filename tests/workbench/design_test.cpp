// What initiators see through channels and bridges: own designs, and the working group's where they
// are at hand.

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "support/support.h"
#include "workbench/files/JsonFile.h"
#include "workbench/ipxact/DesignMap.h"

namespace {

using namespace tq::ipxact;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kNamespace =
    " xmlns=\"http://www.accellera.org/XMLSchema/IPXACT/1685-2014\">";

std::string parameter(const std::string& id, const std::string& value) {
    return "<parameter parameterId='" + id + "'><name>" + id + "</name><value>" + value +
           "</value></parameter>";
}

/// An interface with a data port of the component's parameter PREFIX_width, steering bits as
/// PREFIX_steer says.
std::string interface(const std::string& name, const std::string& mode, const std::string& prefix) {
    const auto map = [](const std::string& logical, const std::string& physical) {
        return "<portMap><logicalPort><name>" + logical + "</name></logicalPort><physicalPort>" +
               "<name>" + physical + "</name></physicalPort></portMap>";
    };
    return "<busInterface><name>" + name + "</name><busType vendor='v' library='l' name='bus'" +
           " version='1'/><abstractionTypes><abstractionType><portMaps>" +
           map("WDATA", prefix + "_data") + "</portMaps></abstractionType></abstractionTypes>" +
           mode + "<bitsInLau>8</bitsInLau><bitSteering>" + prefix +
           "_steer</bitSteering></busInterface>";
}

struct Part {
    std::string name;
    std::string interfaces;
    std::string rest;
    std::string parameters;
    std::vector<std::string> prefixes; ///< of its interfaces
};

std::string componentText(const Part& part) {
    std::string ports, parameters = part.parameters;
    for (const std::string& prefix : part.prefixes) {
        ports += "<port><name>" + prefix + "_data</name><wire><direction>in</direction><vectors>" +
                 "<vector><left>" + prefix +
                 "_width - 1</left><right>0</right></vector></vectors>" + "</wire></port>";
        parameters += parameter(prefix + "_width", "32") + parameter(prefix + "_steer", "off");
    }
    return std::string("<component") + kNamespace + "<vendor>v</vendor><library>l</library><name>" +
           part.name + "</name><version>1</version><busInterfaces>" + part.interfaces +
           "</busInterfaces>" + part.rest + "<model><ports>" + ports +
           "</ports></model><parameters>" + parameters + "</parameters></component>";
}

const char* const kSpace =
    "<addressSpaces><addressSpace><name>space</name><range>2 ** 32</range><width>32</width>"
    "<segments><segment><name>part</name><addressOffset>'h1000</addressOffset>"
    "<range>'h1000</range></segment></segments><addressUnitBits>8</addressUnitBits>"
    "</addressSpace></addressSpaces>";
const char* const kInitiator =
    "<master><addressSpaceRef addressSpaceRef='space'><baseAddress>base</baseAddress>"
    "</addressSpaceRef></master>";

std::vector<Part> parts() {
    const std::string remap =
        "<mirroredSlave><baseAddresses><remapAddress>remap</remapAddress><range>range</range>"
        "</baseAddresses></mirroredSlave>";
    const auto bridge = [](const std::string& name, const std::string& mode,
                           const std::string& map) {
        return Part{name,
                    interface("S", mode, "s") + interface("M", kInitiator, "m"),
                    kSpace + map,
                    parameter("base", "0") + parameter("show", "0"),
                    {"s", "m"}};
    };
    const std::string shown = "<memoryMaps><memoryMap><name>map</name><subspaceMap masterRef='M'";
    return {
        {"cpu", interface("M", kInitiator, "m"), kSpace, parameter("base", "0"), {"m"}},
        {"ram",
         interface("S", "<slave><memoryMapRef memoryMapRef='map'/></slave>", "s"),
         "<memoryMaps><memoryMap><name>map</name><addressBlock><name>b</name><baseAddress>at"
         "</baseAddress><range>'h400</range><width>32</width></addressBlock></memoryMap>"
         "</memoryMaps>",
         parameter("at", "0"),
         {"s"}},
        {"bus",
         interface("MM", "<mirroredMaster/>", "mm") + interface("MS", remap, "ms"),
         "<channels><channel><name>c</name><busInterfaceRef><localName>MM</localName>"
         "</busInterfaceRef><busInterfaceRef><localName>MS</localName></busInterfaceRef></channel>"
         "</channels>",
         parameter("remap", "0") + parameter("range", "0"),
         {"mm", "ms"}},
        bridge("clear", "<slave><transparentBridge masterRef='M'/></slave>", ""),
        bridge("opaque", "<slave><memoryMapRef memoryMapRef='map'/></slave>",
               shown + "><name>s</name><baseAddress>show</baseAddress></subspaceMap></memoryMap>"
                       "</memoryMaps>"),
        bridge("window", "<slave><memoryMapRef memoryMapRef='map'/></slave>",
               shown + " segmentRef='part'><name>s</name><baseAddress>show</baseAddress>"
                       "</subspaceMap></memoryMap></memoryMaps>"),
    };
}

/// A chain such as "cpu base=4, bus, ram at='h1000": each is connected with the next, and gets its
/// parameters.
std::string designText(const std::string& chain) {
    std::string instances, connections, before;
    std::istringstream stream(chain);
    int number = 0;
    for (std::string link; std::getline(stream, link, ',');) {
        std::istringstream words(link);
        std::string name, values;
        words >> name;
        for (std::string word; words >> word;)
            values += "<configurableElementValue referenceId='" + word.substr(0, word.find('=')) +
                      "'>" + word.substr(word.find('=') + 1) + "</configurableElementValue>";
        const std::string instance = "i" + std::to_string(number++);
        instances += "<componentInstance><instanceName>" + instance +
                     "</instanceName><componentRef vendor='v' library='l' name='" + name +
                     "' version='1'><configurableElementValues>" + values +
                     "</configurableElementValues></componentRef></componentInstance>";
        const auto end = [](const std::string& of, const std::string& at) {
            return "<activeInterface componentRef='" + of + "' busRef='" + at + "'/>";
        };
        if (!before.empty())
            connections += "<interconnection><name>c</name>" + before +
                           end(instance, name == "bus" ? "MM" : "S") + "</interconnection>";
        before = end(instance, name == "bus" ? "MS" : "M");
    }
    return std::string("<design") + kNamespace +
           "<vendor>v</vendor><library>l</library><name>d</name><version>1</version>"
           "<componentInstances>" +
           instances + "</componentInstances><interconnections>" + connections +
           "</interconnections></design>";
}

struct Chain {
    const char* chain;
    std::vector<int> seen; ///< start and end of the block; empty where it isn't seen
};

class Chains : public testing::TestWithParam<Chain> {};

TEST_P(Chains, ShowTheBlockAtItsAddress) {
    const support::TempDir folder;
    for (const Part& part : parts())
        folder.write(part.name + ".xml", componentText(part));
    const std::string path = folder.write("d.xml", designText(GetParam().chain));
    tq::DiagnosticList findings;
    const Design design = readDesign(path, {}, findings.sink());
    const std::vector<SeenSpace> spaces = mapDesign(design, findings.sink());
    ASSERT_EQ(1U, spaces.size());
    EXPECT_EQ("i0/M", spaces[0].name);
    std::vector<int> seen;
    for (const SeenBlock& block : spaces[0].blocks)
        for (const Number& number : {block.start, block.end})
            seen.push_back(static_cast<int>(number.value_or(-1)));
    EXPECT_EQ(GetParam().seen, seen) << GetParam().chain;
    for (const tq::Diagnostic& finding : findings.all())
        ADD_FAILURE() << finding.text;
}

INSTANTIATE_TEST_SUITE_P(
    Designs, Chains,
    testing::Values(Chain{"cpu,ram", {0, 0x400}}, Chain{"cpu,ram at='h1000", {0x1000, 0x1400}},
                    Chain{"cpu base='h400,ram at='h1000", {0x1400, 0x1800}},
                    Chain{"cpu base=-0x400,ram at='h1000", {0xC00, 0x1000}},
                    Chain{"cpu,bus remap='h2000 range='h1000,ram", {0x2000, 0x2400}},
                    Chain{"cpu,bus remap='h2000 range='h200,ram", {0x2000, 0x2200}},
                    Chain{"cpu m_steer=on,ram at='h1000 s_width=8", {0x1000, 0x1400}},
                    Chain{"cpu,ram at='h100 s_width=8", {0x400, 0x1400}},
                    Chain{"cpu,bus ms_width=8 remap='h400,ram s_width=8", {0x1000, 0x2000}},
                    Chain{"cpu,clear base='h100,bus,ram at='h10", {0x110, 0x510}},
                    Chain{"cpu base=16,opaque show='h800 base='h100,ram", {0x910, 0xD10}},
                    Chain{"cpu,window show='h8000,ram at='h1200", {0x8200, 0x8600}},
                    Chain{"cpu,window show='h8000,ram at='hE00", {0x8000, 0x8200}},
                    Chain{"cpu,window show='h8000,ram", {}}, Chain{"cpu", {}}));

std::vector<std::string> findingsOf(const std::string& chain, const std::string& from,
                                    const std::string& to) {
    const support::TempDir folder;
    for (const Part& part : parts())
        folder.write(part.name + ".xml", componentText(part));
    std::string text = designText(chain);
    text.replace(text.find(from), from.size(), to);
    tq::DiagnosticList findings;
    const Design design = readDesign(folder.write("d.xml", text), {}, findings.sink());
    static_cast<void>(mapDesign(design, findings.sink()));
    std::vector<std::string> ids;
    for (const tq::Diagnostic& finding : findings.all())
        ids.push_back(finding.id);
    return ids;
}

TEST(Design, FindsWhatDoesntFit) {
    EXPECT_THAT(findingsOf("cpu,ram", "name='ram' version='1'", "name='ram' version='2'"),
                ElementsAre("missing-file"));
    EXPECT_THAT(findingsOf("cpu,ram", "componentRef='i1'", "componentRef='i7'"),
                ElementsAre("dangling-reference"));
    EXPECT_THAT(findingsOf("cpu,ram", "busRef='S'", "busRef='T'"),
                ElementsAre("dangling-reference"));
    EXPECT_THAT(findingsOf("cpu,cpu", "busRef='S'", "busRef='M'"),
                ElementsAre("interface-mismatch"));
    EXPECT_THAT(findingsOf("cpu base=-0x400,ram", "x", "x"), ElementsAre("beyond-space"));
}

TEST(Design, EndsWhereABridgeLeadsBackToItself) {
    const support::TempDir folder;
    for (const Part& part : parts())
        folder.write(part.name + ".xml", componentText(part));
    std::string text = designText("cpu,clear,clear");
    const std::string back = "<interconnection><name>b</name><activeInterface componentRef='i2' "
                             "busRef='M'/><activeInterface componentRef='i1' busRef='S'/>"
                             "</interconnection></interconnections>";
    text.replace(text.find("</interconnections>"), 19, back);
    tq::DiagnosticList findings;
    const Design design = readDesign(folder.write("d.xml", text), {}, findings.sink());
    EXPECT_THAT(mapDesign(design, findings.sink())[0].blocks, IsEmpty());
    ASSERT_EQ(1U, findings.count());
    EXPECT_EQ("loop", findings.all()[0].id);
}

/// The working group's designs, beside the checkout or where TQ_SHARED_DATA says.
TEST(Design, AgreesWithTheWorkingGroupsCalculation) {
    const char* const given = std::getenv("TQ_SHARED_DATA");
    const std::filesystem::path folder =
        std::filesystem::path(given != nullptr ? given : TQ_SOURCE_DIR "/../shared/data") /
        "ipxact/leon2/Addressing";
    if (!std::filesystem::exists(folder / "expected.json"))
        GTEST_SKIP() << "there is no " << folder;
    const tq::JsonFile expected = tq::JsonFile::read((folder / "expected.json").string());
    int compared = 0;
    for (const tq::JsonNode::Member& member : expected.root().members) {
        if (member.value.items.size() != 2)
            continue;
        const Design design =
            readDesign((folder / (member.name + ".xml")).string(), {folder.string()}, {});
        const std::vector<SeenSpace> spaces = mapDesign(design, {});
        ASSERT_EQ(1U, spaces.size()) << member.name;
        ASSERT_EQ(1U, spaces[0].blocks.size()) << member.name;
        EXPECT_EQ(member.value.items[0].text, decimalText(*spaces[0].blocks[0].start));
        EXPECT_EQ(member.value.items[1].text, decimalText(*spaces[0].blocks[0].end));
        ++compared;
    }
    EXPECT_LT(0, compared);
}

} // namespace
