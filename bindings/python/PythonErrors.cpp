#include "bindings/python/PythonErrors.h"

#include <array>

#include "bindings/core/Invoke.h"
#include "bindings/python/PythonValues.h"
#include "workbench/text/DiagnosticText.h"

namespace tq::bindings::python {

namespace {

PyObject* g_error = nullptr;
/// By `Failure::Kind`; null for those that Python has an exception for.
std::array<PyObject*, 9> g_exceptions{};

constexpr const char* kPackage = "tq_hbs";

/// The package's class for a finding, made of seven fields. Null with an error.
PyObject* newDiagnostic(const Diagnostic& finding) {
    const Owned package(PyImport_ImportModule(kPackage));
    const Owned type(package ? PyObject_GetAttrString(package.get(), "Diagnostic") : nullptr);
    if (!type)
        return nullptr;
    const Owned id(newText(finding.id));
    const Owned file(newText(finding.place.file));
    const Owned text(newText(finding.text));
    const Owned expected(newText(finding.expected));
    if (!id || !file || !text || !expected)
        return nullptr;
    return PyObject_CallFunction(type.get(), "sOOnnOO", severityName(finding.severity), id.get(),
                                 file.get(), static_cast<Py_ssize_t>(finding.place.line),
                                 static_cast<Py_ssize_t>(finding.place.column), text.get(),
                                 expected.get());
}

bool setAttribute(PyObject* object, const char* name, PyObject* newReference) {
    const Owned value(newReference);
    return value && PyObject_SetAttrString(object, name, value.get()) == 0;
}

bool setPlace(PyObject* exception, const Failure& failure) {
    const Owned all(PyList_New(0));
    for (const Diagnostic& finding : failure.diagnostics) {
        const Owned item(newDiagnostic(finding));
        if (!all || !item || PyList_Append(all.get(), item.get()) != 0)
            return false;
    }
    const Place place = failure.diagnostics.empty() ? Place() : failure.diagnostics.front().place;
    return setAttribute(exception, "file", newText(place.file)) &&
           setAttribute(exception, "line", PyLong_FromSize_t(place.line)) &&
           setAttribute(exception, "column", PyLong_FromSize_t(place.column)) &&
           setAttribute(exception, "diagnostics", Py_XNewRef(all.get()));
}

/// One exception class, also known by the name in the module.
PyObject* addException(PyObject* module, const char* name, const char* doc, PyObject* bases) {
    const std::string path = std::string(kPackage) + "." + name;
    PyObject* const type = PyErr_NewExceptionWithDoc(path.c_str(), doc, bases, nullptr);
    if (type == nullptr || PyModule_AddObjectRef(module, name, type) != 0)
        return nullptr;
    return type;
}

struct Row {
    Failure::Kind kind;
    const char* name;
    const char* doc;
    PyObject* builtin; ///< also a base; may be null
};

bool addKind(PyObject* module, const Row& row) {
    PyObject*& known = g_exceptions[static_cast<std::size_t>(row.kind)];
    if (known != nullptr)
        return PyModule_AddObjectRef(module, row.name, known) == 0;
    const Owned bases(row.builtin == nullptr ? PyTuple_Pack(1, g_error)
                                             : PyTuple_Pack(2, g_error, row.builtin));
    if (!bases)
        return false;
    known = addException(module, row.name, row.doc, bases.get());
    return known != nullptr;
}

} // namespace

bool addExceptions(PyObject* module) {
    if (g_error == nullptr)
        g_error =
            addException(module, "Error",
                         "Base of all exceptions of tq_hbs. file, line and column tell the place "
                         "in an input, where there is one; diagnostics are all the findings.",
                         PyExc_Exception);
    else if (PyModule_AddObjectRef(module, "Error", g_error) != 0)
        return false;
    const Row rows[] = {
        {Failure::Kind::Deleted, "DeletedError", "The native object behind a handle is gone.",
         PyExc_ReferenceError},
        {Failure::Kind::Busy, "BusyError", "The object is in a search on another thread.", nullptr},
        {Failure::Kind::Input, "InputError", "A file can't be used.", PyExc_ValueError},
        {Failure::Kind::Argument, "ArgumentError", "An argument isn't one of the known ones.",
         PyExc_ValueError},
        {Failure::Kind::NotFound, "NotFoundError", "There is nothing of that name.",
         PyExc_LookupError},
        {Failure::Kind::Command, "CommandError", "The library refuses the operation.", nullptr},
        {Failure::Kind::Interrupted, "InterruptedSearchError", "A search was interrupted.",
         nullptr}};
    if (g_error == nullptr)
        return false;
    for (const Row& row : rows)
        if (!addKind(module, row))
            return false;
    return true;
}

void forgetExceptions() {
    g_error = nullptr;
    g_exceptions = {};
}

PyObject* raise(const Failure& failure) {
    if (failure.kind == Failure::Kind::Memory)
        return PyErr_NoMemory();
    PyObject* type = g_exceptions[static_cast<std::size_t>(failure.kind)];
    if (type == nullptr)
        type = g_error;
    const Owned text(newText(failure.text));
    const Owned exception(text ? PyObject_CallFunctionObjArgs(type, text.get(), nullptr) : nullptr);
    if (exception && setPlace(exception.get(), failure))
        PyErr_SetObject(type, exception.get());
    return nullptr;
}

bool deliverMessages() {
    for (const Diagnostic& message : takeMessages()) {
        const Owned package(PyImport_ImportModule(kPackage));
        const Owned finding(package ? newDiagnostic(message) : nullptr);
        const Owned done(finding ? PyObject_CallMethod(package.get(), "_log", "(O)", finding.get())
                                 : nullptr);
        if (done)
            continue;
        if (PyErr_ExceptionMatches(PyExc_Exception) == 0)
            return false;
        PyErr_WriteUnraisable(package.get());
    }
    return true;
}

} // namespace tq::bindings::python
