// The module tq_hbs._native, from which the package tq_hbs takes all its names.

#include "bindings/python/PythonApi.h"

#include "bindings/core/ClassInfo.h"
#include "bindings/core/Tables.h"
#include "bindings/python/PythonErrors.h"
#include "bindings/python/PythonHandles.h"
#include "bindings/python/PythonWaiting.h"
#include "tq_version.h"

namespace tq::bindings::python {

namespace {

PyObject* atExit(PyObject* /*module*/, PyObject* /*unused*/) {
    endWaiting();
    leaveRuntime(true);
    return Py_NewRef(Py_None);
}

PyMethodDef g_atExit = {"_atExit", atExit, METH_NOARGS, nullptr};

bool callAtExit() {
    const Owned function(PyCFunction_NewEx(&g_atExit, nullptr, nullptr));
    const Owned module(function ? PyImport_ImportModule("atexit") : nullptr);
    const Owned done(module ? PyObject_CallMethod(module.get(), "register", "O", function.get())
                            : nullptr);
    return done != nullptr;
}

/// A handle is one Python object, and that belongs to one interpreter.
bool expectMainInterpreter() {
    if (PyInterpreterState_GetID(PyInterpreterState_Get()) == 0)
        return true;
    PyErr_SetString(PyExc_ImportError, "tq_hbs works in the main interpreter of a process alone");
    return false;
}

/// Classes and exceptions go with the interpreter that they were made in.
void forgetInterpreter() {
    forgetExceptions();
    for (const ClassInfo* info : Interface::get().classes())
        info->pythonType = nullptr;
}

/// The module may be imported more than once; what belongs to the interpreter is made once.
int fill(PyObject* module) {
    if (!expectMainInterpreter())
        return -1;
    if (beginWaiting())
        forgetInterpreter();
    const bool isFirst = Interface::get().classes().front()->pythonType == nullptr;
    if (!addExceptions(module) || !addOwnFunctions(module))
        return -1;
    for (const ClassInfo* info : Interface::get().classes())
        if (!addClass(module, *info))
            return -1;
    for (const auto& island : Interface::get().islands())
        if (!addFunctions(module, *island))
            return -1;
    if (PyModule_AddStringConstant(module, "__version__", TQ_VERSION_STRING) != 0)
        return -1;
    if (!isFirst)
        return 0;
    if (!callAtExit())
        return -1;
    enterRuntime(true);
    return 0;
}

PyModuleDef_Slot g_slots[] = {{Py_mod_exec, reinterpret_cast<void*>(fill)}, {0, nullptr}};

PyModuleDef g_module = {PyModuleDef_HEAD_INIT,
                        "tq_hbs._native",
                        "Classes and functions of the library tq_hbs.",
                        0,
                        nullptr,
                        g_slots,
                        nullptr,
                        nullptr,
                        nullptr};

} // namespace

} // namespace tq::bindings::python

/// Called by Python's import.
PyMODINIT_FUNC PyInit__native() { // NOLINT(bugprone-reserved-identifier): Python's name for it
    return PyModuleDef_Init(&tq::bindings::python::g_module);
}
