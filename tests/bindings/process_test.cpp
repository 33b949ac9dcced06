// Both languages in one process, beside a tool's own tables: what only an embedding program sees.

#include <Python.h>

#include <gtest/gtest.h>
#include <tcl.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "bindings/core/Tables.h"
#include "native_cache_base.h"
#include "py_native_cache_base.h"

/// What the interpreters still hold when the process ends isn't this test's leak.
extern "C" const char* __lsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier)
    return "leak:libpython\nleak:libtcl\nleak:_native.abi3";
}

namespace {

using hdi::pyinfra::py_native_cache_base;
using hdi::tcltasks::native_cache_base;

// --- the one slot for callbacks ---

template <class Base>
struct LanguageOf;
template <>
struct LanguageOf<native_cache_base> {
    using Script = Tcl_Obj;
    static constexpr bool isPython = false;
};
template <>
struct LanguageOf<py_native_cache_base> {
    using Script = _object;
    static constexpr bool isPython = true;
};

template <class Base>
class Runtime : public testing::Test {
protected:
    using Script = typename LanguageOf<Base>::Script;

    /// A tool whose tables have script objects of its own.
    static typename Base::Runtime toolThatNotes(std::vector<const void*>& marked) {
        typename Base::Runtime runtime;
        runtime.mark_invalid = [&marked](Script* script) { marked.push_back(script); };
        return runtime;
    }
    static Script* foreign() { return reinterpret_cast<Script*>(&s_foreign); }
    static void enter() { tq::bindings::enterRuntime(LanguageOf<Base>::isPython); }
    static void leave() { tq::bindings::leaveRuntime(LanguageOf<Base>::isPython); }

    std::vector<const void*> m_ofTool;
    std::vector<const void*> m_ofOther;

private:
    static inline int s_foreign = 0;
};

using Languages = testing::Types<native_cache_base, py_native_cache_base>;
TYPED_TEST_SUITE(Runtime, Languages);

TYPED_TEST(Runtime, AToolsCallbacksGetWhatIsNotOursAndStandAgainAfterUs) {
    auto before = TypeParam::setRuntime(this->toolThatNotes(this->m_ofTool));
    this->enter();
    this->enter(); // another interpreter
    TypeParam::mark_invalid(this->foreign());
    this->leave();
    TypeParam::mark_invalid(this->foreign());
    this->leave();
    EXPECT_EQ(this->m_ofTool.size(), 2U);
    TypeParam::mark_invalid(this->foreign());
    EXPECT_EQ(this->m_ofTool.size(), 3U);
    TypeParam::setRuntime(std::move(before));
}

TYPED_TEST(Runtime, AToolThatCameInFrontOfUsKeepsItsPlace) {
    auto before = TypeParam::setRuntime(this->toolThatNotes(this->m_ofTool));
    this->enter();
    auto ours = TypeParam::setRuntime(this->toolThatNotes(this->m_ofOther));
    this->leave();
    TypeParam::mark_invalid(this->foreign());
    EXPECT_EQ(this->m_ofOther.size(), 1U);
    TypeParam::setRuntime(std::move(ours)); // it goes, and passes on to what it found
    TypeParam::mark_invalid(this->foreign());
    EXPECT_EQ(this->m_ofTool.size(), 1U);
    this->enter();
    this->leave();
    TypeParam::setRuntime(std::move(before));
}

// --- interpreters ---

class TclShell {
public:
    TclShell() : m_interp(Tcl_CreateInterp()) {
        Tcl_Init(m_interp);
        run("lappend auto_path " TQ_TCL_PACKAGES "; package require tq_hbs");
    }
    ~TclShell() { Tcl_DeleteInterp(m_interp); }
    TclShell(const TclShell&) = delete;
    TclShell& operator=(const TclShell&) = delete;

    std::string run(const std::string& script) {
        const int code = Tcl_EvalEx(m_interp, script.c_str(), -1, TCL_EVAL_GLOBAL);
        return (code == TCL_OK ? "" : "error: ") + std::string(Tcl_GetStringResult(m_interp));
    }

private:
    Tcl_Interp* m_interp;
};

class PythonShell {
public:
    PythonShell() {
        Py_InitializeEx(0);
        run("import sys; sys.path.insert(0, '" TQ_PYTHON_PACKAGES "'); import tq_hbs");
    }
    ~PythonShell() { Py_FinalizeEx(); }
    PythonShell(const PythonShell&) = delete;
    PythonShell& operator=(const PythonShell&) = delete;

    static bool run(const std::string& script) { return PyRun_SimpleString(script.c_str()) == 0; }
};

constexpr const char* kObjectsOfOneThread = R"(
    tq::messages list
    proc oneTree i {
        set tree [tq::clock tree create mine$i 1]
        set pll [tq::clock tree createPllConfig $tree PLL$i DOMAIN]
        tq::clock tree addPeripheral $tree UART DOMAIN [expr {$i % 100 + 1}]
        if {$i % 50 == 0} {tq::clock tree runSolution $tree}
        if {[tq::clock pll name $pll] ne "PLL$i"} {error "PLL$i became [tq::clock pll name $pll]"}
        if {$i % 2} {tq::clock tree delete $tree}
        if {[tq::exists $pll] == $i % 2} {error "PLL$i: [tq::describe $pll]"}
        set block [tq::model block create b$i]
        tq::model block delete [tq::model block cloneTopBlock $block]
        tq::model block moduleName $block
    }
    for {set i 0} {$i < 1000} {incr i} {oneTree $i}
    set i
)";

TEST(Process, TwoTclInterpretersInTwoThreadsHaveTheirOwnObjects) {
    Tcl_FindExecutable(nullptr);
    std::vector<std::string> results(2);
    std::vector<std::thread> threads;
    for (std::string& result : results)
        threads.emplace_back([&result] {
            TclShell shell;
            result = shell.run(kObjectsOfOneThread);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(results, std::vector<std::string>(2, "1000"));
}

TEST(Process, TclAndPythonSeeTheSameObject) {
    Tcl_FindExecutable(nullptr);
    TclShell tcl;
    const PythonShell python;
    ASSERT_TRUE(python.run("tree = tq_hbs.addClockingAlgo('shared', 1)\n"
                           "pll = tree.createPllConfig('PLL0', 'DOMAIN0')\n"));
    EXPECT_EQ(tcl.run("set tree [tq::clock getClockingAlgo shared]\n"
                      "set pll [tq::clock tree getPll $tree PLL0]\n"
                      "tq::clock pll maxPllFreq $pll 1500"),
              "1500");
    EXPECT_TRUE(python.run("assert pll.maxPllFreq == 1500 and tree.getPll('PLL0') is pll"));
    EXPECT_EQ(tcl.run("tq::clock tree delete $tree"), "");
    EXPECT_TRUE(python.run("try: pll.name\n"
                           "except tq_hbs.DeletedError as error:\n"
                           "    assert 'PLL0 of clock tree shared' in str(error)\n"
                           "else: raise AssertionError\n"));
    EXPECT_EQ(tcl.run("tq::describe $pll"), "the PLL PLL0 of clock tree shared (deleted)");
}

TEST(Process, PythonMayEndAndBeginAgain) {
    for (int i = 0; i < 2; ++i) {
        const PythonShell python;
        EXPECT_TRUE(python.run("tree = tq_hbs.HBSClockingAlgo('soc', plls=1)\n"
                               "tree.createPllConfig('PLL0', 'D')\n"
                               "uart = tree.addPeripheral('UART0', 'D', 100)\n"
                               "assert tree.runSolution() and tree.tables()\n"));
    }
}

} // namespace
