#include "bindings/python/PythonHandles.h"

#include <structmember.h>

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "bindings/core/Invoke.h"
#include "bindings/python/PythonErrors.h"
#include "bindings/python/PythonValues.h"
#include "bindings/python/PythonWaiting.h"

namespace tq::bindings::python {

namespace {

struct Handle {
    PyObject_HEAD Object* object; ///< a reference of its own
    PyObject* weakReferences;
};

Object& objectOf(PyObject* self) {
    return *reinterpret_cast<Handle*>(self)->object;
}

const ClassInfo* g_firstClass = nullptr;

// --- calls ---

/// What came of a call, for Python.
PyObject* finish(const Member& member, Object* self, std::span<const Value> arguments) {
    PythonWaiting waiting;
    try {
        Call call(self, arguments);
        invoke(member, call, waiting);
        if (member.mode != Mode::Quick && !deliverMessages())
            return nullptr;
        return toPython(call.result);
    } catch (...) {
        const Failure failure = currentFailure();
        if (!deliverMessages())
            return nullptr;
        if (failure.kind == Failure::Kind::Interrupted && waiting.restoreError())
            return nullptr;
        return raise(failure);
    }
}

/// The arguments of one call as they come: in order, and by name.
struct Given {
    PyObject* const* inOrder = nullptr;
    std::size_t count = 0;
    std::vector<std::pair<std::string, PyObject*>> byName;

