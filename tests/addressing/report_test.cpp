// The report: every key, their order, and the schema that describes them.

#include "addressing/HBSAddressing.h"

#include <rapidjson/schema.h>

#include "blocks.h"

namespace {

std::string text(const rapidjson::Value& value) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    value.Accept(writer);
    return buffer.GetString();
}

/// Where a document breaks the published schema; empty if it doesn't.
std::string schemaFault(const rapidjson::Document& document) {
    rapidjson::Document schemaText;
    schemaText.Parse(
        support::readFile(TQ_SOURCE_DIR "/schemas/addressing_report.schema.json").c_str());
    EXPECT_FALSE(schemaText.HasParseError());
    const rapidjson::SchemaDocument schema(schemaText);
    rapidjson::SchemaValidator validator(schema);
    if (document.Accept(validator))
        return "";
    rapidjson::StringBuffer place;
    validator.GetInvalidDocumentPointer().StringifyUriFragment(place);
    return std::string(place.GetString()) + " " + validator.GetInvalidSchemaKeyword();
}

std::string report(const HABMBlock& block) {
    rapidjson::Document document;
    document.SetArray();
    HBSAddressing::generateSurfaceLevelAddressing(block, document);
    EXPECT_EQ("", schemaFault(document));
    return text(document);
}

/// A space at /cpu/s with the segments "low" and "high".
HABMAddrSpace& space(HABMBlock& cpu) {
    HABMAddrSpace& made = *cpu.createAddrSpace("s");
    made.setRange(HABMAddrValue("4G"));
    for (const auto& [name, start] : {std::pair{"low", "0x0"}, {"high", "0x80000000"}}) {
        HABMAddrSegment& segment = *made.createAddrSegment(name);
        segment.setAperture({HABMAddrValue(start), HABMAddrValue("2G")});
        segment.setMemoryType(HABMAddrSegment::encodeMemoryType("data"));
    }
    return made;
}

HABMAddrAssign& assign(HABMBlock& top, const std::string& name, const HABMAddrBlock* block,
                       const HABMAddrSegment* segment) {
    HABMAddrAssign& made = *top.createAddrAssign(name);
    made.setSourceAddrBlock(block);
    made.setTargetAddrSegment(segment);
    made.setOffset(HABMAddrValue("0xff00"));
    made.setRange(HABMAddrValue("0x1800"));
    return made;
}

TEST(Report, OfNothingIsAnEmptyObject) {
    const auto block = blocks::top("empty");
    EXPECT_EQ("{}", report(*block));
    blocks::addressBlock(*block, "own", "b", "0x0", "0x1000");
    block->createAddrSpace("own");
    EXPECT_EQ("{}", report(*block)) << "the subsystem's own maps and spaces aren't shown";
}

TEST(Report, ListsMapsOfEveryDepthWithTheirBlocks) {
    const auto block = blocks::top("maps");
    HABMBlock& b = blocks::sub(blocks::sub(*block, "a"), "b");
    blocks::addressBlock(b, "m", "regs", "0x100", "0x1000");
    HABMAddrBlock& ram = blocks::addressBlock(b, "m", "ram", "0xff00", "0x1800");
    ram.setMemoryType(HABMAddrBlock::encodeMemoryType("memory"));
    b.getMemoryMap("m")->setRange(HABMAddrValue("64K"));
    EXPECT_EQ(
        R"({"components":{"maps":{"addressing":{"memory_maps":{"a_b_m":{"name":"a_b_m",)"
        R"("display_name":"a/b/m","range":"64K","width":"16","address_blocks":{)"
        R"("regs":{"name":"regs","display_name":"a/b/m/regs","base_address":"0x100","range":"4K",)"
        R"("width":"12","usage":"register","offset_base_param":"C_S_AXI_BASEADDR",)"
        R"("offset_high_param":"C_S_AXI_HIGHADDR"},)"
        R"("ram":{"name":"ram","display_name":"a/b/m/ram","base_address":"0xFF00","range":"6K",)"
        R"("width":"13","usage":"memory","offset_base_param":"C_S_AXI_BASEADDR",)"
        R"("offset_high_param":"C_S_AXI_HIGHADDR"}}}}}}}})",
        report(*block));
}

