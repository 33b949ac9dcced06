// Register values in Tcl, expressions decided from them, and names that mustn't become commands.

#include "addressing/Enablement.h"

#include <clocale>
#include <optional>

#include "blocks.h"

namespace {

using namespace hbs_addressing;

const std::string kTclError = "Caught unexpected Tcl error: %s\n";

/// The result of a script; an error fails the test.
std::string value(const TclInterpreter& tcl, const std::string& script) {
    std::string result;
    EXPECT_TRUE(evalTcl(tcl.get(), script, result)) << script;
    return result;
}

TEST(EvalTcl, ReportsErrorsWithTheirTraceInTheTclScope) {
    const TclInterpreter tcl;
    const support::CapturedMessages messages;
    std::string result = "old";
    EXPECT_TRUE(evalTcl(tcl.get(), "", result));
    EXPECT_EQ("", result);
    EXPECT_TRUE(evalTcl(tcl.get(), "set a 7", result));
    EXPECT_EQ("7", result);
    EXPECT_FALSE(evalTcl(tcl.get(), "set nothing", result));
    EXPECT_EQ("", result);
    ASSERT_EQ(1U, messages.all().size());
    const ComMsg& message = messages.all().front();
    EXPECT_EQ(1, message.count);
    EXPECT_EQ("hbs", message.category);
    EXPECT_EQ("HBS.TCL", message.scope);
    EXPECT_EQ(0x1000000U, message.mask);
    EXPECT_EQ(kTclError, message.format);
    EXPECT_EQ("can't read \"nothing\": no such variable\n    while executing\n\"set nothing\"",
              message.arguments.at(0));
}

TEST(TclInterpreter, LeavesTheLocaleAlone) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    ASSERT_NE(nullptr, std::setlocale(LC_NUMERIC, "C.UTF-8"));
    const std::string set = std::setlocale(LC_ALL, nullptr);
    { const TclInterpreter tcl; }
    EXPECT_EQ(set, std::setlocale(LC_ALL, nullptr));
    std::setlocale(LC_ALL, before.c_str());
}

TEST(EvalEnablement, FollowsTheOrderOfTheRules) {
    const auto block = blocks::top("decisions");
    HABMBlock& inner = blocks::sub(*block, "u0");
    blocks::setRegister(inner, "ONE", "0x1");
    blocks::setRegister(inner, "WIDE", "0xffffffffffffffff");
    blocks::setRegister(inner, "NONE", "");
    struct Case {
        const char* expression;
        bool isTrue, isReported;
    };
    for (const auto& [expression, isTrue, isReported] :
         {Case{"", true, false}, Case{"1 == 1", true, false}, Case{"1 == 2", false, false},
          Case{"1 + 1", false, false}, Case{"get_nothing(", true, false},
          Case{" get_nothing(", true, true}, Case{"1 +", true, true},
          Case{"register_value(ONE)", true, false}, // expr makes a "1" of "0x1"
          Case{"register_value(  ONE) == 1", true, false},
          Case{"register_value(m/b/ONE) == 2", false, false},
          Case{"register_value(ONE ) == 2", true, true},
          Case{"register_value(ABSENT) == 1", true, true},
          Case{"register_value(NONE) || register_value(ONE) == 2", true, true},
          Case{"register_value(WIDE) == 18446744073709551615", true, false},
          // The second reference moved under the scan, so that Tcl meets it.
          Case{"register_value(ONE)==2 || register_value(ONE)==2", true, true},
          Case{"[string length {a}] == 2", false, false}}) {
        const TclInterpreter tcl;
        const support::CapturedMessages messages;
        EXPECT_EQ(isTrue, evalEnablement(tcl.get(), block.get(), "u0", expression)) << expression;
        for (const char* nowhere : {"", "u1"})
            EXPECT_TRUE(evalEnablement(tcl.get(), block.get(), nowhere, expression)) << expression;
        EXPECT_EQ(isReported ? 1U : 0U, messages.all().size()) << expression;
    }
}