    [[nodiscard]] PyObject* find(std::size_t index, const char* name) const {
        if (index < count)
            return inOrder[index];
        for (const auto& [known, value] : byName)
            if (known == name)
                return value;
        return nullptr;
    }
};

bool expectKnown(const Member& member, const Given& given) {
    const std::size_t most = member.parameters.size();
    if (given.count > most) {
        PyErr_Format(PyExc_TypeError, "%s() takes %zu arguments, not %zu", member.name.c_str(),
                     most, given.count);
        return false;
    }
    for (const auto& entry : given.byName) {
        std::size_t index = 0;
        while (index < most && entry.first != member.parameters[index].name)
            ++index;
        if (index < given.count) {
            PyErr_Format(PyExc_TypeError, "%s() got two values for \"%s\"", member.name.c_str(),
                         entry.first.c_str());
            return false;
        }
        if (index == most) {
            PyErr_Format(PyExc_TypeError, "unknown argument \"%s\", expected %s",
                         entry.first.c_str(), signatureOf(member, "").c_str());
            return false;
        }
    }
    return true;
}

bool takeArguments(const Member& member, const Given& given, std::vector<Value>& arguments) {
    if (!expectKnown(member, given))
        return false;
    for (std::size_t i = 0; i < member.parameters.size(); ++i) {
        const Parameter& parameter = member.parameters[i];
        PyObject* const object = given.find(i, parameter.name);
        if (object == nullptr && !parameter.isOptional) {
            PyErr_Format(PyExc_TypeError, "missing argument \"%s\", expected %s", parameter.name,
                         signatureOf(member, "").c_str());
            return false;
        }
        std::optional<Value> value = object == nullptr
                                         ? parameter.fallback
                                         : fromPython(object, *parameter.type, parameter.name);
        if (!value)
            return false;
        arguments.push_back(std::move(*value));
    }
    return true;
}

std::string utf8(PyObject* text) {
    const char* const bytes = PyUnicode_AsUTF8AndSize(text, nullptr);
    return bytes == nullptr ? std::string() : bytes;
}

const std::vector<const Member*>& allMembers() {
    static const auto* const members = [] {
        auto* all = new std::vector<const Member*>(Interface::get().memberCount());
        const auto add = [all](const Member& member) { (*all)[member.index] = &member; };
        for (const ClassInfo* type : Interface::get().classes()) {
            if (type->constructor)
                add(*type->constructor);
            for (const Member& member : type->members)
                add(member);
        }
        for (const auto& island : Interface::get().islands())
            for (const Member& member : island->functions)
                add(member);
        return all;
    }();
    return *members;
}

PyObject* callMember(const Member& member, PyObject* self, PyObject* const* objects,
                     Py_ssize_t count, PyObject* names) {
    Given given{objects, static_cast<std::size_t>(count), {}};
    const Py_ssize_t named = names == nullptr ? 0 : PyTuple_Size(names);
    for (Py_ssize_t i = 0; i < named; ++i)
        given.byName.emplace_back(utf8(PyTuple_GetItem(names, i)), objects[count + i]);
    std::vector<Value> arguments;
    if (!takeArguments(member, given, arguments))
        return nullptr;
    Object* const object = member.kind == Member::Kind::Static ? nullptr : &objectOf(self);
    return finish(member, object, arguments);
}

/// Python's methods carry no data, so that each gets a function of its own.
template <unsigned Index>
PyObject* callNumber(PyObject* self, PyObject* const* objects, Py_ssize_t count, PyObject* names) {
    return callMember(*allMembers()[Index], self, objects, count, names);
}

using FastCall = PyObject* (*)(PyObject*, PyObject* const*, Py_ssize_t, PyObject*);
constexpr unsigned kMostMembers = 512;
constexpr auto kCalls = []<unsigned... Index>(std::integer_sequence<unsigned, Index...>) {
    return std::array<FastCall, kMostMembers>{callNumber<Index>...};
}
(std::make_integer_sequence<unsigned, kMostMembers>());

PyObject* getProperty(PyObject* self, void* closure) {
    return finish(*static_cast<const Member*>(closure), &objectOf(self), {});
}

int setProperty(PyObject* self, PyObject* value, void* closure) {
    const Member& property = *static_cast<const Member*>(closure);
    if (value == nullptr) {
        PyErr_Format(PyExc_AttributeError, "%s can't be deleted", property.name.c_str());
        return -1;
    }
    const auto converted = fromPython(value, *property.parameters[0].type, property.name.c_str());
    if (!converted)
        return -1;
    try {
        assign(property, objectOf(self), *converted);
        return 0;
    } catch (...) {
        raise(currentFailure());
        return -1;
    }
}

// --- what every class has ---

PyObject* create(PyTypeObject* type, PyObject* objects, PyObject* names) {
    const ClassInfo* info = g_firstClass;
    for (const ClassInfo* known : Interface::get().classes())
        if (known->pythonType == type)
            info = known;
    std::vector<PyObject*> inOrder;
    for (Py_ssize_t i = 0; i < PyTuple_Size(objects); ++i)
        inOrder.push_back(PyTuple_GetItem(objects, i));
    Given given{inOrder.data(), inOrder.size(), {}};
    PyObject* key = nullptr;
    PyObject* value = nullptr;
    for (Py_ssize_t at = 0; names != nullptr && PyDict_Next(names, &at, &key, &value) != 0;)
        given.byName.emplace_back(utf8(key), value);
    std::vector<Value> arguments;
    if (!takeArguments(*info->constructor, given, arguments))
        return nullptr;
    return finish(*info->constructor, nullptr, arguments);
}

void destroyHandle(PyObject* self) {
    PyTypeObject* const type = Py_TYPE(self);
    // Ahead of the callbacks of weak references, which may ask for the same object again.
    Object* const object = reinterpret_cast<Handle*>(self)->object;
    if (object != nullptr) {
        Registry::get().unbindScript(*object, self, true);
        object->python = nullptr;
    }
    PyObject_ClearWeakRefs(self);
    if (object != nullptr)
        const ObjectRef last = ObjectRef::take(object);
    PyObject_Free(self);
    Py_DECREF(type);
}

std::string describeObject(const Object& object) {
    const auto held = Registry::get().lock();
    return object.native != nullptr ? object.type->describe(object) : object.was + " (deleted)";
}

PyObject* showHandle(PyObject* self) {
    try {
        const Object& object = objectOf(self);
        return newText("<tq_hbs." + object.type->name + ": " + describeObject(object) + ">");
    } catch (...) {
        return raise(currentFailure());
    }
}

PyObject* deleteObject(PyObject* self, PyObject* /*unused*/) {
    try {
        Registry::get().destroy(objectOf(self));
        return Py_NewRef(Py_None);
    } catch (...) {
        return raise(currentFailure());
    }
}

PyObject* enterContext(PyObject* self, PyObject* /*unused*/) {
    return Py_NewRef(self);
}

PyObject* leaveContext(PyObject* self, PyObject* /*unused*/) {
    if (objectOf(self).native == nullptr)
        return Py_NewRef(Py_None);
    return deleteObject(self, nullptr);
}

const Member& memberOf(PyObject* self, const char* name) {
    return *objectOf(self).type->find(name);
}

PyObject* itemsOf(PyObject* self) {
    return finish(memberOf(self, objectOf(self).type->items), &objectOf(self), {});
}

PyObject* iterate(PyObject* self) {
    const Owned items(itemsOf(self));
    return items ? PyObject_GetIter(items.get()) : nullptr;
}

Py_ssize_t countItems(PyObject* self) {
    const Owned items(itemsOf(self));
    return items ? PyObject_Size(items.get()) : -1;
}

PyObject* lookUp(PyObject* self, PyObject* key) {
    const Member& lookup = memberOf(self, objectOf(self).type->lookup);
    const Owned found(callMember(lookup, self, &key, 1, nullptr));
    if (!found)
        return nullptr;
    if (found.get() == Py_None) {
        PyErr_SetObject(PyExc_KeyError, key);
        return nullptr;
    }
    return Py_NewRef(found.get());
}

// --- classes ---

std::string literalOf(const Value& value) {
    if (const auto* flag = std::get_if<bool>(&value.content))
        return *flag ? "True" : "False";
    if (const auto* number = std::get_if<std::int64_t>(&value.content))
        return std::to_string(*number);
    if (const auto* text = std::get_if<std::string>(&value.content))
        return "'" + *text + "'";
    if (const auto* list = std::get_if<List>(&value.content))
        return list->empty() ? "()" : "...";
    if (std::holds_alternative<Dict>(value.content))
        return "{}";
    return "None";
}

/// Texts that the method tables point to live as long as the classes, which is for ever.
const char* keep(std::string text) {
    return (new std::string(std::move(text)))->c_str();
}

PyMethodDef methodOf(const Member& member) {
    const bool isStatic = member.kind == Member::Kind::Static;
    const char* const first = isStatic ? "" : "$self";
    return {member.name.c_str(),
            reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(kCalls[member.index])),
            METH_FASTCALL | METH_KEYWORDS | (isStatic && member.owner != nullptr ? METH_STATIC : 0),
            keep(signatureOf(member, first) + "\n--\n\n" + member.doc)};
}

struct Tables {
    std::vector<PyMethodDef> methods;
    std::vector<PyGetSetDef> properties;
    std::vector<PyMemberDef> members;
};

Tables* tablesOf(const ClassInfo& info) {
    auto* const tables = new Tables;
    for (const Member& member : info.members) {
        if (member.kind == Member::Kind::Property)
            tables->properties.push_back({member.name.c_str(), getProperty,
                                          member.set == nullptr ? nullptr : setProperty,
                                          member.doc.c_str(), const_cast<Member*>(&member)});
        else
            tables->methods.push_back(methodOf(member));
    }
    if (info.destroy != nullptr) {
        tables->methods.push_back({"delete", deleteObject, METH_NOARGS,
                                   "delete($self)\n--\n\nDeletes the native object. All handles "
                                   "of it and of what it owns raise DeletedError from then on."});
        tables->methods.push_back(
            {"__enter__", enterContext, METH_NOARGS, "__enter__($self)\n--\n\nThe object itself."});
        tables->methods.push_back(
            {"__exit__", leaveContext, METH_VARARGS,
             "__exit__($self, *error)\n--\n\nDeletes the native object, if it "
             "is still there."});
    }
    tables->methods.push_back({nullptr, nullptr, 0, nullptr});
    tables->properties.push_back({nullptr, nullptr, nullptr, nullptr, nullptr});
    tables->members.push_back(
        {"__weaklistoffset__", T_PYSSIZET, offsetof(Handle, weakReferences), READONLY, nullptr});
    tables->members.push_back({nullptr, 0, 0, 0, nullptr});
    return tables;
}

template <class Function>
PyType_Slot slot(int id, Function function) {
    return {id, reinterpret_cast<void*>(function)};
}

std::vector<PyType_Slot> slotsOf(const ClassInfo& info) {
    Tables* const tables = tablesOf(info);
    std::string doc = info.doc;
    if (info.constructor) {
        doc = signatureOf(*info.constructor, "") + "\n--\n\n" + info.doc + "\n\n" +
              info.constructor->doc;
    }
    std::vector<PyType_Slot> slots = {slot(Py_tp_dealloc, destroyHandle),
                                      slot(Py_tp_repr, showHandle),
                                      slot(Py_tp_methods, tables->methods.data()),
                                      slot(Py_tp_getset, tables->properties.data()),
                                      slot(Py_tp_members, tables->members.data()),
                                      slot(Py_tp_doc, const_cast<char*>(keep(std::move(doc))))};
    if (info.constructor)
        slots.push_back(slot(Py_tp_new, create));
    if (info.items != nullptr) {
        slots.push_back(slot(Py_tp_iter, iterate));
        slots.push_back(slot(Py_mp_length, countItems));
    }
    if (info.lookup != nullptr)
        slots.push_back(slot(Py_mp_subscript, lookUp));
    slots.push_back({0, nullptr});
    return slots;
}

// --- functions of this layer ---

/// The handle behind any object of the package, or null with an error.
Object* anyHandle(PyObject* object) {
    for (const ClassInfo* info : Interface::get().classes())
        if (info->pythonType == Py_TYPE(object))
            return &objectOf(object);
    PyErr_SetString(PyExc_TypeError, "expected an object of tq_hbs");
    return nullptr;
}

PyObject* describeFunction(PyObject* /*module*/, PyObject* argument) {
    const Object* const object = anyHandle(argument);
    if (object == nullptr)
        return nullptr;
    try {
        return newText(describeObject(*object));
    } catch (...) {
        return raise(currentFailure());
    }
}

PyObject* existsFunction(PyObject* /*module*/, PyObject* argument) {
    const Object* const object = anyHandle(argument);
    if (object == nullptr)
        return nullptr;
    const auto held = Registry::get().lock();
    return PyBool_FromLong(object->native != nullptr ? 1 : 0);
}

PyObject* handleCountFunction(PyObject* /*module*/, PyObject* /*unused*/) {
    return PyLong_FromSize_t(Registry::get().size());
}

bool addMethods(PyObject* module, std::vector<PyMethodDef>* methods) {
    methods->push_back({nullptr, nullptr, 0, nullptr});
    return PyModule_AddFunctions(module, methods->data()) == 0;
}

} // namespace

