// The connectivity reader: what goes where, what comes twice, what isn't there, and hostile files.

#include <gmock/gmock.h>

#include <optional>

#include "HEXError.h"
#include "HPAParamMgr.h"
#include "handoff/HBSJsonReader.h"
#include "handoff/handoff_support.h"

namespace {

using handoff_support::connectivity;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

struct Tables {
    HWHInstanceTable instances;
    HWHExcludedSlavesTable excluded;
    HWHExternalAddressingTable external;
    HWHPortTable ports;
    HWHParameterTable parameters;
    HWHApertureTable apertures;
    HWHInterfaceEnableTable enables;
    support::TempDir folder;

    /// By the second form where `system` is given.
    bool read(const std::string& content, HWHTextMap* system = nullptr) {
        const std::string file = folder.write("f", content);
        HBSJsonReader reader;
        return system == nullptr
                   ? reader.parseconnectivityjson(file, instances, excluded, external, true, ports,
                                                  parameters, apertures, enables)
                   : reader.parseconnectivityjson(file, instances, excluded, external, true, ports,
                                                  parameters, apertures, enables, *system);
    }
    bool empty() const {
        return instances.empty() && excluded.empty() && external.empty() && ports.empty() &&
               parameters.empty() && apertures.empty() && enables.empty();
    }
};

TEST(Reader, PutsEveryMemberIntoItsTable) {
    Tables t;
    EXPECT_TRUE(t.read(R"({"metadata": {
        "slaves": [{"s": {"SDKNAME": "S", "excluded_slaves": ["x"], "isMasterOrSlave": "x",
          "PARAMETERS": {"P": "1"}, "PORTS": [{"NAME": "a", "DIR": "I", "SIG_IS": "CLK",
          "IRQID": "3", "WIDTH": "4", "CONNECTIONS": [{"INSTANCE": "m", "PORT": "b"}]}]}}],
        "masters": [{"m": {"SDKNAME": "M", "excluded_slaves": ["s", "t"],
          "EXCLUDED_INTERFACES": [{"i": {"EN_PARAM": "E", "APERTURE": ["0", "1"]}, "j": {}}]}}],
        "external_addressing": [{"e": {"ENPARAM": "E", "VLNV": "v", "MODE": "o", "X": "y",
          "ADDRESS_SPACE": [{"sp": {"k": "v"}}]}}]}})"));
    EXPECT_EQ((HWHTextMap{{"SDKNAME", "S"}, {"excluded_slaves", ""}, {"isMasterOrSlave", "slave"}}),
              t.instances["s"]);
    EXPECT_EQ("master", t.instances["m"]["isMasterOrSlave"]);
    const HWHPortRecord& port = t.ports["S"]["a"];
    EXPECT_EQ("a I CLK 3", port.NAME + " " + port.DIR + " " + port.SIG_IS + " " + port.IRQID);
    EXPECT_THAT(port.CONNECTIONS, ElementsAre(Pair("m", "b")));
    EXPECT_THAT(t.parameters["S"], ElementsAre(Pair("P", "1")));
    EXPECT_THAT(t.excluded, ElementsAre(Pair("M", ElementsAre("s", "t"))));
    EXPECT_THAT(t.apertures["M"], ElementsAre(Pair("i", ElementsAre("0", "1"))));
    EXPECT_THAT(t.enables, ElementsAre(Pair(Pair("m", "i"), "E")));
    EXPECT_EQ("E v o",
              t.external["e"].ENPARAM + " " + t.external["e"].VLNV + " " + t.external["e"].MODE);
    EXPECT_EQ("v", t.external["e"].ADDRESS_SPACE["sp"]["k"]);
}

TEST(Reader, LetsTheLaterOfTwoStandAndGathersLists) {
    Tables t;
    EXPECT_TRUE(t.read(connectivity(
        R"("s": {"SDKNAME": "old", "PORTS": [{"NAME": "gone"}], "ONLY": "x"},
           "s": {"SDKNAME": "x", "SDKNAME": "S", "PARAMETERS": {"P": "1", "P": "2"},
             "PORTS": [{"NAME": "a", "DIR": "I"}, {"NAME": "a", "CONNECTIONS":
               [{"INSTANCE": "m", "PORT": "p"}, {"INSTANCE": "m", "PORT": "q"}],
               "CONNECTIONS": [{"INSTANCE": "n", "PORT": "r"}]}],
             "PORTS": [{"NAME": "b"}], "PARAMETERS": {"Q": "3"}})",
        R"("k": {"SDKNAME": "old", "excluded_slaves": ["first"],
             "EXCLUDED_INTERFACES": [{"i": {"APERTURE": ["0"]}}]},
           "m": {"SDKNAME": "old", "excluded_slaves": ["a"], "excluded_slaves": ["b"]})")));
    EXPECT_THAT(t.instances["s"],
                ElementsAre(Pair("SDKNAME", "S"), Pair("isMasterOrSlave", "slave")));
    EXPECT_THAT(t.parameters["S"], ElementsAre(Pair("P", "2"), Pair("Q", "3")));
    EXPECT_EQ("", t.ports["S"]["a"].DIR);
    EXPECT_THAT(t.ports["S"]["a"].CONNECTIONS, ElementsAre(Pair("m", "q"), Pair("n", "r")));
    EXPECT_EQ(1U, t.ports["S"].count("b"));
    EXPECT_THAT(t.excluded["old"], ElementsAre("a", "b"));
    EXPECT_THAT(t.apertures["old"], IsEmpty());
    // The master comes after the slave of that name and takes its place.
    EXPECT_THAT(t.ports["old"], IsEmpty());
}