TEST(Report, ListsInterfacesWithWhatTheyReach) {
    const auto block = blocks::top("ports");
    HABMBlock& cpu = blocks::sub(*block, "cpu");
    space(cpu);
    for (const char* name : {"M1", "M0"})
        blocks::interface(cpu, name, "master").setAddrSpaceRef("s");
    HABMBlock& ram = blocks::sub(*block, "ram");
    blocks::addressBlock(ram, "m", "b", "0x0", "0x1000");
    blocks::interface(ram, "S", "slave").setMemoryMapRef("m");
    blocks::interface(*block, "OUT", "master").setInterfaceVlnv("v:l:axi:1.0");
    blocks::interface(*block, "IN", "slave");
    blocks::interface(*block, "LOOSE", "system");
    blocks::connect(*block, "/cpu/M1", "/OUT");
    blocks::connect(*block, "/cpu/M0", "/OUT");
    blocks::connect(*block, "/IN", "/ram/S");
    const std::string whole = report(*block);
    const std::string ports = whole.substr(0, whole.find(R"(,"addressing")"));
    EXPECT_EQ(
        R"({"components":{"ports":{"interface_ports":{)"
        R"("OUT":{"mode":"master","vlnv":"v:l:axi:1.0","address_space_refs":["cpu_s","cpu_s"]},)"
        R"("IN":{"mode":"slave","vlnv":"","memory_map_refs":["ram_m"]},)"
        R"("LOOSE":{"mode":"system","vlnv":"","memory_map_refs":[]}})",
        ports);
    cpu.getInterface("M0")->setAddrSpaceRef("gone");
    EXPECT_NE(std::string::npos, report(*block).find(R"("address_space_refs":["cpu_s"])"));
}

TEST(Report, ShowsSegmentsThroughInterfacesAndAssignedBlocks) {
    const auto block = blocks::top("spaces");
    HABMBlock& cpu = blocks::sub(*block, "cpu");
    HABMAddrSpace& s = space(cpu);
    blocks::interface(cpu, "M", "master").setAddrSpaceRef("s");
    for (const char* name : {"Z", "A"}) {
        blocks::interface(*block, name, "master");
        blocks::connect(*block, "/cpu/M", std::string("/") + name);
    }
    const HABMAddrBlock& ram =
        blocks::addressBlock(blocks::sub(*block, "ram"), "m", "b", "0x0", "0x1000");
    assign(*block, "one", &ram, s.getAddrSegment("low"));
    assign(*block, "nowhere", nullptr, s.getAddrSegment("low"));
    HABMAddrAssign& internal = assign(*block, "two", &ram, s.getAddrSegment("high"));
    internal.setAssignType(HABMAddrAssign::Internal);
    cpu.setAttribute("VISIBILE", "FALSE ", true);
    EXPECT_EQ(std::string::npos, report(*block).find("visible"));
    cpu.setAttribute("VISIBILE", "fAlse", true);
    const std::string whole = report(*block);
    const auto local = [](const std::string& port, const std::string& name, const char* base) {
        return '"' + port + "_" + name + R"(":{"name":")" + port + ":" + name +
               R"(","display_name":")" + name + R"(","base_address":")" + base +
               R"(","range":"2G","width":"31","usage":"data"})";
    };
    const std::string segment = R"("SEG_ram_m_b":{"address_block":"./ram_m/b","offset":"0xFF00",)"
                                R"("range":"6K","memory_type":"data")";
    EXPECT_EQ(R"("address_spaces":{"cpu_s":{"name":"cpu_s","display_name":"cpu/s","range":"4G",)"
              R"("width":"32","visible":false,"local_memory_map":{"address_blocks":{)" +
                  local("Z", "low", "0x0") + "," + local("A", "low", "0x0") + "," +
                  local("Z", "high", "0x80000000") + "," + local("A", "high", "0x80000000") +
                  R"(}},"segments":{)" + segment + "}," + segment +
                  R"(,"is_internal":"true"}}}}}}}})",
              whole.substr(whole.find("\"address_spaces\"")));
}

} // namespace