bool addClass(PyObject* module, const ClassInfo& info) {
    if (info.pythonType != nullptr) // imported again: handles of before stay what they are
        return PyModule_AddObjectRef(module, info.name.c_str(),
                                     static_cast<PyObject*>(info.pythonType)) == 0;
    if (Interface::get().memberCount() > kMostMembers) {
        PyErr_SetString(PyExc_ImportError, "tq_hbs has more members than this module was made for");
        return false;
    }
    if (g_firstClass == nullptr)
        g_firstClass = &info;
    std::vector<PyType_Slot> slots = slotsOf(info);
    const unsigned creation = info.constructor ? 0U : Py_TPFLAGS_DISALLOW_INSTANTIATION;
    PyType_Spec description = {
        keep("tq_hbs." + info.name), sizeof(Handle), 0,
        static_cast<unsigned>(Py_TPFLAGS_DEFAULT | Py_TPFLAGS_IMMUTABLETYPE | creation),
        slots.data()};
    PyObject* const type = PyType_FromSpec(&description);
    if (type == nullptr || PyModule_AddObjectRef(module, info.name.c_str(), type) != 0)
        return false;
    info.pythonType = type;
    return true;
}

bool addFunctions(PyObject* module, const Island& island) {
    auto* const methods = new std::vector<PyMethodDef>;
    for (const Member& member : island.functions)
        methods->push_back(methodOf(member));
    return addMethods(module, methods);
}

