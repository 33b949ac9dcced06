#include "bindings/tcl/TclHandles.h"

#include <charconv>
#include <cstring>
#include <deque>
#include <string>
#include <string_view>

#include "bindings/core/ClassInfo.h"
#include "bindings/tcl/TclValues.h"

namespace tq::bindings::tcl {

namespace {

constexpr std::size_t kMostTexts = 1024;

void freeHandle(Tcl_Obj* value);
void copyHandle(Tcl_Obj* source, Tcl_Obj* copy);
void writeText(Tcl_Obj* value);

const Tcl_ObjType kHandleType = {"tq_hbs handle", freeHandle, copyHandle, writeText, nullptr};

/// Values in place of those that lost their type; one list per thread, as Tcl's objects are.
thread_local std::deque<Tcl_Obj*> t_texts;

Object* objectOf(const Tcl_Obj* value) {
    return static_cast<Object*>(value->internalRep.twoPtrValue.ptr1);
}

void setObject(Tcl_Obj* value, ObjectRef object) {
    Registry::get().bindScript(*object, value, false);
    value->internalRep.twoPtrValue.ptr1 = object.release();
    value->internalRep.twoPtrValue.ptr2 = nullptr;
    value->typePtr = &kHandleType;
}

void keepText(Object* object) {
    Tcl_Obj* const value = newHandle(ObjectRef(object));
    Tcl_IncrRefCount(value);
    t_texts.push_back(value);
    if (t_texts.size() <= kMostTexts)
        return;
    Tcl_Obj* const oldest = t_texts.front();
    t_texts.pop_front();
    Tcl_DecrRefCount(oldest);
}

void freeHandle(Tcl_Obj* value) {
    const ObjectRef object = ObjectRef::take(objectOf(value));
    Registry::get().unbindScript(*object, value, false);
    value->typePtr = nullptr;
    // Tcl takes the text away first when the whole value goes.
    if (value->bytes != nullptr && value->length >= 0)
        keepText(object.get());
}

void copyHandle(Tcl_Obj* source, Tcl_Obj* copy) {
    setObject(copy, ObjectRef(objectOf(source)));
}

void writeText(Tcl_Obj* value) {
    Object& object = *objectOf(value);
    Registry::get().name(object);
    const std::string text = object.type->name + "#" + std::to_string(object.id);
    value->bytes = Tcl_Alloc(static_cast<unsigned>(text.size() + 1));
    std::memcpy(value->bytes, text.c_str(), text.size() + 1);
    value->length = static_cast<int>(text.size());
}

/// "CLASS#NUMBER" taken apart; 0 for another text.
std::uint64_t numberOf(std::string_view text) {
    const std::size_t mark = text.rfind('#');
    std::uint64_t id = 0;
    if (mark == std::string_view::npos)
        return 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + mark + 1, end, id);
    return error == std::errc() && stop == end ? id : 0;
}

ObjectRef refuse(Tcl_Interp* interp, const std::string& text) {
    raise(interp, {Failure::Kind::Argument, text, {}});
    return {};
}

ObjectRef lookUp(Tcl_Interp* interp, Tcl_Obj* value, const std::string& wanted) {
    const std::string text = Tcl_GetString(value);
    const std::uint64_t id = numberOf(text);
    if (id == 0)
        return refuse(interp, "expected " + wanted + ", not \"" + text + "\"");
    ObjectRef object = Registry::get().find(id);
    if (!object || text != object->type->name + "#" + std::to_string(id))
        return refuse(interp, "\"" + text +
                                  "\" isn't held any more: the text of a handle counts only while "
                                  "a value that is the handle lives; ask for the object again");
    if (value->typePtr != nullptr && value->typePtr->freeIntRepProc != nullptr)
        value->typePtr->freeIntRepProc(value);
    setObject(value, object);
    return object;
}

} // namespace

Tcl_Obj* newHandle(const ObjectRef& object) {
    Tcl_Obj* const value = Tcl_NewObj();
    Tcl_InvalidateStringRep(value);
    setObject(value, object);
    return value;
}

ObjectRef handleOf(Tcl_Interp* interp, Tcl_Obj* value, const ClassInfo* type) {
    const std::string wanted =
        type == nullptr ? std::string("a handle") : "a handle of class " + type->name;
    ObjectRef object =
        value->typePtr == &kHandleType ? ObjectRef(objectOf(value)) : lookUp(interp, value, wanted);
    if (object && type != nullptr && object->type != type)
        return refuse(interp, "expected " + wanted + ", not one of class " + object->type->name);
    return object;
}

void forgetTexts() {
    while (!t_texts.empty()) {
        Tcl_Obj* const oldest = t_texts.front();
        t_texts.pop_front();
        Tcl_DecrRefCount(oldest);
    }
}

} // namespace tq::bindings::tcl
