// A Python extension with nothing in it: what a call costs at least.

#define Py_LIMITED_API 0x030B0000
#include <Python.h>

namespace {

PyObject* constant(PyObject* /*self*/, PyObject* /*unused*/) {
    return PyLong_FromLong(78);
}

PyObject* constantProperty(PyObject* /*self*/, void* /*closure*/) {
    return PyLong_FromLong(78);
}

PyObject* textProperty(PyObject* /*self*/, void* /*closure*/) {
    return PyUnicode_FromStringAndSize("PLL0", 4);
}

PyGetSetDef g_properties[] = {{"constant", constantProperty, nullptr, nullptr, nullptr},
                              {"text", textProperty, nullptr, nullptr, nullptr},
                              {nullptr, nullptr, nullptr, nullptr, nullptr}};
PyMethodDef g_methods[] = {{"call", constant, METH_NOARGS, nullptr},
                           {nullptr, nullptr, 0, nullptr}};
PyType_Slot g_slots[] = {{Py_tp_getset, g_properties}, {Py_tp_methods, g_methods}, {0, nullptr}};
PyType_Spec g_spec = {"bare.Bare", sizeof(PyObject), 0, Py_TPFLAGS_DEFAULT, g_slots};
PyModuleDef g_module = {
    PyModuleDef_HEAD_INIT, "bare", nullptr, -1, nullptr, nullptr, nullptr, nullptr, nullptr};

} // namespace

PyMODINIT_FUNC PyInit_bare() {
    PyObject* const module = PyModule_Create(&g_module);
    if (module != nullptr && PyModule_AddObject(module, "Bare", PyType_FromSpec(&g_spec)) != 0)
        return nullptr;
    return module;
}
