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
