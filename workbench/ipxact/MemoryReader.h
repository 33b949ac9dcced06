// Reads the part of a component that describes memory: maps, blocks, registers, fields.
#pragma once

#include <array>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "workbench/ipxact/ComponentReader.h"

namespace tq::ipxact {

/// Reports elements that the standard doesn't allow at their place.
class UnknownElements {
public:
    UnknownElements(DiagnosticSink sink, std::size_t& leftOut)
        : m_sink(std::move(sink)), m_leftOut(leftOut) {}

    /// One that its parent doesn't know: a remark, with the nearest name of `known`.
    void report(Element element, Element parent, std::initializer_list<std::string_view> known);

private:
    DiagnosticSink m_sink;
    std::size_t& m_leftOut;
};

/// A definition that an element takes its content from, and the values of the file it lies in.
struct Definition {
    Element element;
    Parameters* values = nullptr;
};

/// Finds definitions that components refer to by name, in type definitions of other files.
class DefinitionTable {
public:
    DefinitionTable(Element root, const TreeLookup& lookup, DiagnosticSink sink);

    /// The definition that an element's child `…DefinitionRef` names; nothing where there is no
    /// such child, or, with a finding, where the definition isn't found.
    [[nodiscard]] Definition find(Element user, std::string_view reference);

private:
    struct File {
        std::shared_ptr<const ElementTree> tree;
        Overrides overrides;
        std::unique_ptr<Parameters> values;
    };

    [[nodiscard]] File* fileOf(std::string_view alias);

    Element m_root;
    const TreeLookup& m_lookup;
    DiagnosticSink m_sink;
    std::unordered_map<std::string, File> m_files;
};

class MemoryReader {
public:
    MemoryReader(Parameters& values, DefinitionTable& definitions, UnknownElements& unknown,
                 DiagnosticSink sink)
        : m_values(&values), m_definitions(definitions), m_unknown(unknown),
          m_sink(std::move(sink)) {}

    [[nodiscard]] std::vector<MemoryMap> readMaps(Element memoryMaps);
    [[nodiscard]] std::vector<AddressSpace> readSpaces(Element addressSpaces);

private:
    MemoryMap readMap(Element element);
    void readMapChild(MemoryMap& map, Element child, Element parent);
    bool readItem(std::vector<MemoryItem>& items, Element child);
    MemoryItem readBlock(Element element);
    void readBlockContent(MemoryItem& block, Element element);
    MemoryItem readBank(Element element);
    MemoryItem readSubspace(Element element);
    MemoryRemap readRemap(Element element);
    AddressSpace readSpace(Element element);

    Register readRegister(Element element);
    void readRegisterContent(Register& target, Element element);
    Register readFile(Element element);
    void readFileContent(Register& target, Element element);
    Field readField(Element element);
    void readFieldContent(Field& field, Element element);
    void readFieldPolicy(Field& field, Element policy);
    Reset readReset(Element element);
    void readValues(std::vector<EnumeratedValue>& values, Element element);

    Array readArray(Element element);
    void addDimension(Array& array, Element dim);
    Access readAccess(Element element);
    Access readPolicies(Element policies);
    static bool readFlag(Element element);
    std::string readModes(Element element) const;

    /// Reads the definition that `element` refers to, before its own content.
    template <class Read>
    void readDefinition(Element element, std::string_view reference, Read read);

    Parameters* m_values;
    DefinitionTable& m_definitions;
    UnknownElements& m_unknown;
    DiagnosticSink m_sink;
    int m_levels = 0;
};

/// Prefix of the ids of fields that represent a register without fields.
inline constexpr std::string_view kWholeRegister = "whole-register-";

/// Of an element.
[[nodiscard]] Mark markOf(Element element);

} // namespace tq::ipxact