bool addOwnFunctions(PyObject* module) {
    return addMethods(
        module,
        new std::vector<PyMethodDef>{
            {"describe", describeFunction, METH_O,
             "describe(object, /)\n--\n\nWhat the object is, or was: \"the PLL PLL0 of "
             "clock tree soc\"."},
            {"exists", existsFunction, METH_O,
             "exists(object, /)\n--\n\nWhether the native object behind it is still there."},
            {"handleCount", handleCountFunction, METH_NOARGS,
             "handleCount()\n--\n\nHow many native objects scripts hold at the moment."}});
}

PyObject* newHandle(const ObjectRef& object) {
    if (object->python != nullptr)
        return Py_NewRef(static_cast<PyObject*>(object->python));
    auto* const type = static_cast<PyTypeObject*>(object->type->pythonType);
    PyObject* const self = PyType_GenericAlloc(type, 0);
    if (self == nullptr)
        return nullptr;
    reinterpret_cast<Handle*>(self)->object = ObjectRef(object).release();
    object->python = self;
    try {
        Registry::get().bindScript(*object, self, true);
    } catch (const std::bad_alloc&) {
        Py_DECREF(self);
        return PyErr_NoMemory();
    }
    return self;
}

ObjectRef handleOf(PyObject* object, const ClassInfo& type) {
    if (static_cast<void*>(Py_TYPE(object)) != type.pythonType)
        return {};
    return ObjectRef(&objectOf(object));
}

std::string signatureOf(const Member& member, const char* first) {
    const bool isConstructor =
        member.owner != nullptr && member.owner->constructor.get() == &member;
    std::string text = (isConstructor ? member.owner->name : member.name) + "(" + first;
    for (const Parameter& parameter : member.parameters) {
        text += text.back() == '(' ? "" : ", ";
        text += parameter.name;
        if (parameter.isOptional)
            text += "=" + literalOf(parameter.fallback);
    }
    return text + ")";
}

} // namespace tq::bindings::python
