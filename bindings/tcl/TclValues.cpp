#include "bindings/tcl/TclValues.h"

#include <limits>
#include <string>
#include <string_view>

#include "bindings/tcl/TclHandles.h"
#include "workbench/text/DiagnosticText.h"

namespace tq::bindings::tcl {

namespace {

std::optional<Value> refuse(Tcl_Interp* interp, const char* name, const Type& type,
                            Tcl_Obj* value) {
    raise(interp,
          {Failure::Kind::Argument,
           std::string(name) + ": expected " + nameOf(type) + ", not \"" + textOf(value) + "\"",
           {}});
    return std::nullopt;
}

std::optional<Value> listFrom(Tcl_Interp* interp, Tcl_Obj* value, const Type& type,
                              const char* name) {
    int count = 0;
    Tcl_Obj** items = nullptr;
    if (Tcl_ListObjGetElements(nullptr, value, &count, &items) != TCL_OK)
        return refuse(interp, name, type, value);
    List list;
    for (int i = 0; i < count; ++i) {
        std::optional<Value> item = fromTcl(interp, items[i], *type.element, name);
        if (!item)
            return std::nullopt;
        list.push_back(std::move(*item));
    }
    return Value{std::move(list)};
}

std::optional<Value> dictFrom(Tcl_Interp* interp, Tcl_Obj* value, const Type& type,
                              const char* name) {
    Tcl_DictSearch search;
    Tcl_Obj* key = nullptr;
    Tcl_Obj* content = nullptr;
    int isDone = 0;
    if (Tcl_DictObjFirst(nullptr, value, &search, &key, &content, &isDone) != TCL_OK)
        return refuse(interp, name, type, value);
    Dict dict;
    for (; isDone == 0; Tcl_DictObjNext(&search, &key, &content, &isDone)) {
        std::optional<Value> item = fromTcl(interp, content, *type.element, name);
        if (!item) {
            Tcl_DictObjDone(&search);
            return std::nullopt;
        }
        dict.emplace_back(textOf(key), std::move(*item));
    }
    Tcl_DictObjDone(&search);
    return Value{std::move(dict)};
}

std::optional<Value> numberFrom(Tcl_Interp* interp, Tcl_Obj* value, const Type& type,
                                const char* name) {
    if (type.kind == Type::Kind::Float) {
        double number = 0;
        if (Tcl_GetDoubleFromObj(nullptr, value, &number) == TCL_OK)
            return Value{number};
    } else if (type.kind == Type::Kind::Bool) {
        int flag = 0;
        if (Tcl_GetBooleanFromObj(nullptr, value, &flag) == TCL_OK)
            return Value{flag != 0};
    } else {
        Tcl_WideInt number = 0;
        if (Tcl_GetWideIntFromObj(nullptr, value, &number) == TCL_OK)
            return Value{static_cast<std::int64_t>(number)};
    }
    return refuse(interp, name, type, value);
}

struct ToTcl {
    Tcl_Obj* operator()(std::monostate) const { return Tcl_NewObj(); }
    Tcl_Obj* operator()(bool value) const { return Tcl_NewBooleanObj(value ? 1 : 0); }
    Tcl_Obj* operator()(std::int64_t value) const { return Tcl_NewWideIntObj(value); }
    Tcl_Obj* operator()(std::uint64_t value) const {
        if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            return Tcl_NewWideIntObj(static_cast<Tcl_WideInt>(value));
        return newText(std::to_string(value));
    }
    Tcl_Obj* operator()(double value) const { return Tcl_NewDoubleObj(value); }
    Tcl_Obj* operator()(const std::string& value) const { return newText(value); }
    Tcl_Obj* operator()(const Address& value) const { return newText(value.hex); }
    Tcl_Obj* operator()(const ObjectRef& value) const { return newHandle(value); }
    Tcl_Obj* operator()(const List& value) const {
        Tcl_Obj* const list = Tcl_NewListObj(0, nullptr);
        for (const Value& item : value)
            Tcl_ListObjAppendElement(nullptr, list, toTcl(item));
        return list;
    }
    Tcl_Obj* operator()(const Dict& value) const {
        Tcl_Obj* const dict = Tcl_NewDictObj();
        for (const auto& [key, item] : value)
            Tcl_DictObjPut(nullptr, dict, newText(key), toTcl(item));
        return dict;
    }
};

void put(Tcl_Obj* dict, const char* key, Tcl_Obj* value) {
    Tcl_DictObjPut(nullptr, dict, Tcl_NewStringObj(key, -1), value);
}

Tcl_Obj* newCount(std::size_t count) {
    return Tcl_NewWideIntObj(static_cast<Tcl_WideInt>(count));
}

constexpr std::string_view kTclNul = "\xC0\x80";

} // namespace

std::optional<Value> fromTcl(Tcl_Interp* interp, Tcl_Obj* value, const Type& type,
                             const char* name) {
    if (type.isOptional && *Tcl_GetString(value) == '\0')
        return Value();
    switch (type.kind) {
    case Type::Kind::Bool:
    case Type::Kind::Int:
    case Type::Kind::Float:
        return numberFrom(interp, value, type, name);
    case Type::Kind::Text:
        return Value{textOf(value)};
    case Type::Kind::Address:
        return Value{Address{textOf(value)}};
    case Type::Kind::Object: {
        ObjectRef object = handleOf(interp, value, type.object);
        if (!object)
            return std::nullopt;
        return Value{std::move(object)};
    }
    case Type::Kind::Sequence:
        return listFrom(interp, value, type, name);
    case Type::Kind::Mapping:
        return dictFrom(interp, value, type, name);
    case Type::Kind::None:
    case Type::Kind::Record:
    case Type::Kind::Json:
        break;
    }
    return Value();
}

Tcl_Obj* toTcl(const Value& value) {
    return std::visit(ToTcl(), value.content);
}

/// Tcl keeps a NUL as two bytes.
Tcl_Obj* newText(std::string_view text) {
    if (text.find('\0') == std::string_view::npos)
        return Tcl_NewStringObj(text.data(), static_cast<int>(text.size()));
    std::string encoded;
    for (const char c : text)
        c == '\0' ? encoded.append(kTclNul) : encoded.append(1, c);
    return Tcl_NewStringObj(encoded.data(), static_cast<int>(encoded.size()));
}

std::string textOf(Tcl_Obj* value) {
    int length = 0;
    const char* const bytes = Tcl_GetStringFromObj(value, &length);
    std::string text(bytes, static_cast<std::size_t>(length));
    for (std::size_t at = 0; (at = text.find(kTclNul, at)) != std::string::npos; ++at)
        text.replace(at, kTclNul.size(), 1, '\0');
    return text;
}

Tcl_Obj* newFinding(const Diagnostic& finding) {
    Tcl_Obj* const dict = Tcl_NewDictObj();
    put(dict, "severity", newText(severityName(finding.severity)));
    put(dict, "id", newText(finding.id));
    put(dict, "file", newText(finding.place.file));
    put(dict, "line", newCount(finding.place.line));
    put(dict, "column", newCount(finding.place.column));
    put(dict, "text", newText(finding.text));
    put(dict, "expected", newText(finding.expected));
    return dict;
}

int raise(Tcl_Interp* interp, const Failure& failure) {
    if (interp == nullptr)
        return TCL_ERROR;
    Tcl_SetObjResult(interp, newText(failure.text));
    Tcl_Obj* const code = Tcl_NewListObj(0, nullptr);
    Tcl_ListObjAppendElement(nullptr, code, Tcl_NewStringObj("TQ", -1));
    Tcl_ListObjAppendElement(nullptr, code, Tcl_NewStringObj(codeOf(failure.kind), -1));
    if (!failure.diagnostics.empty()) {
        const Diagnostic& first = failure.diagnostics.front();
        Tcl_ListObjAppendElement(nullptr, code, newText(first.place.file));
        Tcl_ListObjAppendElement(nullptr, code, newCount(first.place.line));
        Tcl_ListObjAppendElement(nullptr, code, newCount(first.place.column));
        Tcl_ListObjAppendElement(nullptr, code, newText(first.id));
    }
    Tcl_SetObjErrorCode(interp, code);
    return TCL_ERROR;
}

} // namespace tq::bindings::tcl
