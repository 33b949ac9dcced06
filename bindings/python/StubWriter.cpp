// Writes the type stubs of the Python module from the description of the interface.

#include <iostream>
#include <string>

#include "bindings/core/ClassInfo.h"

using namespace tq::bindings;

namespace {

enum class Side { Taken, Given };

std::string nameOfType(const Type& type, Side side);

std::string plainName(const Type& type, Side side) {
    const bool isTaken = side == Side::Taken;
    switch (type.kind) {
    case Type::Kind::None:
        return "None";
    case Type::Kind::Bool:
        return "bool";
    case Type::Kind::Int:
        return "int";
    case Type::Kind::Float:
        return "float";
    case Type::Kind::Text:
        return isTaken ? "str | PathLike[str]" : "str";
    case Type::Kind::Address: // one that can't be computed is None
        return isTaken ? "int | str" : "int | None";
    case Type::Kind::Object:
        return type.object->name;
    case Type::Kind::Sequence:
        return (isTaken ? "Sequence[" : "list[") + nameOfType(*type.element, side) + "]";
    case Type::Kind::Mapping:
        return (isTaken ? "Mapping[str, " : "dict[str, ") + nameOfType(*type.element, side) + "]";
    case Type::Kind::Record:
        return type.record;
    case Type::Kind::Json:
        return "dict[str, Any]";
    }
    return "Any";
}

std::string nameOfType(const Type& type, Side side) {
    return plainName(type, side) + (type.isOptional ? " | None" : "");
}

void writeDoc(const std::string& doc, const char* indent) {
    std::cout << indent << "\"\"\"" << doc << "\"\"\"\n";
}

void writeFunction(const Member& member, const std::string& name, const char* first,
                   const std::string& result, const char* indent) {
    std::cout << indent << "def " << name << '(' << first;
    bool isFirst = *first == '\0';
    for (const Parameter& parameter : member.parameters) {
        std::cout << (isFirst ? "" : ", ") << parameter.name << ": "
                  << nameOfType(*parameter.type, Side::Taken)
                  << (parameter.isOptional ? " = ..." : "");
        isFirst = false;
    }
    std::cout << ") -> " << result << ":\n";
    writeDoc(member.doc, (std::string(indent) + "    ").c_str());
}

void writeProperty(const Member& member) {
    const std::string result = nameOfType(*member.result, Side::Given);
    std::cout << "    @property\n    def " << member.name << "(self) -> " << result << ":\n";
    writeDoc(member.doc, "        ");
    if (member.set != nullptr)
        std::cout << "    @" << member.name << ".setter\n    def " << member.name
                  << "(self, value: " << nameOfType(*member.parameters[0].type, Side::Taken)
                  << ") -> None: ...\n";
}

void writeMember(const Member& member) {
    if (member.kind == Member::Kind::Property) {
        writeProperty(member);
        return;
    }
    const bool isStatic = member.kind == Member::Kind::Static;
    if (isStatic)
        std::cout << "    @staticmethod\n";
    writeFunction(member, member.name, isStatic ? "" : "self",
                  nameOfType(*member.result, Side::Given), "    ");
}

void writeClass(const ClassInfo& info) {
    std::cout << "\n@final\nclass " << info.name << ":\n";
    writeDoc(info.doc, "    ");
    if (info.constructor)
        writeFunction(*info.constructor, "__new__", "cls", "Self", "    ");
    for (const Member& member : info.members)
        writeMember(member);
    if (info.destroy != nullptr)
        std::cout << "    def delete(self) -> None: ...\n"
                     "    def __enter__(self) -> Self: ...\n"
                     "    def __exit__(self, *error: object) -> None: ...\n";
    if (info.items != nullptr)
        std::cout << "    def __iter__(self) -> Iterator["
                  << nameOfType(*info.find(info.items)->result->element, Side::Given) << "]: ...\n"
                  << "    def __len__(self) -> int: ...\n";
    if (info.lookup != nullptr)
        std::cout << "    def __getitem__(self, name: str) -> "
                  << plainName(*info.find(info.lookup)->result, Side::Given) << ": ...\n";
}

void writeRecord(const Type& record) {
    std::cout << "\nclass " << record.record << "(TypedDict):\n";
    for (const Type::Field& field : record.fields)
        std::cout << "    " << field.name << ": " << nameOfType(*field.type, Side::Given) << '\n';
}

constexpr const char* kHead = R"(from collections.abc import Iterator, Mapping, Sequence
from os import PathLike
from typing import Any, Self, TypedDict, final

from tq_hbs import Diagnostic

__version__: str

class Error(Exception):
    file: str
    line: int
    column: int
    diagnostics: list[Diagnostic]

class DeletedError(Error, ReferenceError): ...
class BusyError(Error): ...
class InputError(Error, ValueError): ...
class ArgumentError(Error, ValueError): ...
class NotFoundError(Error, LookupError): ...
class CommandError(Error): ...
class InterruptedSearchError(Error): ...

def describe(object: Any, /) -> str: ...
def exists(object: Any, /) -> bool: ...
def handleCount() -> int: ...
)";

} // namespace

int main() {
    const Interface& interface = Interface::get();
    std::cout << kHead;
    for (const Type* record : interface.records())
        writeRecord(*record);
    for (const ClassInfo* info : interface.classes())
        writeClass(*info);
    for (const auto& island : interface.islands()) {
        for (const Member& member : island->functions) {
            std::cout << '\n';
            writeFunction(member, member.name, "", nameOfType(*member.result, Side::Given), "");
        }
    }
    return std::cout.flush() ? 0 : 1;
}
