// Metadata texts: what each form of a value stores, and which messages come in which order.

#include <gmock/gmock.h>

#include <sstream>
#include <string>
#include <vector>

#include "hardblock/JsonGetters.h"
#include "hardblock/MetadataReader.h"
#include "support/support.h"

namespace {

using namespace hardblock;
using testing::ElementsAre;
using testing::IsEmpty;

struct Loaded {
    explicit Loaded(const std::string& text) {
        const support::CapturedMessages captured;
        std::istringstream stream(text);
        good = parseMetadataStream(stream, blocks);
        messages = captured.lines();
    }

    HardBlocks blocks;
    bool good = false;
    std::vector<std::string> messages;
};

std::string pinText(const Pin& pin) {
    return (pin.getType() == Type::Vector ? "vector " : "wire ") + pin.getDirectionAsStr() + " '" +
           pin.getDefaultValue() + "' " + std::to_string(pin.getLeftSize()) + ":" +
           std::to_string(pin.getRightSize());
}

TEST(Loader, ReadsPinsOfEveryForm) {
    using Case = std::pair<const char*, const char*>;
    for (const auto& [body, pin] :
         {Case{"", "wire INOUT '' -1:-1"},
          Case{R"("size_left": 7, "type": "VECTOR", "direction": "Out")", "vector OUT '' 7:-1"},
          Case{R"("direction": "iN", "type": "bus", "x": 1)", "wire IN '' -1:-1"},
          Case{R"("direction": "bidir", "default_val": -5)", "wire INOUT '-5' -1:-1"},
          Case{R"("size_left": " +7x", "size_right": "abc")", "wire INOUT '' 7:0"},
          Case{R"("size_left": "99999999999", "size_right": true)", "wire INOUT '' 0:1"},
          Case{R"("size_left": 4294967301, "default_val": 0)", "wire INOUT '0' 5:-1"},
          Case{R"("default_val": ["a", 1, "b", null])", "wire INOUT 'ab' -1:-1"},
          Case{R"("default_val": "a\u0000b", "direction": "in\u0000")", "wire IN 'a' -1:-1"},
          Case{R"("default_val": false, "default_val": 1)", "wire INOUT 'false' -1:-1"}}) {
        const Loaded loaded(R"({"b": {"pins": {"p": {)" + std::string(body) + "}}}}");
        EXPECT_TRUE(loaded.good);
        EXPECT_EQ(pin, pinText(**loaded.blocks.at(0)->getPinsStartIterator())) << body;
        EXPECT_THAT(loaded.messages, IsEmpty()) << body;
    }
}

TEST(Loader, KeepsBlocksAndPinsOfEqualNamesInOrder) {
    const Loaded loaded(R"({"b": {"pins": {"q": {}, "p": {}, "q": {}}}, "a": {}, "b": {}})");
    std::string names;
    for (const auto& block : loaded.blocks) {
        names += block->getName() + ":";
        for (auto pin = block->getPinsStartIterator(); pin != block->getPinsEndIterator(); ++pin)
            names += (*pin)->getName();
    }
    EXPECT_EQ("b:qpqa:b:", names);
}

TEST(Loader, ReadsASecondBodyIntoTheFirstInterface) {
    const auto after = [](const std::string& second) {
        const Loaded loaded(R"({"b": {"interfaces": {"i": {"access_point": {
            "port_maps": {"P[3:0]": "F[7:4]"}, "module": "m", "parameters": {"p": -3, "p": 4}}},
            "i": )" + second +
                            "}}}");
        const Interface& interface = *loaded.blocks.at(0)->getInterfaceByName("i");
        return interface.getApModuleName() + " " + interface.getParameterByName("p") + " " +
               interface.getParameterByName("q") + " " + interface.getPortMapByName("F[5]");
    };
    EXPECT_EQ("m -3  P[1]", after("{}"));
    EXPECT_EQ(" -3  P[1]", after(R"({"access_point": {}})"));
    EXPECT_EQ("n -3 -1 P[1]", after(R"({"access_point": {"module": "n", "parameters":
                                        {"p": 2, "q": 4294967295}}})"));
}

TEST(Loader, SkipsUnsuitableValuesAndGoesOn) {
    const Loaded loaded(R"({"none": 1, "b": {"interfaces": [], "pins": "x"},
        "c": {"pins": {"p": [], "q": {"size_right": {}, "size_left": 7.5, "type": 1e0,
                       "default_val": 9223372036854775808, "direction": null}},
              "interfaces": {"i": null, "j": {"access_point": true},
                             "k": {"access_point": {"port_maps": {"X": 1, "Y": "B"}, "module": 2.5,
                                   "parameters": {"f": 1.5, "s": "7", "p": 3}}},
                             "l": {"access_point": {"port_maps": 0, "parameters": []}}}}})");
    EXPECT_TRUE(loaded.good);
    std::string unsuitable;
    for (const auto& message : loaded.messages)
        unsuitable += message.substr(message.find('|')) + "\n";
    EXPECT_EQ("|number|none\n|array|interfaces\n|string|pins\n|null|i\n|boolean|access_point\n"
              "|number|module\n|number|f\n|string|s\n|number|X\n|array|parameters\n"
              "|number|port_maps\n|array|p\n|number|type\n|null|direction\n|number|default_val\n"
              "|number|size_left\n|object|size_right\n",
              unsuitable);
    EXPECT_EQ("wire INOUT '' -1:-1", pinText(*loaded.blocks.at(2)->getPinsStartIterator()[1]));
    const Interface& k = *loaded.blocks[2]->getInterfaceByName("k");
    EXPECT_EQ("3", k.getParameterByName("p"));
    EXPECT_EQ("Y", k.getPortMapByName("B"));
    EXPECT_THAT(Loaded("[1]").messages, ElementsAre("@90-8@%s%s|array|"));
}

TEST(Loader, AddsNothingFromEmptyAndMalformedTexts) {
    EXPECT_TRUE(Loaded(" {}\n").good);
    for (const std::string& text : {std::string(), std::string(R"({"b": {"pins": {"p": {})"),
                                    "{\"b\": " + std::string(3000000, '['), std::string("{} {}")}) {
        const Loaded loaded(text);
        EXPECT_FALSE(loaded.good);
        EXPECT_THAT(loaded.blocks, IsEmpty());
        EXPECT_THAT(loaded.messages, ElementsAre(testing::StartsWith("@90-2@%s|")));
    }
}

TEST(Getters, ReportARequiredMemberAndReadBooleans) {
    const base::JsonTape object(std::string_view(
        R"({"ab": "x", "a": "true", "T": "True", "z": 0, "big": 4294967296, "f": 1.5})"));
    const support::CapturedMessages messages;
    std::string results;
    for (const char* key : {"a", "T", "z", "big", "f", "c"}) {
        bool result = true;
        const bool found = getJsonBool(object.root(), key, result, true);
        results += std::string(found ? "found " : "none ") + (result ? "true " : "false ");
    }
    EXPECT_EQ("found true found false found false found true none true none true ", results);
    EXPECT_THAT(messages.lines(), ElementsAre("@90-8@%s%s|number|f", "@90-9@%s|c"));
    EXPECT_EQ(2, messages.all()[0].count);
    EXPECT_EQ(0x20000000U, messages.all()[0].mask);
}

} // namespace
