// Metadata texts: what each form of a value stores, and which messages come in which order.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "hardblock/json_getters.h"
#include "hardblock/metadata_reader.h"
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
    Interface& interface(const std::string& name) {
        return *blocks.at(0)->getInterfaceByName(name);
    }
    const Pin& pin(int index) { return *blocks.at(0)->getPinsStartIterator()[index]; }

    HardBlocks blocks;
    bool good = false;
    std::vector<std::string> messages;
};

std::string pinText(const Pin& pin) {
    return (pin.getType() == Type::Vector ? "vector " : "wire ") + pin.getDirectionAsStr() + " '" +
           pin.getDefaultValue() + "' " + std::to_string(pin.getLeftSize()) + ":" +
           std::to_string(pin.getRightSize());
}

struct PinCase {
    const char* body;
    const char* pin;
    std::vector<std::string> messages;
};

TEST(Loader, ReadsPinsOfEveryForm) {
    for (const PinCase& c : std::vector<PinCase>{
             {"{}", "wire INOUT '' -1:-1", {}},
             {R"({"size_left": 7, "size_right": 0, "type": "VECTOR", "direction": "Out"})",
              "vector OUT '' 7:0",
              {}},
             {R"({"direction": "iN", "type": "bus", "x": 1})", "wire IN '' -1:-1", {}},
             {R"({"direction": "bidir", "default_val": -5})", "wire INOUT '-5' -1:-1", {}},
             {R"({"size_left": "7", "size_right": "abc"})", "wire INOUT '' 7:0", {}},
             {R"({"size_left": " +8x", "size_right": "99999999999"})", "wire INOUT '' 8:0", {}},
             {R"({"size_left": true, "size_right": 4294967301})", "wire INOUT '' 1:5", {}},
             {R"({"default_val": ["a", 1, "b", null]})", "wire INOUT 'ab' -1:-1", {}},
             {R"({"default_val": 9223372036854775807})",
              "wire INOUT '9223372036854775807' -1:-1",
              {}},
             {R"({"default_val": "a\u0000b", "direction": "in\u0000"})", "wire IN 'a' -1:-1", {}},
             {R"({"default_val": false, "default_val": 1})", "wire INOUT 'false' -1:-1", {}},
             {R"({"size_right": {}, "size_left": 7.5, "default_val": 9223372036854775808,
                  "direction": null, "type": 1e0})",
              "wire INOUT '' -1:-1",
              {"@90-8@%s%s|number|type", "@90-8@%s%s|null|direction",
               "@90-8@%s%s|number|default_val", "@90-8@%s%s|number|size_left",
               "@90-8@%s%s|object|size_right"}},
             {"[]", "wire INOUT '' -1:-1", {"@90-8@%s%s|array|p"}},
         }) {
        Loaded loaded(R"({"b": {"pins": {"p": )" + std::string(c.body) + "}}}");
        EXPECT_TRUE(loaded.good) << c.body;
        EXPECT_EQ(c.pin, pinText(loaded.pin(0))) << c.body;
        EXPECT_EQ(c.messages, loaded.messages) << c.body;
    }
}

TEST(Loader, ReadsInterfacesAndBlocksInFileOrder) {
    Loaded loaded(R"({"b": {"pins": {"q": {}, "p": {}, "q": {}},
                            "interfaces": {"i": {"access_point": {
                                "port_maps": {"P[3:0]": "F[3:0]", "Q[3:0]": "F[7:4]"},
                                "parameters": {"n": -3, "n": 4, "low": 4294967295},
                                "module": "m"}}, "empty": {"other": 1}}},
                      "a": {}, "b": {}})");
    EXPECT_TRUE(loaded.good);
    EXPECT_THAT(loaded.messages, IsEmpty());
    ASSERT_EQ(3U, loaded.blocks.size());
    EXPECT_EQ("a", loaded.blocks[1]->getName());
    EXPECT_EQ("p", loaded.pin(1).getName());
    EXPECT_EQ("m", loaded.interface("i").getApModuleName());
    EXPECT_EQ("-3", loaded.interface("i").getParameterByName("n"));
    EXPECT_EQ("-1", loaded.interface("i").getParameterByName("low"));
    EXPECT_EQ("Q[1]", loaded.interface("i").getPortMapByName("F[5]"));
    EXPECT_EQ("", loaded.interface("empty").getApModuleName());
}

