// Components of every edition: what their registers come out as, and the faults that are found.

#include <gmock/gmock.h>

#include "workbench/ipxact_texts.h"

namespace {

using namespace ipxact_texts;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using tq::ipxact::Access;
using tq::ipxact::hexText;

std::string registerText(const std::string& name, const std::string& offset,
                         const std::string& rest = "", const std::string& size = "32") {
    return "<register><name>" + name + "</name>" + "<addressOffset>" + offset +
           "</addressOffset><size>" + size + "</size>" + rest + "</register>\n";
}

std::string fieldText(const std::string& name, int offset, int width,
                      const std::string& rest = "") {
    return "<field><name>" + name + "</name><bitOffset>" + std::to_string(offset) +
           "</bitOffset><bitWidth>" + std::to_string(width) + "</bitWidth>" + rest + "</field>\n";
}

class EveryEdition : public testing::TestWithParam<const char*> {};

TEST_P(EveryEdition, GivesAddressesWidthsAccessesAndResets) {
    Reading reading;
    read(reading,
         inBlock(registerText("ctrl", "0x4", "<access>read-only</access>" + fieldText("go", 3, 2)) +
                     registerText("data", "8", "<reset><value>0x2A</value></reset>", "16"),
                 GetParam()));
    ASSERT_THAT(reading.addresses(), ElementsAre("m/b/ctrl 0x1004", "m/b/data 0x1008"));
    EXPECT_EQ(Access::ReadOnly, reading.registers[0].access);
    EXPECT_EQ(Access::ReadWrite, reading.registers[1].access);
    EXPECT_EQ(16, *reading.registers[1].width);
    EXPECT_EQ(42, *reading.registers[1].reset);
    ASSERT_EQ(1U, reading.registers[0].fields.size());
    EXPECT_EQ(3, *reading.registers[0].fields[0].bitOffset);
    EXPECT_EQ(Access::ReadOnly, reading.registers[0].fields[0].access);
    EXPECT_THAT(reading.ids(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Namespaces, EveryEdition,
                         testing::Values(kSpirit14, kSpirit15, k2009, k2014, k2022));

TEST(Component, IsKnownByItsNamespaceWhateverThePrefix) {
    Reading reading;
    read(reading, "<?xml version='1.0' encoding='windows-1252'?><!DOCTYPE a [<!ENTITY e 'TX'>]>"
                  "<q:component xmlns:q='" +
                      std::string(k2014) +
                      "' xmlns:o='urn:other'><q:name>c</q:name><q:memoryMaps><q:memoryMap>"
                      "<q:name>m\xe9</q:name><o:addressBlock/><q:addressBlock><q:name>b</q:name>"
                      "<q:baseAddress>0</q:baseAddress><q:register><q:vendorExtensions><q:name/>"
                      "</q:vendorExtensions><q:name>&e;_CTRL</q:name>"
                      "<q:addressOffset>4</q:addressOffset></q:register></q:addressBlock>"
                      "</q:memoryMap></q:memoryMaps></q:component>");
    EXPECT_THAT(reading.addresses(), ElementsAre("m\xc3\xa9/b/TX_CTRL 0x4"));
    EXPECT_EQ(2U, reading.component.leftOut);
}

TEST(Component, UnrollsArraysAndRegisterFiles) {
    Reading reading;
    read(reading,
         inBlock("<registerFile><name>ch</name><dim>2</dim><addressOffset>0x100</addressOffset>"
                 "<range>0x20</range>" +
                 registerText("d", "4", "<dim>2</dim><dim>2</dim>", "16") + "</registerFile>"));
    EXPECT_THAT(reading.addresses(),
                ElementsAre("m/b/ch[0]/d[0][0] 0x1104", "m/b/ch[0]/d[0][1] 0x1106",
                            "m/b/ch[0]/d[1][0] 0x1108", "m/b/ch[0]/d[1][1] 0x110A",
                            "m/b/ch[1]/d[0][0] 0x1124", "m/b/ch[1]/d[0][1] 0x1126",
                            "m/b/ch[1]/d[1][0] 0x1128", "m/b/ch[1]/d[1][1] 0x112A"));
    Reading strided;
    read(strided,
         inBlock(registerText("d", "0", "<array><dim>2</dim><stride>16</stride></array>"), k2022));
    EXPECT_THAT(strided.addresses(), ElementsAre("m/b/d[0] 0x1000", "m/b/d[1] 0x1010"));
}

TEST(Component, PlacesBanksAndRemapsAndAlternates) {
    const auto block = [](const std::string& name, const std::string& registers) {
        return "<addressBlock><name>" + name + "</name><range>16</range><width>8</width>" +
               registers + "</addressBlock>";
    };
    const std::string two =
        block("x", registerText("r", "1", "", "8")) + block("y", registerText("s", "1", "", "8"));
    const auto bank = [&](const std::string& alignment) {
        return "<bank bankAlignment='" + alignment + "'><name>" + alignment +
               "</name><baseAddress>0x100</baseAddress>" + two + "</bank>";
    };
    Reading reading;
    read(reading,
         component(
             "<memoryMaps><memoryMap><name>m</name>" + bank("serial") + bank("parallel") +
             "<memoryRemap state='boot'><name>low</name><addressBlock><name>b</name>"
             "<baseAddress>0</baseAddress>" +
             registerText("r", "0",
                          "<alternateRegisters><alternateRegister><name>alt</name>"
                          "<alternateGroups><alternateGroup>test</alternateGroup></alternateGroups>"
                          "</alternateRegister></alternateRegisters>") +
             "</addressBlock></memoryRemap></memoryMap></memoryMaps>"));
    EXPECT_THAT(reading.addresses(),
                ElementsAre("m/serial/x/r 0x101", "m/serial/y/s 0x111", "m/parallel/x/r 0x102",
                            "m/parallel/y/s 0x103", "m/low/b/r 0x0", "m/low/b/r/alt 0x0"));
    EXPECT_EQ("boot, test", reading.registers.back().modes);
    EXPECT_EQ(32, *reading.registers.back().width);
}

TEST(Component, ComputesParametersByIdAndDependency) {
    Reading reading;
    read(reading,
         component("<memoryMaps><memoryMap><name>m</name><addressBlock><name>b</name>"
                   "<baseAddress>base * 2</baseAddress>" +
                   registerText("r", "'h4", fieldText("f", 0, 4) + fieldText("g", 4, 4)) +
                   "</addressBlock></memoryMap></memoryMaps><parameters><parameter "
                   "parameterId='base'><name>b</name><value>half &lt;&lt; 1</value></parameter>"
                   "<parameter parameterId='half'><name>h</name><value>'h100</value>"
                   "</parameter></parameters>"));
    EXPECT_THAT(reading.addresses(), ElementsAre("m/b/r 0x404"));
    Reading old;
    read(old, component("<memoryMaps><memoryMap><name>m</name><addressBlock><name>b</name>"
                        "<baseAddress resolve='dependent' dependency=\"id('s') * 16\">0"
                        "</baseAddress>" +
                            registerText("r", "4") +
                            "</addressBlock></memoryMap></memoryMaps><parameters><parameter>"
                            "<name>s</name><value id='s' resolve='user'>4K</value></parameter>"
                            "</parameters>",
                        k2009));
    EXPECT_THAT(old.addresses(), ElementsAre("m/b/r 0x10004"));
}

TEST(Component, ShowsWhatCantBeComputedAsUnknown) {
    Reading reading;
    read(reading, inBlock(registerText("a", "nowhere + 4") + registerText("b", "loop") +
                          "<parameters><parameter parameterId='loop'><name>l</name>"
                          "<value>loop + 1</value></parameter></parameters>"));
    EXPECT_THAT(reading.addresses(), ElementsAre("m/b/a ?", "m/b/b ?"));
    ASSERT_THAT(reading.ids(), ElementsAre("unknown-value", "unknown-value"));
    const tq::Diagnostic& first = reading.findings.all()[0];
    EXPECT_EQ(3U, first.place.line);
    EXPECT_EQ(25U, first.place.column);
    EXPECT_THAT(first.text, HasSubstr("there is no parameter \"nowhere\""));
    EXPECT_THAT(reading.findings.all()[1].text, HasSubstr("depends on itself"));
}

TEST(Component, ReadsPoliciesAndResetsOfFields) {
    Reading reading;
    read(reading,
         inBlock(
             registerText("r", "0",
                          "<accessPolicies><accessPolicy><access>write-only</access></accessPolicy>"
                          "</accessPolicies>" +
                              fieldText("a", 0, 4,
                                        "<resets><reset resetTypeRef='SOFT'><value>1</value>"
                                        "</reset><reset><value>5</value></reset></resets>") +
                              fieldText("b", 8, 4,
                                        "<fieldAccessPolicies><fieldAccessPolicy>"
                                        "<access>read-only</access><readAction>clear</readAction>"
                                        "</fieldAccessPolicy></fieldAccessPolicies><resets><reset>"
                                        "<value>'hA</value></reset></resets>")),
             k2022));
    ASSERT_EQ(1U, reading.registers.size());
    EXPECT_EQ(Access::WriteOnly, reading.registers[0].access);
    EXPECT_EQ(0xA05, *reading.registers[0].reset);
    EXPECT_EQ(Access::ReadOnly, reading.registers[0].fields[1].access);
    EXPECT_EQ("clear", reading.registers[0].fields[1].source->readAction);
}

TEST(Component, RemarksElementsThatTheStandardHasnt) {
    Reading reading;
    read(reading, inBlock("<register><name>r</name><adressOffset>4</adressOffset></register>"));
    ASSERT_THAT(reading.ids(), ElementsAre("unknown-element"));
    EXPECT_EQ("<addressOffset>", reading.findings.all()[0].expected);
    EXPECT_THAT(reading.addresses(), ElementsAre("m/b/r ?"));
}

struct Fault {
    const char* id;
    std::string text;
};

class FaultOf : public testing::TestWithParam<Fault> {};

TEST_P(FaultOf, IsFoundWithItsPlace) {
    Reading reading;
    read(reading, GetParam().text);
    ASSERT_THAT(reading.ids(), ElementsAre(GetParam().id));
    EXPECT_LT(1U, reading.findings.all()[0].place.line);
    EXPECT_NE(0U, reading.findings.all()[0].place.column);
}

std::string interfaces(const std::string& content) {
    return component("<busInterfaces><busInterface><name>i</name>" + content +
                     "</busInterface></busInterfaces>");
}

INSTANTIATE_TEST_SUITE_P(
    Faults, FaultOf,
    testing::Values(
        Fault{"field-overlap",
              inBlock(registerText("r", "0", fieldText("a", 0, 4) + fieldText("b", 3, 4)))},
        Fault{"field-beyond-register", inBlock(registerText("r", "0", fieldText("a", 30, 4)))},
        Fault{"register-overlap", inBlock(registerText("r", "0") + registerText("s", "2"))},
        Fault{"reset-too-wide",
              inBlock(registerText("r", "0", "<reset><value>0x100</value></reset>", "8"))},
        Fault{"beyond-block", inBlock(registerText("r", "0xFF8", "<dim>3</dim>"))},
        Fault{"duplicate-name", inBlock(registerText("r", "0") + registerText("r", "4"))},
        Fault{"dangling-reference", interfaces("<slave><memoryMapRef memoryMapRef='m'/></slave>")},
        Fault{"dangling-reference",
              interfaces("<slave><transparentBridge masterRef='none'/></slave>")},
        Fault{"unknown-word", inBlock(registerText("r", "0", "<access>sometimes</access>"))}));

TEST(Component, LetsOneReadWhereTheOtherWrites) {
    const auto with = [](const std::string& access) { return "<access>" + access + "</access>"; };
    Reading reading;
    read(reading, inBlock(registerText("in", "0", with("read-only")) +
                          registerText("out", "0", with("write-only")) +
                          registerText("f", "4",
                                       fieldText("a", 0, 8, with("read-only")) +
                                           fieldText("b", 0, 8, with("write-only")))));
    EXPECT_THAT(reading.ids(), IsEmpty());
}

std::string errorOf(const std::string& text) {
    try {
        Reading reading;
        read(reading, text);
        return "";
    } catch (const tq::InputError& error) {
        const std::string what = error.what();
        return what.substr(what.find("r.xml"));
    }
}

TEST(Component, IsRefusedWithItsPlace) {
    EXPECT_THAT(errorOf("<a>\n<b></a>"), HasSubstr("r.xml:2:"));
    EXPECT_THAT(errorOf("\n<a/>"), HasSubstr("r.xml:2:1: error: <a> of the namespace \"\""));
    EXPECT_THAT(errorOf("<!DOCTYPE a SYSTEM 'http://x/y.dtd' [<!ENTITY e SYSTEM '/etc/passwd'>]>"
                        "<a>&e;</a>"),
                HasSubstr("is not read"));
    std::string bomb = "<!DOCTYPE a [<!ENTITY e0 '0123456789'>";
    for (int i = 1; i < 12; ++i) {
        bomb += "<!ENTITY e" + std::to_string(i) + " '";
        for (int k = 0; k < 10; ++k)
            bomb += "&e" + std::to_string(i - 1) + ";";
        bomb += "'>";
    }
    EXPECT_THAT(errorOf(bomb + "]><a>&e11;</a>"), HasSubstr("error"));
    std::string deep;
    for (int i = 0; i < 100'000; ++i)
        deep += "<a>";
    EXPECT_THAT(errorOf(deep), HasSubstr("levels of elements"));
}

TEST(Component, BoundsWhatAFewBytesCanStandFor) {
    Reading reading;
    read(reading, inBlock(registerText("r", "0", "<dim>1000000000</dim>" + fieldText("f", 0, 1))));
    EXPECT_GE(tq::ipxact::kMostUnrolled + 1, reading.registers.size());
    EXPECT_THAT(reading.ids(), ElementsAre("beyond-block"));
}

} // namespace
