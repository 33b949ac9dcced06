// Files that are broken, protected or mean harm.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <functional>

#include "register_texts.h"

namespace {

using namespace register_texts;

/// Parses a path and expects a null pointer with one line of complaint, which it gives.
std::string refusal(const std::string& path) {
    support::CapturedError error;
    EXPECT_EQ(nullptr, hbs::HBSRegFileParser::parseFile(path)) << path;
    const std::string text = error.text();
    EXPECT_EQ(0U, text.find("Error parsing file: ")) << path << ": " << text;
    EXPECT_EQ(1, std::count(text.begin(), text.end(), '\n')) << text;
    return text;
}

void expectRefused(const std::string& path) {
    (void)refusal(path);
}

TEST(HostileFile, BrokenOnesAreRefusedWithOneLine) {
    const support::TempDir folder;
    const std::string whole = inRegisters(reg("a", ""));
    const std::string broken[] = {"",
                                  " ",
                                  "no xml",
                                  whole.substr(0, whole.size() / 2),
                                  whole + "<again/>",
                                  "<a b='1' b='2'/>",
                                  "<a>&unknown;</a>",
                                  "<a>\xFF</a>",
                                  std::string("<a>\0</a>", 8)};
    for (const auto& content : broken)
        expectRefused(folder.write("broken.xml", content));
}

TEST(HostileFile, WhatIsNoFileIsRefusedWithoutWaiting) {
    const support::TempDir folder;
    ASSERT_EQ(0, mkfifo(folder.file("fifo").c_str(), 0600));
    for (const auto& path :
         {folder.file("fifo"), folder.file("missing"), folder.file("a\xC3\xA4"),
          folder.path().string(), std::string("/dev/zero"), std::string("file:///etc/passwd"),
          folder.file("fifo") + std::string("\0x", 2)})
        expectRefused(path);
    support::CapturedError error;
    EXPECT_EQ(nullptr, hbs::HBSRegFileParser::parseFile(""));
    EXPECT_EQ("", error.text());
}

TEST(HostileFile, ExternalEntitiesAreNotFetched) {
    const support::TempDir folder;
    const std::string secret = folder.write("secret.xml", "<!ENTITY % p ''>");
    const auto withDoctype = [&](const std::string& doctype, const std::string& description) {
        return folder.write("r.xml",
                            "<!DOCTYPE a " + doctype + ">" +
                                inRegisters(reg("a", element("description", description))));
    };
    expectRefused(withDoctype("[<!ENTITY x SYSTEM '" + secret + "'>]", "&x;"));
    expectRefused(withDoctype("[<!ENTITY x SYSTEM 'a\nforged line'>]", "&x;"));
    expectRefused(withDoctype("[<!ENTITY % x SYSTEM '" + secret + "'> %x;]", ""));
    for (const char* doctype : {"SYSTEM 'missing.dtd'", "[<!ENTITY x SYSTEM '/etc/passwd'>]"})
        EXPECT_NE(nullptr, hbs::HBSRegFileParser::parseFile(withDoctype(doctype, ""))) << doctype;
}

TEST(HostileFile, EntitiesExpandWithinBounds) {
    const support::TempDir folder;
    std::string entities = "<!ENTITY e0 'lol'>";
    for (int i = 1; i < 10; ++i) {
        const std::string inner = "&e" + std::to_string(i - 1) + ";";
        entities += "<!ENTITY e" + std::to_string(i) + " '";
        for (int times = 0; times < 10; ++times)
            entities += inner;
        entities += "'>";
    }
    const auto file = [&](const std::string& reference) {
        return folder.write("bomb.xml",
                            "<!DOCTYPE a [" + entities + "]>" +
                                inRegisters(reg("a&e0;", element("description", reference))));
    };
    expectRefused(file("&e9;"));
    const auto refusedType = [&](const std::string& declaration) {
        expectRefused(folder.write("t.xml", "<!DOCTYPE a [" + entities + declaration + "]><a/>"));
    };
    refusedType("<!ATTLIST a b CDATA '&e9;'>");
    refusedType("<!ENTITY % p '&#37;q;'> %p;");
    refusedType("<!ENTITY x '" + std::string(65537, 'x') + "'>");
    const auto map = hbs::HBSRegFileParser::parseFile(file("&e0;"));
    ASSERT_NE(nullptr, map);
    ASSERT_NE(nullptr, map->getRegister("alol"));
    EXPECT_EQ("lol", map->getRegister("alol")->getDesc());
}

std::string repeated(std::size_t times, const std::string& text) {
    std::string result;
    while (times-- > 0)
        result += text;
    return result;
}

/// `times` pieces of text, each with its number behind it.
std::string numbered(std::size_t times, const std::string& front, const std::string& back) {
    std::string result;
    for (std::size_t i = 0; i < times; ++i)
        result += front + std::to_string(i) + back;
    return result;
}

TEST(HostileFile, WhatCostsTimeOrMemoryIsBounded) {
    const auto typed = [](const std::string& declarations) {
        return "<!DOCTYPE a [" + declarations + "]>\n";
    };
    const std::string long1 = typed("<!ENTITY e '" + std::string(65536, 'x') + "'>");
    struct Case {
        const char* fault;
        std::size_t most;
        std::function<std::string(std::size_t)> file;
    };
    const Case cases[] = {
        {"levels of elements", 262144,
         [](std::size_t n) { return repeated(n, "<a>") + repeated(n, "</a>"); }},
        {"attributes of one element", 1024,
         [](std::size_t n) { return "<a" + numbered(n, " b", "=''") + "/>"; }},
        {"different names", 2048,
         [](std::size_t n) { return "<a>" + numbered(n - 1, "<b", "/>") + "</a>"; }},
        {"different names", 2048,
         [](std::size_t n) { return "<a>" + numbered(n - 1, "<a b", "=''/>") + "</a>"; }},
        {"declarations", 4096,
         [&](std::size_t n) { return typed(numbered(n, "<!ENTITY e", " 'x'>")) + "<a/>"; }},
        {"declarations", 4096,
         [&](std::size_t n) { return typed(numbered(n, "<!NOTATION e", " PUBLIC ''>")) + "<a/>"; }},
        {"declarations", 4096,
         [&](std::size_t n) { return typed(numbered(n, "<!ELEMENT e", " ANY>")) + "<a/>"; }},
        {"characters out of entities", 64,
         [&](std::size_t n) { return long1 + "<a>" + repeated(n, "&e;") + "</a>"; }},
    };
    const support::TempDir folder;
    for (const auto& [fault, most, file] : cases) {
        EXPECT_NE(nullptr, hbs::HBSRegFileParser::parseFile(folder.write("f", file(most))))
            << fault;
        EXPECT_NE(std::string::npos, refusal(folder.write("f", file(most + 1))).find(fault));
    }
    const std::string model = "<!ELEMENT a (b" + numbered(40000, "|b", "") + ")>";
    EXPECT_NE(std::string::npos, refusal(folder.write("f", typed(model) + "<a/>"))
                                     .find("more than 131072 bytes in the document type (line 1"));
    const std::string inValues = long1 + "<a>" + repeated(66, "<b c='&e;'/>") + "</a>";
    EXPECT_NE(std::string::npos,
              refusal(folder.write("f", inValues)).find("out of entities (line 2"));
}

TEST(HostileFile, DeepNestingNeedsNoStack) {
    std::string deep;
    for (int i = 0; i < 200000; ++i)
        deep += "<b>";
    deep += "core";
    for (int i = 0; i < 200000; ++i)
        deep += "</b>";
    const auto map = parse(inRegisters(reg("a", element("description", deep))));
    ASSERT_NE(nullptr, map);
    EXPECT_EQ("core", map->getRegister("a")->getDesc());
}

TEST(HostileFile, ProtectedOnesAreReadWholeOrNotAtAll) {
    const support::TempDir folder;
    const std::string path = folder.write("r.xml", inRegisters(reg("a", "")));
    ASSERT_EQ(0, support::run("gzip " + path).status);
    const auto map = hbs::HBSRegFileParser::parseFile(path + ".gz");
    ASSERT_NE(nullptr, map);
    EXPECT_NE(nullptr, map->getRegister("a"));

    const std::string packed = support::readFile(path + ".gz");
    expectRefused(folder.write("cut.gz", packed.substr(0, packed.size() - 4)));
    expectRefused(folder.write("head.gz", packed.substr(0, 5)));
}

} // namespace
