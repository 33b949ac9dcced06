#include "bindings/python/PythonValues.h"

#include "bindings/python/PythonHandles.h"

namespace tq::bindings::python {

namespace {

std::optional<Value> refuse(PyObject* object, const Type& type, const char* name) {
    const Owned shown(PyObject_Repr(object));
    if (shown)
        PyErr_Format(PyExc_TypeError, "%s: expected %s, not %.200U", name, nameOf(type).c_str(),
                     shown.get());
    return std::nullopt;
}

/// The bytes of a text or a path; none with an error.
std::optional<std::string> bytesOf(PyObject* object) {
    const Owned path(PyUnicode_Check(object) != 0 ? nullptr : PyOS_FSPath(object));
    PyObject* const text = path ? path.get() : object;
    if (PyUnicode_Check(text) == 0)
        return std::nullopt;
    Py_ssize_t size = 0;
    if (const char* bytes = PyUnicode_AsUTF8AndSize(text, &size))
        return std::string(bytes, static_cast<std::size_t>(size));
    PyErr_Clear();
    const Owned encoded(PyUnicode_AsEncodedString(text, "utf-8", "surrogateescape"));
    char* bytes = nullptr;
    if (!encoded || PyBytes_AsStringAndSize(encoded.get(), &bytes, &size) != 0)
        return std::nullopt;
    return std::string(bytes, static_cast<std::size_t>(size));
}

std::optional<Value> textFrom(PyObject* object, const Type& type, const char* name) {
    std::optional<std::string> text = bytesOf(object);
    if (!text) {
        PyErr_Clear();
        return refuse(object, type, name);
    }
    if (type.kind == Type::Kind::Address)
        return Value{Address{std::move(*text)}};
    return Value{std::move(*text)};
}

std::optional<Value> integerFrom(PyObject* object, const Type& type, const char* name) {
    int overflow = 0;
    const Owned index(PyFloat_Check(object) != 0 ? nullptr : PyNumber_Index(object));
    if (!index) {
        PyErr_Clear();
        return refuse(object, type, name);
    }
    const long long number = PyLong_AsLongLongAndOverflow(index.get(), &overflow);
    if (overflow == 0)
        return Value{static_cast<std::int64_t>(number)};
    const unsigned long long large = overflow > 0 ? PyLong_AsUnsignedLongLong(index.get()) : 0;
    if (overflow > 0 && PyErr_Occurred() == nullptr)
        return Value{static_cast<std::uint64_t>(large)};
    PyErr_Clear();
    return refuse(object, type, name);
}

std::optional<Value> addressFrom(PyObject* object, const Type& type, const char* name) {
    if (PyLong_Check(object) == 0)
        return textFrom(object, type, name);
    const Owned hex(PyNumber_ToBase(object, 16));
    const std::optional<std::string> text = hex ? bytesOf(hex.get()) : std::nullopt;
    if (!text || text->front() == '-') {
        PyErr_Clear();
        return refuse(object, type, name);
    }
    return Value{Address{*text}};
}

std::optional<Value> numberFrom(PyObject* object, const Type& type, const char* name) {
    const double number = PyFloat_AsDouble(object);
    if (number == -1.0 && PyErr_Occurred() != nullptr) {
        PyErr_Clear();
        return refuse(object, type, name);
    }
    return Value{number};
}

std::optional<Value> listFrom(PyObject* object, const Type& type, const char* name) {
    const Owned list(PyUnicode_Check(object) != 0 ? nullptr : PySequence_List(object));
    if (!list) {
        PyErr_Clear();
        return refuse(object, type, name);
    }
    List items;
    for (Py_ssize_t i = 0; i < PyList_Size(list.get()); ++i) {
        auto item = fromPython(PyList_GetItem(list.get(), i), *type.element, name);
        if (!item)
            return std::nullopt;
        items.push_back(std::move(*item));
    }
    return Value{std::move(items)};
}

std::optional<Value> dictFrom(PyObject* object, const Type& type, const char* name) {
    const Owned pairs(PyMapping_Check(object) != 0 ? PyMapping_Items(object) : nullptr);
    if (!pairs) {
        PyErr_Clear();
        return refuse(object, type, name);
    }
    Dict dict;
    for (Py_ssize_t i = 0; i < PyList_Size(pairs.get()); ++i) {
        PyObject* const pair = PyList_GetItem(pairs.get(), i);
        if (PyTuple_Check(pair) == 0 || PyTuple_Size(pair) != 2) // of a mapping of the script's own
            return refuse(object, type, name);
        std::optional<std::string> key = bytesOf(PyTuple_GetItem(pair, 0));
        if (!key) {
            PyErr_Clear();
            return refuse(object, type, name);
        }
        auto item = fromPython(PyTuple_GetItem(pair, 1), *type.element, name);
        if (!item)
            return std::nullopt;
        dict.emplace_back(std::move(*key), std::move(*item));
    }
    return Value{std::move(dict)};
}

struct ToPython {
    PyObject* operator()(std::monostate) const { return Py_NewRef(Py_None); }
    PyObject* operator()(bool value) const { return PyBool_FromLong(value ? 1 : 0); }
    PyObject* operator()(std::int64_t value) const { return PyLong_FromLongLong(value); }
    PyObject* operator()(std::uint64_t value) const { return PyLong_FromUnsignedLongLong(value); }
    PyObject* operator()(double value) const { return PyFloat_FromDouble(value); }
    PyObject* operator()(const std::string& value) const { return newText(value); }
    PyObject* operator()(const Address& value) const {
        if (value.hex.empty())
            return Py_NewRef(Py_None);
        return PyLong_FromString(value.hex.c_str(), nullptr, 16);
    }
    PyObject* operator()(const ObjectRef& value) const { return newHandle(value); }
    PyObject* operator()(const List& value) const {
        Owned list(PyList_New(static_cast<Py_ssize_t>(value.size())));
        for (std::size_t i = 0; list && i < value.size(); ++i) {
            PyObject* const item = toPython(value[i]);
            if (item == nullptr)
                return nullptr;
            PyList_SetItem(list.get(), static_cast<Py_ssize_t>(i), item);
        }
        return list.release();
    }
    PyObject* operator()(const Dict& value) const {
        Owned dict(PyDict_New());
        for (const auto& [key, content] : value) {
            const Owned name(newText(key));
            const Owned item(toPython(content));
            if (!dict || !name || !item || PyDict_SetItem(dict.get(), name.get(), item.get()) != 0)
                return nullptr;
        }
        return dict.release();
    }
};

} // namespace

std::optional<Value> fromPython(PyObject* object, const Type& type, const char* name) {
    if (type.isOptional && object == Py_None)
        return Value();
    switch (type.kind) {
    case Type::Kind::Bool:
        if (PyBool_Check(object) != 0)
            return Value{object == Py_True};
        return refuse(object, type, name);
    case Type::Kind::Int:
        return integerFrom(object, type, name);
    case Type::Kind::Float:
        return numberFrom(object, type, name);
    case Type::Kind::Text:
        return textFrom(object, type, name);
    case Type::Kind::Address:
        return addressFrom(object, type, name);
    case Type::Kind::Object:
        if (ObjectRef handle = handleOf(object, *type.object))
            return Value{std::move(handle)};
        return refuse(object, type, name);
    case Type::Kind::Sequence:
        return listFrom(object, type, name);
    case Type::Kind::Mapping:
        return dictFrom(object, type, name);
    case Type::Kind::None:
    case Type::Kind::Record:
    case Type::Kind::Json:
        break;
    }
    return Value();
}

PyObject* toPython(const Value& value) {
    return std::visit(ToPython(), value.content);
}

PyObject* newText(std::string_view text) {
    return PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()),
                                "surrogateescape");
}

} // namespace tq::bindings::python
