// Exported maps, read by the tools that they are for: compilers, the linker, the devicetree
// compiler and a validating XML reader.

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "support/support.h"
#include "workbench/addressing/export/MapExport.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using tq::exportMap;
using tq::MapFormat;

/// Names that no format takes as they are or that fall together, words that formats keep for
/// themselves, addresses beyond 32 bits, overlaps, and what can't be exported.
tq::MapModel awkwardModel() {
    using Access = tq::MapAccess;
    using Usage = tq::MapUsage;
    tq::MapModel model{"so c-1", "ends */ here, and \"quotes\"", {}};
    model.blocks = {
        {"uart0/map/regs",
         "first",
         0xFF000000,
         0x1000,
         Usage::Register,
         true,
         {{"CTRL",
           "a */ b",
           0,
           32,
           Access::ReadWrite,
           3,
           std::nullopt,
           {{"EN", "", 0, 1, Access::ReadWrite}, {"MODE", "", 4, 40, Access::ReadOnly}}},
          {"FI.FO", "", 4, 8, Access::ReadOnly, std::nullopt, 1, {}},
          {"FI-FO", "", 6, 16, Access::WriteOnly, std::nullopt, std::nullopt, {}},
          {"WIDE", "", 8, 64, Access::ReadWrite, 0xFFFFFFFFFFFFFFFF, std::nullopt, {}},
          {"HUGE", "", 16, 128, Access::ReadWrite, std::nullopt, std::nullopt, {}},
          {"NONE", "", 32, 0, Access::ReadWrite, std::nullopt, std::nullopt, {}}}},
        {"uart0/other/regs", "", 0xFF000000, 0x10, Usage::Register, true, {}},
        {"0/\xFF",
         "=cmd|x",
         0x8,
         0x18,
         Usage::Register,
         true,
         {{"reg", "", 0, 32, Access::ReadWrite, 0, 0, {}},
          {"field", "", 0, 32, Access::ReadWrite, 0, 0, {}}}},
        {"off", "a,b", 0xFF000000, 0x1000, Usage::Register, false, {}},
        {"ORIGIN", "", 0x0, 0x1000, Usage::Memory, true, {}},
        {"ram/m/low", "", 0x80000000, 0x80000000, Usage::Memory, true, {}},
        {"ram/m/high", "", 0x8000000000000000, 0x8000000000000000, Usage::Memory, true, {}},
        {"ram/m/empty", "", 0x5000, 0, Usage::Memory, true, {}}};
    return model;
}

struct Exported {
    std::string text;
    std::vector<std::string> ids;
};

Exported exported(MapFormat format) {
    Exported result;
    result.text = exportMap(awkwardModel(), format,
                            [&](const tq::Diagnostic& note) { result.ids.push_back(note.id); });
    return result;
}

/// Runs a reader in a folder that holds the exported file.
void expectAccepted(MapFormat format, const std::string& name, const std::string& command,
                    const std::string& source = "") {
    const support::TempDir folder;
    folder.write(name, exported(format).text);
    folder.write("main.c", source);
    folder.write("main.cpp", source);
    const auto result = support::run("cd " + folder.path().string() + " && " + command);
    EXPECT_EQ(0, result.status) << command;
    EXPECT_EQ("", result.output + result.error) << command;
}

TEST(MapExport, MakesHeadersThatCompilersTakeWithoutAWarning) {
    const std::string source = "#include \"map.h\"\n#include \"map.h\"\n"
                               "typedef char check[UART0_MAP_REGS_FI_FO_2_ADDR == 0xFF000006 &&\n"
                               "    UART0_MAP_REGS_CTRL_EN_MASK == 1 &&\n"
                               "    RAM_HIGH_BASE == 1ull << 63 ? 1 : -1];\n"
                               "int main(void) { return sizeof(check) != 1; }\n";
    const std::string strict = " -pedantic -Wall -Wextra -Werror -o a.out && ./a.out";
    expectAccepted(MapFormat::CHeader, "map.h", "gcc -std=c11 main.c" + strict, source);
    expectAccepted(MapFormat::CHeader, "map.h", "g++ -std=c++17 main.cpp" + strict, source);
    EXPECT_THAT(exported(MapFormat::CHeader).ids, testing::Contains("name-clash"));
}

