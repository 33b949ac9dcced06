// What scripts see of a sequence's end, with a real Tcl and a real Python behind the tables.

#include <Python.h>

#include <gtest/gtest.h>
#include <tcl.h>

#include <memory>

#include "cdo/HBSCdoSequenceWrapper.h"
#include "scripting/native_cache.h"
#include "scripting/py_native_cache.h"

template <class T>
struct hdi::tcltasks::native_cache_access {
    static void bind(T native, Tcl_Obj* script) {
        native_cache<T>::get_n2t_cache().emplace(native, script);
        native_cache<T>::get_t2n_cache().emplace(script, native);
    }
};

template <class T>
struct hdi::pyinfra::py_native_cache_access {
    static void bind(T native, PyObject* script) {
        py_native_cache<T>::get_n2py_cache().emplace(native, script);
        py_native_cache<T>::get_py2n_cache().emplace(script, native);
    }
};

/// What Python itself still holds when the process ends isn't this test's leak.
extern "C" const char* __lsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier)
    return "leak:libpython";
}

namespace {

using hdi::pyinfra::py_native_cache_base;
using hdi::tcltasks::native_cache_base;

const Tcl_ObjType kHandleType = {"handle", nullptr, nullptr, nullptr, nullptr};

int isAlive(ClientData, Tcl_Interp* tcl, int, Tcl_Obj* const words[]) {
    Tcl_SetObjResult(tcl,
                     Tcl_NewBooleanObj(words[1]->internalRep.twoPtrValue.ptr1 != nullptr ? 1 : 0));
    return TCL_OK;
}

TEST(LiveObjects, ATclVariableKeepsAHandleThatIsDeadAndItsOwn) {
    Tcl_FindExecutable(nullptr);
    const std::unique_ptr<Tcl_Interp, void (*)(Tcl_Interp*)> tcl(Tcl_CreateInterp(),
                                                                 Tcl_DeleteInterp);
    Tcl_CreateObjCommand(tcl.get(), "is_alive", isAlive, nullptr, nullptr);
    const auto before = native_cache_base::setRuntime(
        {.tcl_exiting = [] { return false; },
         .mark_invalid = [](Tcl_Obj* script) { script->internalRep.twoPtrValue.ptr1 = nullptr; },
         .decr_refcount = [](Tcl_Obj* script) { Tcl_DecrRefCount(script); },
         .error = [](const char* text) { ADD_FAILURE() << text; }});

    auto sequence = std::make_unique<HBSCdoSequenceWrapper>("boot", nullptr);
    Tcl_Obj* const handle = Tcl_NewStringObj("boot", -1);
    handle->typePtr = &kHandleType;
    handle->internalRep.twoPtrValue.ptr1 = sequence.get();
    Tcl_IncrRefCount(handle); // the tables' own
    Tcl_SetVar2Ex(tcl.get(), "sequence", nullptr, handle, 0);
    hdi::tcltasks::native_cache_access<HBSCdoSequenceWrapper*>::bind(sequence.get(), handle);
    const auto alive = [&] {
        EXPECT_EQ(TCL_OK, Tcl_Eval(tcl.get(), "is_alive $sequence"));
        return std::string(Tcl_GetStringResult(tcl.get()));
    };
    EXPECT_EQ("1", alive());
    sequence.reset();
    EXPECT_EQ("0", alive());
    EXPECT_EQ(TCL_OK, Tcl_Eval(tcl.get(), "unset sequence; set result {}")) << "frees the handle";
    native_cache_base::setRuntime(before);
}

TEST(LiveObjects, APythonVariableKeepsAHandleThatIsDead) {
    Py_InitializeEx(0);
    PyRun_SimpleString("class Handle:\n    valid = True\n"
                       "sequence = Handle()\n");
    PyObject* const main = PyModule_GetDict(PyImport_AddModule("__main__"));
    PyObject* const handle = PyDict_GetItemString(main, "sequence");
    const Py_ssize_t references = Py_REFCNT(handle);
    const auto before = py_native_cache_base::setRuntime(
        {.py_exiting = [] { return false; },
         .mark_invalid =
             [](PyObject* script) { PyObject_SetAttrString(script, "valid", Py_False); },
         .error = [](const char* text) { ADD_FAILURE() << text; }});

    auto sequence = std::make_unique<HBSCdoSequenceWrapper>("boot", nullptr);
    hdi::pyinfra::py_native_cache_access<HBSCdoSequenceWrapper*>::bind(sequence.get(), handle);
    EXPECT_EQ(0, PyRun_SimpleString("assert sequence.valid"));
    sequence.reset();
    EXPECT_EQ(0, PyRun_SimpleString("assert not sequence.valid"));
    EXPECT_EQ(references, Py_REFCNT(handle)) << "the tables hold none";
    py_native_cache_base::setRuntime(before);
}

} // namespace