TEST(Reader, ReadsWrongTypesAsEmptyOrMissing) {
    Tables t;
    EXPECT_TRUE(t.read(R"({"metadata": {"slaves": [null, 1, {"n": 5, "s": {"SDKNAME": 12,
        "A": null, "B": ["x"], "PARAMETERS": ["x"], "PARAMETERS": {"P": 1.5}, "PORTS": {"x": "y"},
        "PORTS": [5, {"NAME": "a", "DIR": 1, "CONNECTIONS": "x"}, {"CONNECTIONS": [1, {}]}]}}],
        "masters": [{"m": {"SDKNAME": "M", "excluded_slaves": [1, "s", {}],
          "EXCLUDED_INTERFACES": [1, {"i": {"EN_PARAM": 1, "APERTURE": 2}, "j": 3}]}}],
        "external_addressing": [{"e": {"ENPARAM": [], "ADDRESS_SPACE": [{"s": 1}, 2]}}]}})"));
    EXPECT_THAT(t.instances["s"], ElementsAre(Pair("A", ""), Pair("B", ""), Pair("SDKNAME", ""),
                                              Pair("isMasterOrSlave", "slave")));
    EXPECT_EQ(0U, t.instances.count("n"));
    EXPECT_THAT(t.parameters[""], ElementsAre(Pair("P", "")));
    EXPECT_EQ(2U, t.ports[""].size());
    EXPECT_THAT(t.ports[""][""].CONNECTIONS, ElementsAre(Pair("", "")));
    EXPECT_THAT(t.excluded["M"], ElementsAre("s"));
    EXPECT_THAT(t.apertures["M"], ElementsAre(Pair("i", IsEmpty())));
    EXPECT_THAT(t.external["e"].ADDRESS_SPACE, IsEmpty());
}

TEST(Reader, SaysFalseForMissingSectionsAndKeepsWhatCameBefore) {
    for (const char* content : {"{}", "[]", "7", R"({"metadata": 5, "metadata": {"slaves": []}})",
                                R"({"metadata": {"masters": [{"m": {}}]}})",
                                R"({"metadata": {"slaves": "x", "masters": [{"m": {}}]}})"}) {
        Tables t;
        EXPECT_FALSE(t.read(content)) << content;
        EXPECT_TRUE(t.empty()) << content;
    }
    Tables t;
    EXPECT_FALSE(t.read(R"({"metadata": {"slaves": [{"s": {"SDKNAME": "S"}}]}})"));
    EXPECT_EQ(1U, t.instances.size() * t.ports.count("S") * t.parameters.count("S"));
}

TEST(Reader, ChoosesTheCellWhereMetadataIsSplit) {
    const std::string content =
        R"({"metadata": {"slaves": [{"whole": {}}], "masters": [],
            "a_b": {"slaves": [{"cell": {}}], "masters": []}}})";
    struct {
        HWHTextMap system;
        std::string instance; ///< that is read; empty for a result of false
        HWHTextMap gained;
    } cases[] = {
        {{{"cell_name", "top_a_b"}, {"device", "qmzt4402"}, {"ps_core_name", "tovak"}}, "cell", {}},
        {{{"cell_name", "top"}, {"device", "qmzt4401"}, {"ps_core_name", "tovak"}}, "", {}},
        {{{"device", "qmzt4403"}, {"ps_core_name", "tovak"}}, "whole", {}},
        {{{"ps_core_name", "tovak"}}, "whole", {{"device", ""}}},
        {{}, "whole", {{"ps_core_name", ""}}}};
    for (auto& [system, instance, gained] : cases) {
        Tables t;
        gained.insert(system.begin(), system.end());
        EXPECT_EQ(!instance.empty(), t.read(content, &system));
        EXPECT_EQ(instance, t.empty() ? "" : t.instances.begin()->first);
        EXPECT_EQ(gained, system);
    }
}

