// CMSIS-SVD devices, and what is written of registers: exports, IP-XACT that reads back,
// definitions.

#include <gmock/gmock.h>

#include <random>

#include "blockmodel/HABM.h"
#include "workbench/ipxact/BlockImport.h"
#include "workbench/ipxact/ComponentWriter.h"
#include "workbench/ipxact/RegisterExport.h"
#include "workbench/ipxact_texts.h"

namespace {

using namespace ipxact_texts;
using namespace tq::ipxact;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string device(const std::string& peripherals) {
    return "<device><name>CHIP</name><size>32</size><access>read-write</access>"
           "<resetValue>0x55AA</resetValue><peripherals>\n" +
           peripherals + "</peripherals></device>\n";
}

std::string peripheral(const std::string& name, const std::string& base,
                       const std::string& registers) {
    return "<peripheral><name>" + name + "</name><baseAddress>" + base +
           "</baseAddress><addressBlock><offset>0</offset><size>0x400</size>"
           "<usage>registers</usage></addressBlock><registers>\n" +
           registers + "</registers></peripheral>\n";
}

std::string svdRegister(const std::string& name, const std::string& offset,
                        const std::string& rest = "", const std::string& attributes = "") {
    return "<register" + attributes + "><name>" + name + "</name><addressOffset>" + offset +
           "</addressOffset>" + rest + "</register>\n";
}

TEST(Svd, InheritsUnrollsAndDerives) {
    Reading reading;
    read(reading,
         device(peripheral(
                    "UART0", "0x40000000",
                    svdRegister("CR", "0",
                                "<size>8</size><fields><field><name>A</name><bitRange>[3:2]"
                                "</bitRange><access>read-only</access></field></fields>") +
                        svdRegister("CR2", "4", "", " derivedFrom='CR'") +
                        "<cluster><dim>2</dim><dimIncrement>0x10</dimIncrement><dimIndex>A,B"
                        "</dimIndex><name>CH%s</name><addressOffset>0x20</addressOffset>" +
                        svdRegister("D[%s]", "4", "<dim>2</dim><dimIncrement>8</dimIncrement>") +
                        "</cluster>") +
                "<peripheral derivedFrom='UART0'><name>UART1</name><baseAddress>0x40001000"
                "</baseAddress></peripheral>"));
    EXPECT_THAT(reading.ids(), IsEmpty());
    EXPECT_THAT(reading.addresses(),
                ElementsAre("CHIP/UART0/CR 0x40000000", "CHIP/UART0/CR2 0x40000004",
                            "CHIP/UART0/CHA/D[0] 0x40000024", "CHIP/UART0/CHA/D[1] 0x4000002C",
                            "CHIP/UART0/CHB/D[0] 0x40000034", "CHIP/UART0/CHB/D[1] 0x4000003C",
                            "CHIP/UART1/CR 0x40001000", "CHIP/UART1/CR2 0x40001004",
                            "CHIP/UART1/CHA/D[0] 0x40001024", "CHIP/UART1/CHA/D[1] 0x4000102C",
                            "CHIP/UART1/CHB/D[0] 0x40001034", "CHIP/UART1/CHB/D[1] 0x4000103C"));
    const ListedRegister& derived = reading.registers[1];
    EXPECT_EQ(8, *derived.width);
    EXPECT_EQ(0xAA, *derived.reset);
    ASSERT_EQ(1U, derived.fields.size());
    EXPECT_EQ(2, *derived.fields[0].bitOffset);
    EXPECT_EQ(2, *derived.fields[0].bitWidth);
    EXPECT_EQ(Access::ReadOnly, derived.fields[0].access);
}

TEST(Svd, ReportsWhatCantBeUsed) {
    Reading reading;
    read(reading, device(peripheral("P", "0x4000",
                                    svdRegister("R", "four") +
                                        svdRegister("S", "8", "", " derivedFrom='T'"))));
    EXPECT_THAT(reading.ids(), ElementsAre("unknown-value", "dangling-reference"));
    EXPECT_THAT(reading.addresses(), ElementsAre("CHIP/P/R ?", "CHIP/P/S 0x4008"));
    Reading loop;
    read(loop, device(peripheral("P", "0",
                                 svdRegister("R", "0", "", " derivedFrom='S'") +
                                     svdRegister("S", "4", "", " derivedFrom='R'"))));
    EXPECT_THAT(loop.ids(), testing::Contains("too-deep"));
}

/// Random registers, and beside their text what a reading has to give.
struct Sample {
    std::string text;
    std::vector<std::string> lines; ///< "path address width reset fields"
};

Sample sample(unsigned seed) {
    std::mt19937 dice(seed);
    const auto upTo = [&dice](unsigned most) { return static_cast<int>(dice() % most); };
    Sample made;
    int offset = 0;
    for (int i = 0; i < 20; ++i) {
        const int width = 8 << upTo(4), count = 1 + upTo(3);
        const std::string name = "r" + std::to_string(i);
        std::string fields, listed;
        unsigned long long reset = 0;
        for (int bit = upTo(3), k = 0; bit < width; ++k) {
            const int bits = std::min(1 + upTo(7), width - bit);
            const int value = upTo(1U << static_cast<unsigned>(bits));
            fields += "<field><name>f" + std::to_string(k) + "</name><bitOffset>" +
                      std::to_string(bit) + "</bitOffset><resets><reset><value>" +
                      std::to_string(value) + "</value></reset></resets><bitWidth>" +
                      std::to_string(bits) + "</bitWidth></field>";
            listed +=
                " f" + std::to_string(k) + "@" + std::to_string(bit) + "+" + std::to_string(bits);
            reset |= static_cast<unsigned long long>(value) << bit;
            bit += bits + upTo(3);
        }
        made.text += "<register><name>" + name + "</name>" +
                     (count == 1 ? "" : "<dim>" + std::to_string(count) + "</dim>") +
                     "<addressOffset>" + std::to_string(offset) + "</addressOffset><size>" +
                     std::to_string(width) + "</size>" + fields + "</register>\n";
        for (int k = 0; k < count; ++k)
            made.lines.push_back("m/b/" + name + (count == 1 ? "" : "[" + std::to_string(k) + "]") +
                                 " " + std::to_string(0x1000 + offset + k * width / 8) + " " +
                                 std::to_string(width) + " " +
                                 (listed.empty() ? "" : std::to_string(reset)) + listed);
        offset += count * width / 8 + upTo(3) * 8;
    }
    made.text = inBlock(made.text);
    return made;
}

std::vector<std::string> linesOf(const Reading& reading) {
    std::vector<std::string> lines;
    for (const ListedRegister& entry : reading.registers) {
        std::string line = entry.path + " " + decimalText(*entry.address) + " " +
                           decimalText(*entry.width) + " " +
                           (entry.reset ? decimalText(*entry.reset) : "");
        for (const ListedField& field : entry.fields)
            line += " " + field.name + "@" + decimalText(*field.bitOffset) + "+" +
                    decimalText(*field.bitWidth);
        lines.push_back(line);
    }
    return lines;
}

TEST(Registers, ComeOutAsAPlainModelSaysAndReadBackTheSame) {
    for (unsigned seed = 1; seed <= 30; ++seed) {
        const Sample made = sample(seed);
        Reading reading;
        read(reading, made.text);
        EXPECT_EQ(made.lines, linesOf(reading)) << made.text;
        EXPECT_THAT(reading.ids(), IsEmpty()) << made.text;
        for (const WrittenEdition edition : {WrittenEdition::Ieee2014, WrittenEdition::Ieee2022}) {
            Reading again;
            read(again, writeComponent(reading.component, edition, {}));
            EXPECT_EQ(made.lines, linesOf(again)) << seed;
        }
    }
}

TEST(Registers, AreExportedByTheFilesEnding) {
    Reading reading;
    read(reading, sample(1).text);
    EXPECT_THAT(exportComponent(reading.component, "c.h", {}), HasSubstr("#define"));
    EXPECT_THAT(exportComponent(reading.component, "c.xml", {}), HasSubstr("1685-2014"));
    EXPECT_THAT(exportComponent(reading.component, "c.2022.xml", {}), HasSubstr("1685-2022"));
    EXPECT_THROW((void)exportComponent(reading.component, "c.none", {}), tq::InputError);
    Reading svd;
    read(svd, exportComponent(reading.component, "c.svd", {}));
    EXPECT_EQ(reading.registers.size(), svd.registers.size());
}

TEST(Import, WritesADefinitionThatHoldsEveryRegister) {
    Reading reading;
    read(reading, sample(2).text);
    ImportSummary summary;
    tq::DiagnosticList findings;
    const auto block = importComponent(reading.component, summary, findings.sink());
    EXPECT_EQ("v:l:c:1", block->getModuleVlnv());
    EXPECT_EQ(reading.registers.size(), summary.registers);
    ASSERT_EQ(1U, findings.count());
    EXPECT_THAT(findings.all()[0].text, HasSubstr("fields of its registers have no place"));
    for (const ListedRegister& entry : reading.registers) {
        std::string name = entry.name;
        if (const auto mark = name.find('['); mark != std::string::npos)
            name = name.substr(0, mark) + "_" + name.substr(mark + 1, 1);
        const HABMRegister* const found = block->findRegister("m/b/" + name, false);
        ASSERT_NE(nullptr, found) << name;
        EXPECT_EQ(tq::ipxact::decimalText(*entry.width), std::to_string(found->getWidth()));
        EXPECT_EQ(HABMAddrValue(decimalText(*entry.address - 0x1000)), found->getOffset());
    }
    const auto tables = definitionTexts(*block);
    EXPECT_THAT(tables.at("addrblocks.txt"),
                HasSubstr("addrblock=b; memorymap=m; type=register; offset=0x1000; size=0x1000"));
}

} // namespace