/// A registers, deep: /a with A=0x1f and B, /a/b with C.
std::unique_ptr<HABMBlock> tree() {
    auto block = blocks::top("ns_top");
    blocks::setRegister(*block, "TOP", "0x7");
    HABMBlock& a = blocks::sub(*block, "a");
    blocks::setRegister(a, "A", "0x1f");
    blocks::setRegister(a, "B", "");
    blocks::setRegister(blocks::sub(a, "b"), "C", "0x2");
    blocks::sub(*block, "empty");
    return block;
}

TEST(LoadBlockNamespace, GivesEveryBlockItsRegisters) {
    const auto block = tree();
    const TclInterpreter tcl;
    const support::CapturedMessages messages;
    EXPECT_TRUE(loadBlockNamespace(tcl.get(), block.get(), "").has_value());
    EXPECT_EQ("TOP 0x7", value(tcl, "set ::registers"));
    EXPECT_EQ("0x7", value(tcl, "set ::TOP"));
    EXPECT_EQ("A 0x1F B 0x0", value(tcl, "set ::a::registers"));
    EXPECT_EQ("0x1F", value(tcl, "set ::a::A"));
    EXPECT_EQ("0x2", value(tcl, "dict get $::a::b::registers C"));
    EXPECT_EQ("1 0",
              value(tcl, "list [namespace exists ::empty] [info exists ::empty::registers]"));
    EXPECT_EQ(0U, messages.all().size());
}

TEST(LoadBlockNamespace, RunsTheScriptsOfChildrenBeforeTheirParents) {
    const auto block = tree();
    blocks::data.publishScript("a", "lappend ::order a; set twice [expr {2 * $A}]; set twice");
    blocks::data.publishScript("b", "lappend ::order b; error broken");
    blocks::data.publishScript("ns_top", "lappend ::order top; set ::order");
    const TclInterpreter tcl;
    const support::CapturedMessages messages;
    EXPECT_EQ("b a top", loadBlockNamespace(tcl.get(), block.get(), ""));
    EXPECT_EQ("62", value(tcl, "set ::a::twice"));
    EXPECT_EQ(1U, messages.all().size());
    for (const char* name : {"a", "b", "ns_top"})
        blocks::data.remove(name);
}

TEST(LoadBlockNamespace, LoadsNothingBelowABadVlnv) {
    const auto block = tree();
    block->getSubBlock("a")->setModuleVlnv("a:b:c");
    const TclInterpreter tcl;
    EXPECT_TRUE(loadBlockNamespace(tcl.get(), block.get(), "").has_value());
    EXPECT_EQ("0 1", value(tcl, "list [namespace exists ::a] [namespace exists ::empty]"));
    block->setModuleVlnv("");
    const TclInterpreter other;
    EXPECT_EQ(std::nullopt, loadBlockNamespace(other.get(), block.get(), ""));
    EXPECT_EQ("0", value(other, "info exists ::registers"));
}

/// Names that would run "set ::ran 1", or set something unintended, if they were quoted
/// badly.
TEST(HostileNames, OfInstancesAndRegistersAreReportedAndRunNothing) {
    for (const std::string& name :
         {std::string("[set ::ran 1]"), std::string("a b"), std::string("a;set ::ran 1"),
          std::string("a\nset ::ran 1"), std::string("$tcl_version"), std::string("a\\"),
          std::string("a{ b"), std::string("a\0b", 3), std::string("} ; set ::ran 1 ; {")})
        for (const bool isInstance : {true, false}) {
            const auto block = blocks::top("hostile");
            HABMBlock& inner = blocks::sub(*block, isInstance ? name : "u0");
            inner.setModuleVlnv(blocks::vlnv("u0"));
            blocks::setRegister(inner, isInstance ? "R" : name, "0x1");
            blocks::setRegister(blocks::sub(*block, "good"), "R", "0x2");
            const TclInterpreter tcl;
            const support::CapturedMessages messages;
            loadBlockNamespace(tcl.get(), block.get(), "");
            ASSERT_EQ(1U, messages.all().size()) << name;
            EXPECT_EQ(kTclError, messages.all().front().format);
            EXPECT_EQ("0 0", value(tcl, "list [info exists ::ran] [info exists ::u0::registers]"));
            EXPECT_EQ("0x2", value(tcl, "set ::good::R")) << "siblings are loaded all the same";
        }
}