TEST(Reader, SendsItsEntryAlwaysAndItsExitOnlyAtTheEnd) {
    const support::CapturedMessages messages;
    Tables t;
    HWHTextMap system;
    (void)t.read(R"({"metadata": {"slaves": [], "masters": [], "external_addressing": []}})");
    (void)t.read(connectivity(""), &system);
    EXPECT_THROW((void)t.read("{"), HEXError);
    const std::string file = t.folder.file("f");
    EXPECT_THAT(
        messages.lines(),
        ElementsAre("\t\t\t HBSJsonReader::parseconnectivityjson- tmpFile: %s Enter\n|" + file,
                    "\t\t HBSJsonReader::parseconnectivityjson- Exit\n",
                    "\t\t HBSJsonReader::parseconnectivityjson- isAddressing: %d fileName: %s "
                    "Enter\n|1|" +
                        file,
                    "\t\t\t HBSJsonReader::parseconnectivityjson- tmpFile: %s Enter\n|" + file));
    EXPECT_EQ(1, messages.all()[0].count);
    EXPECT_EQ(0x1000003U, messages.all()[0].mask);
}

TEST(Reader, RaisesForWhatIsNoJsonAndTouchesNothing) {
    for (const std::string& content :
         {std::string(), std::string("{\"metadata\": {"), std::string("{} x"),
          std::string("{}\0{}", 5), std::string(100000, '['),
          support::gzip(std::string(1000, ' ')).substr(0, 25)}) {
        Tables t;
        try {
            (void)t.read(content);
            ADD_FAILURE() << content.substr(0, 20);
        } catch (const HEXError& error) {
            EXPECT_THAT(error.what(), HasSubstr(t.folder.file("f")));
        }
        EXPECT_TRUE(t.empty());
    }
    // Extreme exponents overflow RapidJSON's own arithmetic.
    Tables t;
    EXPECT_TRUE(
        t.read(connectivity("\"s\": {\"A\": 0." + std::string(400, '0') + "1e-2147483600}")));
    EXPECT_EQ("", t.instances["s"]["A"]);
}

TEST(Reader, NamesTheFileThatIsDamagedOrBeyondTheLimit) {
    HPAParamMgr::getParamMgr()->setValue("general.maxInputMiB", "1");
    const std::string packed = support::gzip(std::string(2U << 20U, ' ') + "{}");
    for (const auto& [content, reason] :
         {std::pair(packed, "it holds more than 1 MiB, the limit set by the parameter "
                            "general.maxInputMiB"),
          std::pair(support::gzip("{}").substr(0, 15),
                    "what it is stored in is damaged or cut short")}) {
        Tables t;
        support::expectThrows<HEXError>("the JSON file '" + t.folder.file("f") +
                                            "' can't be read: " + reason,
                                        [&, bytes = content] { (void)t.read(bytes); });
    }
    HPAParamMgr::getParamMgr()->unsetValue("general.maxInputMiB");
}

TEST(Reader, ReadsTextsOfThreeFurtherKindsOfFile) {
    const support::TempDir folder;
    HBSJsonReader reader;
    struct Case {
        bool (HBSJsonReader::*read)(const std::string&, HWHTextMap&);
        const char* content;
        std::optional<HWHTextMap> texts; ///< none for a result of false
    };
    const auto mio = &HBSJsonReader::parseMioRegisters;
    const auto hic = &HBSJsonReader::parseHicUserParameters;
    const auto component = &HBSJsonReader::parseComponentParameters;
    for (const auto& [read, content, expected] :
         {Case{mio, R"({"mio_registers": []})", {}},
          Case{mio, R"({"mio_registers": {"r": "1", "s": 2}})", {{{"r", "1"}, {"s", ""}}}},
          Case{hic, R"({"hic_user_paramters": {}})", {}},
          Case{hic, R"({"hic_user_paramters": {"parameters": []}})", HWHTextMap()},
          Case{hic,
               R"({"hic_user_paramters": {"parameters": [{"a": "1"}, 5, {"a": "2"}]}})",
               {{{"a", "2"}}}},
          Case{component,
               R"({"component": {"x": 1, "parameters": {"parameter": [{"name": "a", "value":
              {"string": "1"}}, {"value": {"string": "2"}, "name": "b"}, {"value": {}}]}}})",
               {{{"", "2"}, {"a", "1"}, {"b", ""}}}},
          Case{component, R"({"component": {"parameter": "x"}})", {}}, Case{component, "{", {}}}) {
        HWHTextMap texts;
        EXPECT_EQ(expected.has_value(), (reader.*read)(folder.write("f", content), texts))
            << content;
        EXPECT_EQ(expected.value_or(HWHTextMap()), texts) << content;
    }
    HWHTextMap texts;
    EXPECT_FALSE(reader.parseMioRegisters("", texts));
    EXPECT_THROW((void)reader.parseMioRegisters("no file", texts), HEXError);
    EXPECT_FALSE(reader.parseComponentParameters("no file", texts));
}

} // namespace
