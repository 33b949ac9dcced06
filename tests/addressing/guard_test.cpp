// Scripts of hard blocks that would end, hang or change the process.

#include <fcntl.h>
#include <sys/stat.h>

#include <chrono>
#include <csignal>

#include "HPAParamMgr.h"
#include "addressing/Enablement.h"
#include "blocks.h"

namespace {

using namespace hbs_addressing;

const std::string kTimeLimit = "vorn.addressingTclTimeLimitMs";

/// Runs a script on an interpreter of its own; the error, or the result behind "ok ".
std::string outcome(const std::string& script) {
    const TclInterpreter tcl;
    const support::CapturedMessages messages;
    std::string result;
    if (evalTcl(tcl.get(), script, result))
        return "ok " + result;
    EXPECT_EQ(1U, messages.all().size()) << script.substr(0, 80);
    return messages.all().front().arguments.at(0);
}

void expectError(const std::string& script, const std::string& error) {
    const std::string found = outcome(script);
    EXPECT_NE(std::string::npos, found.substr(0, found.find('\n')).find(error))
        << script.substr(0, 80) << "\n"
        << found.substr(0, 200);
}

TEST(ScriptsThatExit, GetAnError) {
    const std::string error = "a hard block's script can't end the process with \"exit\"";
    for (const char* script :
         {"exit", "exit 3", "::exit", "rename exit quit; quit", "interp alias {} bye {} exit; bye",
          "expr {[exit]}", "interp create c; c eval exit", "interp create c; c eval {exit 3}",
          "interp create c; rename c d; interp eval c exit",
          "interp create c; c alias bye exit; c eval bye",
          "interp create -safe c; c invokehidden exit",
          "interp create -safe c; c expose exit; c eval exit",
          "interp create a; interp create {a b}; interp eval {a b} exit",
          "interp create a; a eval {interp create b; b eval exit}",
          "namespace eval n {proc c {} {}; interp cr c; ::c eval exit}",
          "coroutine c apply {{} {yield; exit}}; c", "proc f {} {uplevel #0 exit}; f"})
        expectError(script, error);
    EXPECT_EQ("ok 7", outcome("catch exit; set a 7"));
}

TEST(ScriptsWithoutEnd, AreStoppedByTheTimeLimit) {
    HPAParamMgr::getParamMgr()->setValue(kTimeLimit, "20");
    const auto start = std::chrono::steady_clock::now();
    for (const char* script :
         {"while 1 {}", "vwait forever", "after 1000000", "after 0 {set a 1}; vwait b",
          "expr {[while 1 {}]}", "while 1 {catch {while 1 {}}}",
          "proc f {} {after 0 f}; f; update; vwait a", "time {} 2000000000",
          "lsort -command {apply {args {while 1 {}}}} {a b}",
          "interp create c; c eval {while 1 {}}", "interp create c; c eval {vwait forever}",
          "interp create c; c eval {after 1000000}",
          "interp create c; interp limit c time -seconds {}; c eval {while 1 {}}",
          "interp create c; c limit time -seconds {}; c eval {while 1 {}}",
          "interp create c; rename c d; d limit time -seconds 2000000000; d eval {while 1 {}}",
          "interp create c; c limit time -granularity 2000000000; c eval {while 1 {}}"})
        expectError(script, "limit exceeded");
    EXPECT_GT(std::chrono::seconds(60), std::chrono::steady_clock::now() - start);
    HPAParamMgr::getParamMgr()->unsetValue(kTimeLimit);
}

TEST(ScriptsWithoutEnd, LeaveTimeForPlainExpressions) {
    HPAParamMgr::getParamMgr()->setValue(kTimeLimit, "20");
    const TclInterpreter tcl;
    const support::CapturedMessages messages;
    std::string result;
    EXPECT_FALSE(evalTcl(tcl.get(), "while 1 {}", result));
    EXPECT_TRUE(evalTcl(tcl.get(), "expr {1 == 2}", result));
    EXPECT_EQ("0", result);
    EXPECT_FALSE(evalTcl(tcl.get(), "while 1 {}", result));
    HPAParamMgr::getParamMgr()->unsetValue(kTimeLimit);
}

TEST(ScriptsThatRecurse, EndAtTclsOwnLimit) {
    const std::string error = "too many nested evaluations";
    for (const char* script :
         {"proc f {} f; f",
          "interp recursionlimit {} 100000000; proc f args {lsort -command f {a b}}; f",
          "interp create c; c recursionlimit 100000000; c eval {proc f args {lsort -command f {a "
          "b}}; f}"})
        expectError(script, error);
}

std::string repeated(const std::string& text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

TEST(ScriptFiles, AreScreenedForNesting) {
    const support::TempDir folder;
    const int many = 200000;
    const std::string file = folder.file("nested.tcl");
    for (const std::string& script :
         {repeated("[", many), "proc f {} {" + repeated("[", many) + repeated("]", many) + "}\nf",
          "set x \"" + repeated("[", many), repeated("[list {]} ", many),
          repeated("[list \"]\" ", many), repeated("[list a\\] ", many),
          repeated("[list {*}\"]\" ", many), "puts " + repeated("$a(", many),
          "if 1 {if 1 {\n# }\n" + repeated("[a;", many), repeated("[#]\n", many),
          "expr {" + repeated("[", many) + "}", "subst {#" + repeated("[", many) + "}"}) {
        folder.write("nested.tcl", script);
        expectError("source " + file, "couldn't read file \"" + file + "\": more than 1000 nested");
        expectError("interp create c; c eval {source " + file + "}", "couldn't read file");
    }
}

TEST(ScriptFiles, AreScreenedInTheirEncoding) {
    const support::TempDir folder;
    const std::string file = folder.write("ebcdic.tcl", std::string(200000, '\xBB'));
    const std::string error = "couldn't read file \"" + file + "\": more than 1000 nested";
    expectError("source -encoding ebcdic " + file, error);
    expectError("source -encoding none " + file, "unknown encoding \"none\"");
    expectError("source " + file, "invalid command name");
}

TEST(ScriptFiles, ThatAreNotNestedDeepAreRun) {
    const support::TempDir folder;
    std::string script = "set n 0\nproc f {a} {return 1}\n";
    for (int i = 0; i < 3000; ++i)
        script += "incr n [f {[}] ;# [0:31\nset a(1) \"[f \\[]\"; set b [f {[^\"]}]; f $a(1)\n";
    script += "list " + repeated("[list ", 400) + repeated("]", 400) + "\nset n\x1a" +
              std::string(200000, '[');
    folder.write("flat.tcl", script);
    EXPECT_EQ("ok 3000", outcome("source " + folder.file("flat.tcl")));
}

TEST(ScriptFiles, ThatCouldBlockAreRefused) {
    const support::TempDir folder;
    const std::string fifo = folder.file("fifo");
    ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
    for (const std::string& path : {fifo, std::string("/dev/zero")})
        expectError("source " + path, "couldn't read file \"" + path + "\": not a regular file");
    expectError("source " + folder.file("absent"), "couldn't read file");
    expectError("source /", "couldn't read file");
}

/// What a descriptor refers to, and how.
std::string descriptor(int number) {
    struct stat status {};
    if (fstat(number, &status) != 0)
        return "closed";
    return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino) + " " +
           std::to_string(fcntl(number, F_GETFL));
}

TEST(StandardChannels, SurviveTheScripts) {
    const std::string settings =
        "set all {}; foreach c {stdin stdout stderr} "
        "{lappend all [fconfigure $c]}; puts stdout {}; flush stdout; set all";
    const std::string before = outcome(settings);
    const std::array<std::string, 3> descriptors{descriptor(0), descriptor(1), descriptor(2)};
    for (const char* script :
         {"close stdout; close stdin; close stderr; set f [open /dev/null]", "chan close stdout",
          "foreach c {stdin stdout stderr} {fconfigure $c -blocking 0 -buffering none -encoding "
          "unicode -translation crlf -eofchar X -buffersize 77}",
          "interp create c; interp transfer {} stdout c; c eval {close stdout}",
          "interp create c; foreach c {stdout stderr} {interp share {} $c c; close $c; c eval "
          "close $c}",
          "namespace eval t {proc initialize args {return {initialize finalize write}}; proc write "
          "{h d} {return $d}; proc finalize h {}; namespace export *; namespace ensemble create}; "
          "chan push stdout t; chan push stdout t",
          "namespace eval t {proc initialize args {return {initialize finalize write flush}}; proc "
          "write {h d} {error x}; proc flush h {error y}; proc finalize h {error z}; namespace "
          "export *; namespace ensemble create}; chan push stdout t; chan push stdout t; puts "
          "-nonewline stdout x",
          "zlib push deflate stdout",
          "fileevent stdin readable {exit}; fconfigure stdin -blocking 0"}) {
        EXPECT_TRUE(outcome(script).starts_with("ok")) << script << outcome(script);
        for (int number = 0; number < 3; ++number)
            EXPECT_EQ(descriptors.at(static_cast<std::size_t>(number)), descriptor(number))
                << script;
        EXPECT_EQ(before, outcome(settings)) << script;
    }
}

TEST(TheProcess, IsLeftAsItWas) {
    setenv("TQ_KEPT", "old", 1);
    const auto folder = std::filesystem::current_path();
    const std::string tclState =
        "list [encoding dirs] [encoding system] $::tcl_precision [info exists ::env(TQ_NEW)]";
    const std::string before = outcome(tclState);
    for (const char* script :
         {"cd /; set ::env(TQ_NEW) 1; unset ::env(TQ_KEPT)",
          "set ::env(TQ_KEPT) new; array unset ::env",
          "encoding dirs {}; encoding system iso8859-1; set ::tcl_precision 3",
          "interp create c; c eval {cd /; set ::env(TQ_NEW) 1; set ::tcl_precision 3}",
          "trace add variable ::x unset {set ::env(TQ_NEW) 1;#}; set ::x 1"}) {
        EXPECT_TRUE(outcome(script).starts_with("ok")) << script;
        EXPECT_EQ(folder, std::filesystem::current_path()) << script;
        EXPECT_STREQ("old", getenv("TQ_KEPT")) << script;
        EXPECT_EQ(nullptr, getenv("TQ_NEW")) << script;
        EXPECT_EQ(before, outcome(tclState)) << script;
    }
    unsetenv("TQ_KEPT");
}

TEST(TheProcess, SurvivesAClosedPipe) {
    struct sigaction before {};
    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    sigaction(SIGPIPE, &standard, &before);
    expectError("set p [open |true w]; after 200; puts $p x; flush $p", "error flushing");
    struct sigaction after {};
    sigaction(SIGPIPE, &before, &after);
    EXPECT_EQ(SIG_DFL, after.sa_handler);
}

} // namespace
