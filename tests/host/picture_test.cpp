// Pictures hold names from files: none of them may break the document.

#include <gtest/gtest.h>

#include <pugixml.hpp>

#include "workbench/addressing/AddressMapPicture.h"
#include "workbench/text/XmlText.h"

namespace {

TEST(XmlText, MakesVisibleWhatXmlCantHold) {
    using Case = std::pair<std::string, const char*>;
    for (const auto& [text, shown] :
         {Case{"a<b>&\"c\"", "a<b>&\"c\""}, Case{"µ\u20AC\U0001F600", "µ\u20AC\U0001F600"},
          Case{"\x01\n", "\\x01\\x0A"}, Case{std::string("a\0b", 3), "a\\x00b"},
          Case{"\xFF", "\\xFF"}, Case{"\xC3", "\\xC3"}, Case{"\xC3(", "\\xC3("},
          Case{"\xED\xA0\x80", "\\xED\\xA0\\x80"}, Case{"\xEF\xBF\xBE", "\uFFFD\uFFFD\uFFFD"}})
        EXPECT_EQ(shown, tq::xmlText(text)) << text;
}

TEST(XmlText, IsCutBetweenCharacters) {
    EXPECT_EQ("abc", tq::shortened("abc", 3));
    EXPECT_EQ("ab…", tq::shortened("abcd", 3));
    EXPECT_EQ("µµ…", tq::shortened("µµµµ", 3));
    EXPECT_EQ("µµµ", tq::shortened("µµµ", 3));
}

TEST(AddressMapPicture, KeepsNamesAsText) {
    const std::string name = "<text>&amp;\x02";
    const auto top = HABMBlock::createTopBlock("top");
    HABMAddrSpace& space = *top->createAddrSpace(name);
    space.setRange(HABMAddrValue("4G"));
    HABMAddrSegment& segment = *space.createAddrSegment(name);
    HABMAddrBlock& block = *top->createMemoryMap(name)->createAddrBlock(name);
    HABMAddrAssign& assign = *top->createAddrAssign("a");
    assign.setSourceAddrBlock(&block);
    assign.setTargetAddrSegment(&segment);
    assign.setOffset(HABMAddrValue("1G"));
    assign.setRange(HABMAddrValue("1G"));
    const tq::AddressMap map(*top, *top);
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string(tq::drawAddressMap(map, name).c_str()));
    std::string texts;
    for (const auto& text : document.child("svg").children("text"))
        texts += std::string(text.child_value()) + "\n";
    EXPECT_NE(std::string::npos, texts.find("<text>&amp;\\x02  (4G)\nunused  1G\n0x0\n")) << texts;
    EXPECT_NE(std::string::npos, texts.find("/<text>&amp;\\x02  1G\n0x40000000")) << texts;

    ASSERT_TRUE(
        document.load_string(tq::drawAddressMaps({{&map, "before"}, {&map, "after"}}).c_str()));
    const pugi::xml_node pictures = document.child("svg");
    const pugi::xml_attribute width = pictures.first_child().attribute("width");
    EXPECT_STREQ(width.value(), pictures.last_child().attribute("x").value());
    EXPECT_EQ(2 * width.as_double(), pictures.attribute("width").as_double());
}

} // namespace
