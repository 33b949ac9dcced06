// What is kept of a register description file, and where its order matters.

#include <gtest/gtest.h>

#include "register_texts.h"

namespace {

using namespace register_texts;

TEST(RegisterFile, GivesAllOfARegister) {
    const auto map = parse(inRegisters(
        reg("Ctrl", element("description", " Starts\n\t<!-- --> the\r\n <b>&lt;core</b>&gt; ") +
                        element("addressOffset", " 0x10 ") + element("access", "read-only") +
                        element("field", "<x/>") + element("size", "32") + element("reset", "") +
                        element("dim", "4"))));
    ASSERT_NE(nullptr, map);
    const hbs::HBSRegister* const control = map->getRegister("Ctrl");
    ASSERT_NE(nullptr, control);
    EXPECT_EQ("Ctrl", control->getName());
    EXPECT_EQ("Starts the <core>", control->getDesc());
    EXPECT_EQ("PS_MAP_CTRL", control->getFullName());
    EXPECT_EQ("0X1010", control->getOffset());
    EXPECT_EQ("ro", control->getAccess());
    EXPECT_EQ(4, control->getDim());
    EXPECT_EQ(nullptr, map->getRegister("CTRL"));
    EXPECT_EQ(nullptr, map->getRegister("PS_MAP_CTRL"));
}

TEST(RegisterFile, AnUnknownElementEndsItsLevelOnly) {
    const std::string unknown = "<spirit:displayName/>";
    const auto map =
        parse(inRegisters(reg("a", unknown + element("addressOffset", "4")) +
                          reg("b", element("addressOffset", "8")) + unknown + reg("c", "")));
    ASSERT_NE(nullptr, map->getRegister("a"));
    EXPECT_EQ("", map->getRegister("a")->getOffset());
    ASSERT_NE(nullptr, map->getRegister("b"));
    EXPECT_EQ("0X1008", map->getRegister("b")->getOffset());
    EXPECT_EQ(nullptr, map->getRegister("c"));
}

TEST(RegisterFile, StopsSayWhereTheirElementStarts) {
    const support::TempDir folder;
    const auto stops = [&](const std::string& content) {
        std::vector<hbs::HBSRegFileStop> found;
        (void)hbs::HBSRegFileParser::parseFile(folder.write("r.xml", content), found);
        std::string text;
        for (const auto& stop : found)
            text += std::to_string(stop.line) + ":" + std::to_string(stop.column) + " " +
                    stop.element + " in " + stop.level + "\n";
        return text;
    };
    EXPECT_EQ("", stops(inRegisters(reg("a", ""))));
    const std::string map = "<spirit:component><spirit:memoryMaps><spirit:memoryMap>";
    const std::string ends = "</spirit:memoryMap></spirit:memoryMaps></spirit:component>";
    struct Case {
        const char *inner, *stop;
    };
    for (const auto& [inner, stop] :
         std::initializer_list<Case>{{"<x/>", "1:56"},
                                     {"\r\n <x\n a='>'\n></x>", "2:2"},
                                     {"text<x/>", "1:60"},
                                     {"<!-- c\n --><x/>", "2:5"},
                                     {"<?p i?><x/>", "1:63"},
                                     {"<![CDATA[\n]]><x/>", "2:4"},
                                     {"<spirit:name>\xC3\xA4</spirit:name><x/>", "1:84"},
                                     {"<spirit:name/><x/><y/>", "1:70"}})
        EXPECT_EQ(std::string(stop) + " x in <spirit:memoryMap>\n", stops(map + inner + ends))
            << inner;
    EXPECT_EQ("2:1 b in the document\n", stops("<?xml version='1.0'?>\n<b/>"));
    EXPECT_EQ("1:1 b in the document\n", stops("<b/>"));
    EXPECT_EQ("1:22 b in the document\n", stops("<?xml version='1.0'?><b/>"));
    EXPECT_EQ("1:94 x in <spirit:register>\n1:116 y in <spirit:addressBlock>\n",
              stops("<spirit:component><spirit:memoryMaps><spirit:memoryMap><spirit:addressBlock>"
                    "<spirit:register><x/></spirit:register><y/></spirit:addressBlock>" +
                    ends));
}

TEST(RegisterFile, GivesTheRegistersInFileOrder) {
    const auto map = parse(inRegisters(reg("b", "") + reg("a", "") + reg("b", "") + reg("c", "")));
    std::string names;
    for (const hbs::HBSRegister* entry : map->getRegisters()) {
        names += entry->getName();
        EXPECT_EQ(entry, map->getRegister(entry->getName()));
    }
    EXPECT_EQ("bac", names);
}

TEST(RegisterFile, NamesAndBasesCountForWhatFollows) {
    const std::string offset = element("addressOffset", "4");
    const auto block = [&](const std::string& name) {
        return element("addressBlock", element("register", element("name", name) + offset));
    };
    const auto map = parse(element(
        "component",
        element("vendor", "kestrom") +
            element("memoryMaps",
                    element("memoryMap", block("early") + element("name", "one") + block("late")) +
                        element("memoryMap", block("fresh")))));
    EXPECT_EQ("_EARLY", map->getRegister("early")->getFullName());
    EXPECT_EQ("ONE_LATE", map->getRegister("late")->getFullName());
    EXPECT_EQ("_FRESH", map->getRegister("fresh")->getFullName());

    const auto bases =
        parse(inBlock(reg("a", offset) + element("baseAddress", "0x20") + reg("b", offset) +
                      element("baseAddress", "0x40") + reg("c", offset) + element("range", "1")));
    EXPECT_EQ("0X4", bases->getRegister("a")->getOffset());
    EXPECT_EQ("0X24", bases->getRegister("b")->getOffset());
    EXPECT_EQ("0X44", bases->getRegister("c")->getOffset());
}

TEST(RegisterFile, TheFirstOfANameWinsAndASecondNameStartsARegister) {
    const auto map = parse(inRegisters(
        reg("a", element("access", "write-only")) + reg("a", element("access", "read-write")) +
        reg("b", element("access", "read-write") + element("access", "odd") + element("name", "c") +
                     element("access", "read-only"))));
    EXPECT_EQ("wo", map->getRegister("a")->getAccess());
    EXPECT_EQ("rw", map->getRegister("b")->getAccess());
    EXPECT_EQ("ro", map->getRegister("c")->getAccess());
}

TEST(RegisterFile, ABadDimLeavesWithTheStandardFailure) {
    EXPECT_THROW(parse(inRegisters(reg("a", element("dim", "four")))), std::invalid_argument);
    const auto map =
        parse(inRegisters(element("register", element("dim", "x") + element("name", "a"))));
    EXPECT_EQ(0, map->getRegister("a")->getDim()) << "ahead of the name it has no register";
}

TEST(RegisterFile, AnotherVocabularyGivesAnEmptyMap) {
    support::CapturedError error;
    for (const char* content :
         {"<ipxact:component/>", "<component/>", "<x><spirit:component/></x>",
          "<spirit:component xmlns:other='o'><other:memoryMaps/></spirit:component>"})
        EXPECT_NE(nullptr, parse(content)) << content;
    EXPECT_EQ("", error.text());
}

TEST(RegisterFile, RegistersOutliveTheirMap) {
    auto map = parse(inRegisters(reg("a", "")));
    const hbs::HBSRegister* const kept = map->getRegister("a");
    map.reset();
    EXPECT_EQ("a", kept->getName());
}

} // namespace