TEST(Loader, ReadsASecondBodyIntoTheFirstInterface) {
    const std::string first = R"({"access_point": {"module": "m", "parameters": {"p": 1}}})";
    const auto moduleAfter = [&](const std::string& second) {
        Loaded loaded(R"({"b": {"interfaces": {"i": )" + first + R"(, "i": )" + second + "}}}");
        EXPECT_EQ("1", loaded.interface("i").getParameterByName("p"));
        return loaded.interface("i").getApModuleName();
    };
    EXPECT_EQ("n", moduleAfter(R"({"access_point": {"module": "n", "parameters": {"p": 2}}})"));
    EXPECT_EQ("", moduleAfter(R"({"access_point": {}})"));
    EXPECT_EQ("m", moduleAfter("{}"));
}

TEST(Loader, SkipsUnsuitableValuesAndGoesOn) {
    Loaded loaded(R"({"none": 1, "b": {"interfaces": [], "pins": "x"},
                      "c": {"interfaces": {"i": null, "j": {"access_point": true},
                            "k": {"access_point": {"port_maps": {"X": 1, "Y": "B"}, "module": 2.5,
                                  "parameters": {"f": 1.5, "s": "7", "p": 3}}},
                            "l": {"access_point": {"port_maps": 0, "parameters": []}}}}})");
    EXPECT_TRUE(loaded.good);
    ASSERT_EQ(3U, loaded.blocks.size());
    EXPECT_THAT(loaded.messages,
                ElementsAre("@90-8@%s%s|number|none", "@90-8@%s%s|array|interfaces",
                            "@90-8@%s%s|string|pins", "@90-8@%s%s|null|i",
                            "@90-8@%s%s|boolean|access_point", "@90-8@%s%s|number|module",
                            "@90-8@%s%s|number|f", "@90-8@%s%s|string|s", "@90-8@%s%s|number|X",
                            "@90-8@%s%s|array|parameters", "@90-8@%s%s|number|port_maps"));
    Interface& k = *loaded.blocks[2]->getInterfaceByName("k");
    EXPECT_EQ("3", k.getParameterByName("p"));
    EXPECT_EQ("Y", k.getPortMapByName("B"));
    EXPECT_THAT(Loaded("[1]").messages, ElementsAre("@90-8@%s%s|array|"));
}

TEST(Loader, AddsNothingFromMalformedTexts) {
    for (const std::string& text : {std::string(), std::string(R"({"b": {"pins": {"p": {})"),
                                    std::string("{\"b\": ") + std::string(3000000, '['),
                                    std::string("{} {}"), std::string("{\"b\": {},}")}) {
        const Loaded loaded(text);
        EXPECT_FALSE(loaded.good);
        EXPECT_THAT(loaded.blocks, IsEmpty());
        EXPECT_THAT(loaded.messages, ElementsAre(testing::StartsWith("@90-2@%s|")));
    }
}

TEST(Getters, ReportARequiredMemberAndReadBooleans) {
    std::istringstream stream(R"({"ab": "x", "a": "true", "T": "True", "n": 2, "z": 0,
                                  "big": 4294967296, "f": 1.5})");
    JsonDocument object;
    object.ParseStream(stream);
    const support::CapturedMessages messages;
    const auto read = [&](const std::string& key, bool preset) {
        bool result = preset;
        const bool found = getJsonBool(object, key, result, true);
        return (found ? "found " : "none ") + std::to_string(static_cast<int>(result));
    };
    EXPECT_EQ("found 1", read("a", false));
    EXPECT_EQ("found 0", read("T", true));
    EXPECT_EQ("found 1", read("n", false));
    EXPECT_EQ("found 0", read("z", true));
    EXPECT_EQ("found 1", read("big", false));
    EXPECT_EQ("none 1", read("f", true));
    EXPECT_EQ("none 1", read("c", true));
    EXPECT_THAT(messages.lines(), ElementsAre("@90-8@%s%s|number|f", "@90-9@%s|c"));
    EXPECT_EQ(2, messages.all()[0].count);
    EXPECT_EQ(0x20000000U, messages.all()[0].mask);
}

} // namespace