TEST(MapExport, MakesRegionsAndSymbolsThatTheLinkerTakes) {
    expectAccepted(MapFormat::LinkerScript, "map.ld",
                   "gcc -c main.c && ld -T map.ld main.o -e main -o a.out && nm a.out | grep -q "
                   "'ff000000 A uart0_map_regs_CTRL$'",
                   "int main(void) { return 0; }\n");
    EXPECT_THAT(exported(MapFormat::LinkerScript).text, HasSubstr("    ORIGIN_2 (rwx) : ORIGIN"));
}

TEST(MapExport, MakesDevicetreesThatCompileWithoutAWarning) {
    expectAccepted(MapFormat::Devicetree, "map.dts", "dtc -O dtb -o map.dtb map.dts");
    const std::string wide = exported(MapFormat::Devicetree).text;
    EXPECT_THAT(wide, HasSubstr("#address-cells = <2>;"));
    EXPECT_THAT(wide, HasSubstr("reg = <0x80000000 0x0 0x80000000 0x0>;"));
    tq::MapModel narrow = awkwardModel();
    narrow.blocks.resize(1);
    narrow.blocks[0].isOn = false;
    EXPECT_THAT(exportMap(narrow, MapFormat::Devicetree), HasSubstr("status = \"disabled\";"));
    EXPECT_THAT(exportMap(narrow, MapFormat::Devicetree),
                HasSubstr("ranges = <0xFF000000 0xFF000000 0x1000>;"));
}

TEST(MapExport, MakesSvdThatItsSchemaTakes) {
    expectAccepted(
        MapFormat::Svd, "map.svd",
        "xmllint --noout --nonet --schema " TQ_SOURCE_DIR
        "/tests/workbench/CMSIS-SVD-subset.xsd map.svd 2>&1 | grep -v validates || true");
    EXPECT_THAT(exported(MapFormat::Svd).text, HasSubstr("<name>FI_FO_2</name>"));
}

TEST(MapExport, MakesSystemRdlWithoutItsWordsAndWithoutOverlaps) {
    const Exported rdl = exported(MapFormat::SystemRdl);
    EXPECT_THAT(rdl.text, HasSubstr("} FI_FO @ 0x4;"));
    EXPECT_THAT(rdl.text, HasSubstr("hw = rw; } MODE[31:4] = 0x0;"));
    EXPECT_THAT(rdl.text, HasSubstr("} field_2 @ 0x0;"));
    EXPECT_THAT(rdl.text, Not(HasSubstr("} reg ")));
    EXPECT_THAT(rdl.text, HasSubstr("desc = \"ends * / here, and \\\"quotes\\\"\";"));
    EXPECT_EQ(4, std::count(rdl.ids.begin(), rdl.ids.end(), "not-exported"));
}

TEST(MapExport, KeepsCellsAndRowsApart) {
    const std::string csv = exported(MapFormat::Csv).text;
    EXPECT_THAT(csv, HasSubstr("block,0xFF000000,0x1000,off,,register,,,,,off,\"a,b\"\r\n"));
    EXPECT_THAT(csv, HasSubstr(",0/\uFFFD,"));
    EXPECT_THAT(csv, HasSubstr(",'=cmd|x\r\n"));
    EXPECT_THAT(exported(MapFormat::Markdown).text, HasSubstr("| =cmd\\|x |\n"));
}

TEST(MapExport, TellsFormatsByTheEndings) {
    EXPECT_EQ(MapFormat::Devicetree, tq::mapFormatOf("a/map.dtsi"));
    EXPECT_EQ(std::nullopt, tq::mapFormatOf("a/map.txt"));
    EXPECT_EQ(".h, .ld, .dts, .dtsi, .rdl, .svd, .csv, .md", tq::mapFormatEndings());
}

} // namespace