TEST(HostileNames, ThatAreOneWordAreCarried) {
    const auto block = blocks::top("odd");
    HABMBlock& inner = blocks::sub(*block, "u}0]");
    for (const char* name : {"a{b", "c}d", "e\"f", "#g", "-h", "µ"})
        blocks::setRegister(inner, name, "0x3");
    const TclInterpreter tcl;
    const support::CapturedMessages messages;
    loadBlockNamespace(tcl.get(), block.get(), "");
    EXPECT_EQ(0U, messages.all().size());
    EXPECT_EQ("6", value(tcl, R"(dict size [set ::u\}0\]::registers])"));
    EXPECT_EQ("0x3", value(tcl, R"(set ::u\}0\]::e\"f)"));
}

TEST(ScriptPaths, MayHoldAnyCharacter) {
    const support::TempDir folder;
    for (const char* name : {"plain", "a b", "a]b", "a{b", "a}b", "}", "a[set ::ran 1]b", "a\"$b",
                             "a;set ::ran 1", "a\\", "a\nb", "#", "a { b"}) {
        const TclInterpreter tcl;
        const support::CapturedMessages messages;
        evalHelper(tcl.get(), folder.write(name, "set ::seen 1; set command list"));
        EXPECT_EQ(0U, messages.all().size()) << name;
        EXPECT_EQ("1 0", value(tcl, "list $::seen [info exists ::ran]")) << name;
    }
}

/// Tcl's encoding is that of the locale, and paths are bytes.
TEST(ScriptPaths, AreTheSameBytesInEachLocale) {
    const support::TempDir folder;
    for (const char* encoding : {"utf-8", "iso8859-1"}) {
        const TclInterpreter tcl;
        ASSERT_EQ(TCL_OK, Tcl_SetSystemEncoding(tcl.get(), encoding));
        evalHelper(tcl.get(), folder.write("\u00E4 \u20AC", "set ::seen 1; set command list"));
        EXPECT_EQ("1", value(tcl, "set ::seen")) << encoding;
    }
}

TEST(HostileExpressions, RunNoCommandBehindTheirEnd) {
    const auto block = blocks::top("hostile");
    blocks::setRegister(blocks::sub(*block, "u0"), "R", "0x1");
    const std::string deep(100000, '[');
    for (const std::string& text :
         {std::string("0} ; set ::ran 1 ; expr {0"), std::string("0}\nset ::ran 1 ;#"),
          std::string("0 \\{ } ; set ::ran 1 ; expr {0"),
          std::string("{\\{} eq {} } ; set ::ran 1 ; expr {0"),
          std::string("{\\\\} eq {} } ; set ::ran 1 ; expr {0"), std::string("{0"),
          std::string("0}"),
          "register_value(R)} ; set ::ran [set ::ran 1] ; {" + std::string(20, ' '), deep,
          "$a(" + deep, std::string("0\0} ;", 5)}) {
        const TclInterpreter tcl;
        const support::CapturedMessages messages;
        EXPECT_TRUE(evalEnablement(tcl.get(), block.get(), "u0", text)) << text.substr(0, 60);
        EXPECT_EQ(1U, messages.all().size());
        EXPECT_EQ("0", value(tcl, "info exists ::ran")) << text.substr(0, 60);
    }
}

} // namespace
