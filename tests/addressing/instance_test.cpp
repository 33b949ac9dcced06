// Instances: what a config sets, what expressions remove, what is pruned, what is left behind for
// debugging.

#include "addressing/HBSAddressing.h"

#include "blocks.h"

namespace {

std::string parameter(const HABMBlock& block, const std::string& name) {
    for (const HABMGeneric* generic : block.getGenerics())
        if (generic->getName() == name)
            return generic->getValue();
    return "";
}

template <class Objects, class Name>
std::vector<std::string> names(const Objects& objects, Name name) {
    std::vector<std::string> result;
    result.reserve(objects.size());
    for (const auto* object : objects)
        result.push_back((object->*name)());
    return result;
}

std::vector<std::string> subBlocks(const HABMBlock& block) {
    return names(block.getSubBlocks(), &HABMBlock::getInstanceName);
}

std::vector<std::string> interfaces(const HABMBlock& block) {
    return names(block.getInterfaces(), &HABMInterface::getInterfaceName);
}

using Names = std::vector<std::string>;

TEST(Instances, TakeParametersOfTwoLevelsAndRegistersOfEveryDepth) {
    const auto definition = blocks::top("settings");
    HABMBlock& u0 = blocks::sub(*definition, "u0");
    blocks::setRegister(u0, "R", "0x1");
    blocks::setRegister(blocks::sub(u0, "v0"), "S", "0x2");
    const auto config = HABMBlock::createTopBlock("design");
    config->setParameter("SPEED", "2", true);
    HABMBlock& settings = blocks::sub(*config, "inst");
    blocks::setRegister(blocks::sub(settings, "unknown"), "R", "0x9");
    HABMBlock& mine = blocks::sub(settings, "u0");
    mine.setParameter("BAUD", "9600", true);
    blocks::setRegister(mine, "R", "0x5");
    blocks::setRegister(mine, "ABSENT", "0x5");
    HABMBlock& deeper = blocks::sub(mine, "v0");
    deeper.setParameter("LOST", "1", true);
    blocks::setRegister(deeper, "S", "0x6");

    const auto instance = HBSAddressing::createSubsystemInstance(*definition, *config);
    EXPECT_EQ("2", parameter(*instance, "SPEED"));
    const HABMBlock& configured = *instance->getSubBlock("u0");
    EXPECT_EQ("9600", parameter(configured, "BAUD"));
    EXPECT_EQ("", parameter(*configured.getSubBlock("v0"), "LOST"));
    EXPECT_EQ("0x5", configured.findRegister("R", true)->getValue().getHexStringValue(0));
    EXPECT_EQ("0x6", configured.findRegister("v0/m/b/S", true)->getValue().getHexStringValue(0));
    EXPECT_EQ("", parameter(*definition, "SPEED"));
    EXPECT_EQ("0x1", u0.findRegister("R", true)->getValue().getHexStringValue(0));
    EXPECT_EQ(Names{"u0"}, subBlocks(*instance));
}

/// Everything below u0 is decided by u0's register ON, also what bears a name of u1's register.
std::unique_ptr<HABMBlock> switchable() {
    auto block = blocks::top("switchable");
    const std::string on = "register_value(ON) == 1";
    for (const char* name : {"u0", "u1"}) {
        HABMBlock& first = blocks::sub(*block, name, "register_value(ALIVE) == 1");
        blocks::setRegister(first, "ALIVE", "0x1");
        blocks::setRegister(first, "ON", "0x1");
        blocks::interface(first, "A", "slave", on);
        HABMBlock& second = blocks::sub(first, "second", on);
        blocks::setRegister(second, "ON", "0x1");
        blocks::interface(blocks::sub(first, "kept"), "B", "slave", on);
        HABMBlock& third = blocks::sub(*first.getSubBlock("kept"), "third", "0");
        blocks::interface(third, "C", "slave", "0");
        blocks::interface(*block, std::string("S_") + name, "slave", "0");
        blocks::connect(*block, std::string("/S_") + name, std::string("/") + name + "/A");
    }
    return block;
}

std::unique_ptr<HABMBlock> configOf(const std::string& instance, const std::string& reg) {
    auto config = HABMBlock::createTopBlock("design");
    blocks::setRegister(blocks::sub(blocks::sub(*config, "inst"), instance), reg, "0x0");
    return config;
}

TEST(Instances, DecideTwoLevelsUnderTheNameOfTheFirst) {
    const auto instance =
        HBSAddressing::createSubsystemInstance(*switchable(), *configOf("u0", "ON"));
    const HABMBlock& off = *instance->getSubBlock("u0");
    EXPECT_EQ(Names{}, interfaces(off));
    EXPECT_EQ(Names{"kept"}, subBlocks(off));
    EXPECT_EQ(Names{}, interfaces(*off.getSubBlock("kept")));
    EXPECT_EQ(Names{"C"}, interfaces(*off.getSubBlock("kept")->getSubBlock("third")));
    const HABMBlock& on = *instance->getSubBlock("u1");
    EXPECT_EQ(Names{"A"}, interfaces(on));
    EXPECT_EQ((Names{"second", "kept"}), subBlocks(on));
}

TEST(Instances, LoseWhatLedToADisabledBlock) {
    const auto instance =
        HBSAddressing::createSubsystemInstance(*switchable(), *configOf("u1", "ALIVE"));
    EXPECT_EQ(Names{"u0"}, subBlocks(*instance));
    EXPECT_EQ(Names{"S_u0"}, interfaces(*instance)) << "its own expression isn't decided";
    EXPECT_EQ(1U, instance->getInterfaceConnections().size());
}

TEST(Instances, PrunePortConnectionsButNotPorts) {
    const auto definition = blocks::top("ports");
    HABMBlock& u0 = blocks::sub(*definition, "u0", "0");
    u0.createPort("clk", false);
    for (const char* name : {"clk", "a", "b", "loose"})
        definition->createPort(name, false);
    const auto connect = [&](const std::string& name, const std::string& source,
                             const std::string& target) {
        HABMPortConnection& made = *definition->createPortConnection(name, false);
        made.setSourcePath(source);
        made.setTargetPaths({target});
    };
    connect("dead", "/clk", "/u0/clk");
    connect("loose", "/a", "/b"); // bears the name of an unconnected port
    const auto instance =
        HBSAddressing::createSubsystemInstance(*definition, *HABMBlock::createTopBlock("design"));
    EXPECT_EQ((Names{"clk", "a", "b", "loose"}),
              names(instance->getPorts(), &HABMPort::getPortName));
    EXPECT_TRUE(instance->getPortConnections().empty());
}

Names files(const support::TempDir& folder) {
    Names found;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        found.push_back(entry.path().filename().string());
    std::sort(found.begin(), found.end());
    return found;
}

TEST(DebugFiles, AreNamedAfterTheConfigAndTheDefinition) {
    blocks::data.publish(*switchable());
    const auto config = configOf("u1", "ALIVE");
    const blocks::Debugging debugging;
    debugging.folder.write("helper.tcl", "set f [open seen w]; puts -nonewline $f $::u1::ALIVE\n"
                                         "close $f; set name list");
    const support::CapturedMessages messages;
    const HABMBlock* const definition =
        HBSAddressing::createSubsystemDefinition(blocks::vlnv("switchable"), "debug");
    ASSERT_NE(nullptr, definition);
    const auto instance = HBSAddressing::createSubsystemInstance(*definition, *config);
    rapidjson::Document document;
    HBSAddressing::generateSurfaceLevelAddressing(*instance, document);

    EXPECT_EQ((Names{"design_hbs_config.bmj", "design_hbs_instance.bmj", "helper.tcl", "seen",
                     "switchable_addressing.json", "switchable_hbs_definition.bmj"}),
              files(debugging.folder));
    EXPECT_EQ("0x0", support::readFile(debugging.folder.file("seen")));
    const auto written =
        HABMBlock::readTopBlock(HUTFile(debugging.folder.file("design_hbs_instance.bmj")));
    ASSERT_NE(nullptr, written);
    EXPECT_EQ(subBlocks(*instance), subBlocks(*written));
    EXPECT_EQ(0U, messages.all().size());
}

} // namespace
