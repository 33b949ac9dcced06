// Definitions: the cache, and stubs with their definitions.

#include "addressing/HBSAddressing.h"

#include "blocks.h"

namespace {

const HABMBlock* definition(const std::string& name, const std::string& context = "c") {
    return HBSAddressing::createSubsystemDefinition(blocks::vlnv(name), context);
}

TEST(Definitions, AreReadOncePerContextAndTriedAgainAfterAFailure) {
    const support::CapturedMessages messages;
    EXPECT_EQ(nullptr, definition("cached", "one"));
    blocks::data.publish(*blocks::top("cached"));
    const HABMBlock* const first = definition("cached", "one");
    ASSERT_NE(nullptr, first);
    EXPECT_NE(first, definition("cached", "two"));
    blocks::data.remove("cached");
    EXPECT_EQ(first, definition("cached", "one"));
    EXPECT_EQ(nullptr, definition("cached", "three"));
    EXPECT_EQ(nullptr, definition("cached", ""));
    EXPECT_EQ(nullptr, HBSAddressing::createSubsystemDefinition("", "one"));
    EXPECT_TRUE(messages.all().empty());
}

TEST(Definitions, OfABadVlnvSendAMessageAtEachCall) {
    const support::CapturedMessages messages;
    for (int call = 0; call < 2; ++call)
        EXPECT_EQ(nullptr, HBSAddressing::createSubsystemDefinition("a:b:c", "one"));
    const std::string line = "@91-45@%s|a:b:c";
    EXPECT_EQ((std::vector<std::string>{line, line}), messages.lines());
    EXPECT_EQ(1, messages.all()[0].count);
    EXPECT_EQ("hbs", messages.all()[0].category);
    EXPECT_EQ(0x20000000U, messages.all()[0].mask);
}

TEST(Definitions, PutTheContentOfAStubInItsPlace) {
    const auto leaf = blocks::top("leaf");
    leaf->setParameter("DEPTH", "2", true);
    const auto middle = blocks::top("middle");
    blocks::stub(*middle, "l0", "leaf");
    middle->setEnablement("0");
    middle->setBaseAddress(HABMAddrValue("0x10"));
    const auto outer = blocks::top("outer");
    HABMBlock& stub = blocks::stub(*outer, "m0", "middle");
    stub.setEnablement("1 == 1");
    stub.setBaseAddress(HABMAddrValue("0x4000"));
    blocks::stub(*outer, "gone0", "absent");
    for (const auto* block : {leaf.get(), middle.get(), outer.get()})
        blocks::data.publish(*block);

    const support::CapturedMessages messages;
    const HABMBlock* const whole = definition("outer");
    ASSERT_NE(nullptr, whole);
    const HABMBlock& merged = *whole->getSubBlock("m0");
    EXPECT_FALSE(merged.isBlockStub());
    EXPECT_EQ("1 == 1", merged.getEnablement());
    EXPECT_EQ("0x4000", merged.getBaseAddress().getHexStringValue(0));
    EXPECT_EQ("2", merged.getSubBlock("l0")->getGenerics().at(0)->getValue());
    EXPECT_TRUE(whole->getSubBlock("gone0")->isBlockStub());
    EXPECT_TRUE(messages.all().empty());
}

TEST(Definitions, ThatStandForThemselvesKeepTheStub) {
    const auto self = blocks::top("self");
    // Another version is the same file.
    blocks::stub(*self, "again", "self").setModuleVlnv("x:y:self:2.0");
    const auto ping = blocks::top("ping");
    blocks::stub(*ping, "pong0", "pong");
    const auto pong = blocks::top("pong");
    blocks::stub(*pong, "ping0", "ping");
    blocks::stub(*pong, "self0", "self");
    for (const auto* block : {self.get(), ping.get(), pong.get()})
        blocks::data.publish(*block);

    const support::CapturedMessages messages;
    const HABMBlock* const ring = definition("ping");
    ASSERT_NE(nullptr, ring);
    const HABMBlock& inner = *ring->getSubBlock("pong0");
    EXPECT_FALSE(inner.isBlockStub());
    EXPECT_TRUE(inner.getSubBlock("ping0")->isBlockStub());
    EXPECT_FALSE(inner.getSubBlock("self0")->isBlockStub());
    EXPECT_TRUE(inner.getSubBlock("self0")->getSubBlock("again")->isBlockStub());
    EXPECT_TRUE(messages.all().empty());
}

TEST(Definitions, ReportAStubThatCantBeMergedAndGoOn) {
    const auto deep = blocks::top("deep");
    HABMBlock* block = deep.get();
    for (int level = 1; level < HABMBlock::kMostLevels; ++level)
        block = &blocks::sub(*block, "i");
    const auto holder = blocks::top("holder");
    blocks::stub(*holder, "deep0", "deep").setEnablement("1");
    blocks::stub(*holder, "bad0", "").setModuleVlnv("a:b");
    blocks::stub(*holder, "small0", "small");
    for (const auto* part : {deep.get(), holder.get()})
        blocks::data.publish(*part);
    blocks::data.publish(*blocks::top("small"));

    const support::CapturedMessages messages;
    const HABMBlock* const whole = definition("holder");
    ASSERT_NE(nullptr, whole);
    EXPECT_EQ((std::vector<std::string>{"@91-44@%s%s|" + blocks::vlnv("deep") + "|/deep0",
                                        "@91-45@%s|a:b"}),
              messages.lines());
    EXPECT_FALSE(whole->getSubBlock("small0")->isBlockStub());
}

/// A chain of definitions, each with one stub for the next.
TEST(Definitions, KeepTheOuterLevelsOfAChainThatIsTooLong) {
    const auto name = [](int i) { return "link" + std::to_string(i); };
    for (int i = 0; i < HABMBlock::kMostLevels + 50; ++i) {
        blocks::data.publishText(
            name(i), R"({"format":"tq block model","version":1,"block":{"module":")" + name(i) +
                         R"(","vlnv":")" + blocks::vlnv(name(i)) +
                         R"(","interface_connections":[{"name":"c","source":"/S","target":"/n/S"}])"
                         R"(,"blocks":[{"instance":"n","vlnv":")" +
                         blocks::vlnv(name(i + 1)) + R"(","stub":true}]}})");
    }
    const support::CapturedMessages messages;
    tq::DiagnosticList findings;
    const HABMBlock* block = definition(name(0));
    ASSERT_NE(nullptr, HBSAddressing::createSubsystemDefinition(blocks::vlnv(name(0)), "told",
                                                                findings.sink()));
    const std::string last = blocks::vlnv(name(HABMBlock::kMostLevels - 1));
    EXPECT_EQ((std::vector<std::string>{"@91-44@%s%s|" + last + "|/n"}), messages.lines());
    ASSERT_EQ(1U, findings.count(tq::Severity::Error));
    EXPECT_EQ("beyond-bound", findings.all()[0].id);
    EXPECT_NE(std::string::npos, findings.all()[0].text.find("deeper than 512 levels"));
    EXPECT_NE(std::string::npos, findings.all()[0].place.file.find("link510.bmj"));

    int levels = 1;
    std::string inner;
    for (; !block->isBlockStub(); block = block->getSubBlocks().at(0), ++levels)
        inner = block->getInterfaceConnections().at(0)->getTargetPath();
    EXPECT_EQ(HABMBlock::kMostLevels, levels);
    EXPECT_EQ(block->getInstancePath() + "/S", inner);
    EXPECT_EQ(last, block->getModuleVlnv());
}

TEST(Definitions, BeyondTheirNumberAreReportedOnce) {
    const int tooMany = 66000;
    const auto fan = blocks::top("fan");
    for (int i = 0; i < tooMany; ++i)
        blocks::stub(*fan, "n" + std::to_string(i), "blade");
    blocks::data.publish(*fan);
    blocks::data.publish(*blocks::top("blade"));
    const support::CapturedMessages messages;
    ASSERT_NE(nullptr, definition("fan"));
    EXPECT_EQ(std::vector<std::string>{"@91-44@%s%s|" + blocks::vlnv("blade") + "|/n65535"},
              messages.lines());
}

} // namespace
