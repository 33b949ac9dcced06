#include "workbench/ipxact/MemoryReader.h"

#include <algorithm>
#include <utility>

#include "diagnostics/NearestName.h"

namespace tq::ipxact {

namespace {

/// Of register files within one another, banks and definitions.
constexpr int kMostLevels = 64;

struct AccessWord {
    std::string_view word;
    Access access;
};

constexpr std::array<AccessWord, 6> kAccesses{{
    {"read-write", Access::ReadWrite},
    {"read-only", Access::ReadOnly},
    {"write-only", Access::WriteOnly},
    {"writeOnce", Access::WriteOnce},
    {"read-writeOnce", Access::ReadWriteOnce},
    {"no-access", Access::NoAccess},
}};

/// The field that the writer puts into a register without fields, as the standard wants one.
bool isWholeRegister(Element field) {
    return field.attribute("fieldID").starts_with(kWholeRegister) ||
           field.attribute("id").starts_with(kWholeRegister);
}

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

const char* accessName(Access access) {
    for (const AccessWord& known : kAccesses)
        if (known.access == access)
            return known.word.data();
    return "";
}

Mark markOf(Element element) {
    const auto [line, column] = element.position();
    return {line, column};
}

void UnknownElements::report(Element element, Element parent,
                             std::initializer_list<std::string_view> known) {
    ++m_leftOut;
    if (!m_sink)
        return;
    const std::string_view near =
        nearestName(element.name(), std::span(known.begin(), known.size()));
    m_sink(makeDiagnostic(Severity::Remark, "unknown-element", element.place(),
                          "<" + std::string(element.name()) + "> isn't known in <" +
                              std::string(parent.name()) + "> and is passed over",
                          near.empty() ? "" : "<" + std::string(near) + ">"));
}

DefinitionTable::DefinitionTable(Element root, const TreeLookup& lookup, DiagnosticSink sink)
    : m_root(root), m_lookup(lookup), m_sink(std::move(sink)) {}

DefinitionTable::File* DefinitionTable::fileOf(std::string_view alias) {
    const auto [place, isNew] = m_files.try_emplace(std::string(alias));
    File& file = place->second;
    for (const Element list : m_root.children())
        if (isNew && m_lookup && list.name() == "typeDefinitions")
            for (const Element external : list.children())
                if (external.textOf("name") == alias)
                    file.tree = m_lookup(vlnvOfReference(external.child("typeDefinitionsRef")));
    if (isNew && file.tree != nullptr)
        if (const auto edition = editionOf(file.tree->rootNamespace()))
            file.values =
                std::make_unique<Parameters>(*file.tree, *edition, file.overrides, m_sink);
    return file.values == nullptr ? nullptr : &file;
}

Definition DefinitionTable::find(Element user, std::string_view reference) {
    const Element link = user.child(reference);
    if (!link)
        return {};
    const std::string_view kind = reference.substr(0, reference.size() - 3);
    if (File* const file = fileOf(link.attribute("typeDefinitions")))
        for (const Element list : file->tree->root().children())
            for (const Element definition : list.children())
                if (definition.name() == kind && definition.textOf("name") == link.text())
                    return {definition, file->values.get()};
    if (m_sink)
        m_sink(makeDiagnostic(Severity::Warning, "missing-definition", link.place(),
                              "the definition \"" + std::string(link.text()) + "\" of \"" +
                                  std::string(link.attribute("typeDefinitions")) +
                                  "\" isn't found"));
    return {};
}

template <class Read>
void MemoryReader::readDefinition(Element element, std::string_view reference, Read read) {
    const Definition definition = m_definitions.find(element, reference);
    if (!definition.element || m_levels == kMostLevels)
        return;
    ++m_levels;
    Parameters* const values = std::exchange(m_values, definition.values);
    read(definition.element);
    m_values = values;
    --m_levels;
}

std::vector<MemoryMap> MemoryReader::readMaps(Element memoryMaps) {
    std::vector<MemoryMap> maps;
    for (const Element child : memoryMaps.children()) {
        if (child.name() == "memoryMap" && !m_values->isPresent(child))
            continue;
        if (child.name() == "memoryMap")
            maps.push_back(readMap(child));
        else
            m_unknown.report(child, memoryMaps, {"memoryMap"});
    }
    return maps;
}

MemoryMap MemoryReader::readMap(Element element) {
    MemoryMap map;
    map.name = element.textOf("name");
    map.description = element.textOf("description");
    map.mark = markOf(element);
    readDefinition(element, "memoryMapDefinitionRef", [&](Element definition) {
        for (const Element child : definition.children())
            readMapChild(map, child, definition);
    });
    for (const Element child : element.children())
        readMapChild(map, child, element);
    return map;
}

void MemoryReader::readMapChild(MemoryMap& map, Element child, Element parent) {
    if (readItem(map.items, child))
        return;
    if (child.name() == "memoryRemap")
        map.remaps.push_back(readRemap(child));
    else if (child.name() == "addressUnitBits")
        map.addressUnitBits = m_values->integer(child);
    else if (!isOneOf(child.name(),
                      {"name", "displayName", "shortDescription", "description", "shared",
                       "isPresent", "memoryMapDefinitionRef", "parameters"}))
        m_unknown.report(child, parent,
                         {"addressBlock", "bank", "subspaceMap", "memoryRemap", "addressUnitBits",
                          "name", "displayName", "description", "shared"});
}

bool MemoryReader::readItem(std::vector<MemoryItem>& items, Element child) {
    if (isOneOf(child.name(), {"addressBlock", "bank", "subspaceMap"}) &&
        !m_values->isPresent(child))
        return true;
    if (child.name() == "addressBlock")
        items.push_back(readBlock(child));
    else if (child.name() == "bank")
        items.push_back(readBank(child));
    else if (child.name() == "subspaceMap")
        items.push_back(readSubspace(child));
    else
        return false;
    return true;
}

MemoryRemap MemoryReader::readRemap(Element element) {
    MemoryRemap remap;
    remap.name = element.textOf("name");
    remap.modes = readModes(element);
    if (const std::string_view state = element.attribute("state"); !state.empty())
        remap.modes = state;
    remap.mark = markOf(element);
    readDefinition(element, "remapDefinitionRef", [&](Element definition) {
        for (const Element child : definition.children())
            readItem(remap.items, child);
    });
    for (const Element child : element.children())
        if (!readItem(remap.items, child) &&
            !isOneOf(child.name(), {"name", "displayName", "shortDescription", "description",
                                    "modeRef", "isPresent", "remapDefinitionRef"}))
            m_unknown.report(child, element, {"addressBlock", "bank", "subspaceMap"});
    return remap;
}

MemoryItem MemoryReader::readBlock(Element element) {
    MemoryItem block;
    block.name = element.textOf("name");
    block.mark = markOf(element);
    readDefinition(element, "addressBlockDefinitionRef",
                   [&](Element definition) { readBlockContent(block, definition); });
    readBlockContent(block, element);
    return block;
}

void MemoryReader::readBlockContent(MemoryItem& block, Element element) {
    for (const Element child : element.children()) {
        const std::string_view name = child.name();
        if ((name == "register" || name == "registerFile") && !m_values->isPresent(child))
            continue;
        if (name == "register")
            block.registers.push_back(readRegister(child));
        else if (name == "registerFile")
            block.registers.push_back(readFile(child));
        else if (name == "description")
            block.description = child.text();
        else if (name == "baseAddress")
            block.base = m_values->integer(child);
        else if (name == "range")
            block.range = m_values->integer(child);
        else if (name == "width")
            block.width = m_values->integer(child);
        else if (name == "usage")
            block.usage = child.text();
        else if (name == "volatile")
            block.isVolatile = readFlag(child);
        else if (name == "access")
            block.access = readAccess(child);
        else if (name == "accessPolicies")
            block.access = readPolicies(child);
        else if (name == "array")
            block.array = readArray(child);
        else if (!isOneOf(name,
                          {"name", "displayName", "shortDescription", "isPresent", "accessHandles",
                           "typeIdentifier", "parameters", "addressBlockDefinitionRef"}))
            m_unknown.report(child, element,
                             {"name", "displayName", "description", "baseAddress", "range", "width",
                              "usage", "volatile", "access", "accessPolicies", "array", "register",
                              "registerFile", "parameters", "typeIdentifier"});
    }
}

MemoryItem MemoryReader::readBank(Element element) {
    MemoryItem bank;
    bank.kind = MemoryItem::Kind::Bank;
    bank.name = element.textOf("name");
    bank.isParallel = element.attribute("bankAlignment") == "parallel";
    bank.mark = markOf(element);
    if (m_levels == kMostLevels)
        return bank;
    ++m_levels;
    const auto readContent = [&](Element content) {
        for (const Element child : content.children()) {
            const std::string_view name = child.name();
            if (readItem(bank.items, child))
                continue;
            if (name == "baseAddress")
                bank.base = m_values->integer(child);
            else if (name == "description")
                bank.description = child.text();
            else if (name == "usage")
                bank.usage = child.text();
            else if (name == "volatile")
                bank.isVolatile = readFlag(child);
            else if (name == "access")
                bank.access = readAccess(child);
            else if (name == "accessPolicies")
                bank.access = readPolicies(child);
            else if (!isOneOf(name, {"name", "displayName", "shortDescription", "isPresent",
                                     "accessHandles", "parameters", "bankDefinitionRef"}))
                m_unknown.report(child, content,
                                 {"addressBlock", "bank", "subspaceMap", "baseAddress", "usage",
                                  "volatile", "access", "parameters"});
        }
    };
    readDefinition(element, "bankDefinitionRef", readContent);
    readContent(element);
    --m_levels;
    return bank;
}

MemoryItem MemoryReader::readSubspace(Element element) {
    MemoryItem item;
    item.kind = MemoryItem::Kind::Subspace;
    item.name = element.textOf("name");
    item.description = element.textOf("description");
    item.mark = markOf(element);
    item.initiator = element.attribute("masterRef");
    if (item.initiator.empty())
        item.initiator = element.attribute("initiatorRef");
    item.segment = element.attribute("segmentRef");
    item.base = m_values->integer(element.child("baseAddress"));
    return item;
}

std::vector<AddressSpace> MemoryReader::readSpaces(Element addressSpaces) {
    std::vector<AddressSpace> spaces;
    for (const Element child : addressSpaces.children())
        if (child.name() == "addressSpace")
            spaces.push_back(readSpace(child));
        else
            m_unknown.report(child, addressSpaces, {"addressSpace"});
    return spaces;
}

AddressSpace MemoryReader::readSpace(Element element) {
    AddressSpace space;
    space.mark = markOf(element);
    for (const Element child : element.children()) {
        const std::string_view name = child.name();
        if (name == "name")
            space.name = child.text();
        else if (name == "range")
            space.range = m_values->integer(child);
        else if (name == "width")
            space.width = m_values->integer(child);
        else if (name == "addressUnitBits")
            space.addressUnitBits = m_values->integer(child);
        else if (name == "localMemoryMap")
            space.localMap = readMap(child);
        else if (name == "segments")
            for (const Element segment : child.children())
                space.segments.push_back({std::string(segment.textOf("name")),
                                          m_values->integer(segment.child("addressOffset")),
                                          m_values->integer(segment.child("range")),
                                          markOf(segment)});
        else if (!isOneOf(name, {"displayName", "shortDescription", "description", "isPresent",
                                 "executableImage", "parameters"}))
            m_unknown.report(child, element,
                             {"name", "range", "width", "segments", "addressUnitBits",
                              "localMemoryMap", "parameters"});
    }
    if (space.localMap)
        space.localMap->addressUnitBits = space.addressUnitBits;
    return space;
}

Register MemoryReader::readRegister(Element element) {
    Register target;
    target.mark = markOf(element);
    readDefinition(element, "registerDefinitionRef",
                   [&](Element definition) { readRegisterContent(target, definition); });
    readRegisterContent(target, element);
    return target;
}

void MemoryReader::readRegisterContent(Register& target, Element element) {
    for (const Element child : element.children()) {
        const std::string_view name = child.name();
        if (name == "field" && !m_values->isPresent(child))
            continue;
        if (name == "field" && isWholeRegister(child))
            target.resets = readField(child).resets;
        else if (name == "field")
            target.fields.push_back(readField(child));
        else if (name == "name")
            target.name = child.text();
        else if (name == "displayName")
            target.displayName = child.text();
        else if (name == "description")
            target.description = child.text();
        else if (name == "addressOffset")
            target.offset = m_values->integer(child);
        else if (name == "size")
            target.size = m_values->integer(child);
        else if (name == "access")
            target.access = readAccess(child);
        else if (name == "accessPolicies")
            target.access = readPolicies(child);
        else if (name == "volatile")
            target.isVolatile = readFlag(child);
        else if (name == "dim")
            addDimension(target.array, child);
        else if (name == "array")
            target.array = readArray(child);
        else if (name == "reset")
            target.resets.push_back(readReset(child));
        else if (name == "alternateRegisters")
            for (const Element alternate : child.children())
                target.alternates.push_back(readRegister(alternate));
        else if (name == "modeRef" || name == "alternateGroups")
            target.modes = readModes(element);
        else if (!isOneOf(name, {"shortDescription", "isPresent", "accessHandles", "typeIdentifier",
                                 "parameters", "registerDefinitionRef", "registerDefinition"}))
            m_unknown.report(child, element,
                             {"name", "displayName", "description", "dim", "array", "addressOffset",
                              "size", "volatile", "access", "accessPolicies", "reset", "field",
                              "alternateRegisters", "typeIdentifier", "parameters"});
    }
}

Register MemoryReader::readFile(Element element) {
    Register target;
    target.isFile = true;
    target.mark = markOf(element);
    if (m_levels == kMostLevels) {
        if (m_sink)
            m_sink(makeDiagnostic(Severity::Warning, "too-deep", element.place(),
                                  "register files lie within one another over too many levels"));
        return target;
    }
    ++m_levels;
    readDefinition(element, "registerFileDefinitionRef",
                   [&](Element definition) { readFileContent(target, definition); });
    readFileContent(target, element);
    --m_levels;
    return target;
}

void MemoryReader::readFileContent(Register& target, Element element) {
    for (const Element child : element.children()) {
        const std::string_view name = child.name();
        if ((name == "register" || name == "registerFile") && !m_values->isPresent(child))
            continue;
        if (name == "register")
            target.items.push_back(readRegister(child));
        else if (name == "registerFile")
            target.items.push_back(readFile(child));
        else if (name == "name")
            target.name = child.text();
        else if (name == "displayName")
            target.displayName = child.text();
        else if (name == "description")
            target.description = child.text();
        else if (name == "addressOffset")
            target.offset = m_values->integer(child);
        else if (name == "range")
            target.range = m_values->integer(child);
        else if (name == "dim")
            addDimension(target.array, child);
        else if (name == "array")
            target.array = readArray(child);
        else if (name == "accessPolicies")
            target.access = readPolicies(child);
        else if (!isOneOf(name, {"shortDescription", "isPresent", "accessHandles", "typeIdentifier",
                                 "parameters", "registerFileDefinitionRef"}))
            m_unknown.report(child, element,
                             {"name", "displayName", "description", "dim", "array", "addressOffset",
                              "range", "register", "registerFile", "accessPolicies", "parameters"});
    }
}

Field MemoryReader::readField(Element element) {
    Field field;
    field.mark = markOf(element);
    readDefinition(element, "fieldDefinitionRef",
                   [&](Element definition) { readFieldContent(field, definition); });
    readFieldContent(field, element);
    return field;
}

void MemoryReader::readFieldContent(Field& field, Element element) {
    for (const Element child : element.children()) {
        const std::string_view name = child.name();
        if (name == "name")
            field.name = child.text();
        else if (name == "description")
            field.description = child.text();
        else if (name == "bitOffset")
            field.bitOffset = m_values->integer(child);
        else if (name == "bitWidth")
            field.bitWidth = m_values->integer(child);
        else if (name == "volatile")
            field.isVolatile = readFlag(child);
        else if (name == "array")
            field.array = readArray(child);
        else if (name == "resets")
            for (const Element reset : child.children())
                field.resets.push_back(readReset(reset));
        else if (name == "enumeratedValues")
            readValues(field.values, child);
        else if (name == "fieldAccessPolicies")
            for (const Element policy : child.children())
                readFieldPolicy(field, policy);
        else if (isOneOf(name, {"access", "modifiedWriteValue", "readAction", "reserved"}))
            readFieldPolicy(field, child);
        else if (!isOneOf(name, {"displayName", "shortDescription", "isPresent", "accessHandles",
                                 "typeIdentifier", "parameters", "fieldDefinitionRef", "aliasOf",
                                 "writeValueConstraint", "readResponse", "testable", "values"}))
            m_unknown.report(child, element,
                             {"name", "displayName", "description", "array", "bitOffset",
                              "bitWidth", "volatile", "access", "resets", "enumeratedValues",
                              "modifiedWriteValue", "writeValueConstraint", "readAction",
                              "testable", "reserved", "fieldAccessPolicies", "parameters"});
    }
}

/// Up to 2014 these are a field's own elements, from 2022 on those of a policy; the first wins, as
/// later ones hold in other modes.
void MemoryReader::readFieldPolicy(Field& field, Element policy) {
    const auto take = [&](Element element) {
        const std::string_view name = element.name();
        if (name == "access" && field.access == Access::Unset)
            field.access = readAccess(element);
        else if (name == "modifiedWriteValue" && field.modifiedWriteValue.empty())
            field.modifiedWriteValue = element.text();
        else if (name == "readAction" && field.readAction.empty())
            field.readAction = element.text();
        else if (name == "reserved")
            field.isReserved = readFlag(element);
    };
    if (policy.name() != "fieldAccessPolicy") {
        take(policy);
        return;
    }
    readDefinition(policy, "fieldAccessPolicyDefinitionRef", [&](Element definition) {
        for (const Element child : definition.children())
            take(child);
    });
    for (const Element child : policy.children())
        take(child);
}

Reset MemoryReader::readReset(Element element) {
    Reset reset;
    reset.type = element.attribute("resetTypeRef");
    reset.value = m_values->integer(element.child("value"));
    reset.mask = m_values->integer(element.child("mask"));
    return reset;
}

void MemoryReader::readValues(std::vector<EnumeratedValue>& values, Element element) {
    readDefinition(element, "enumerationDefinitionRef",
                   [&](Element definition) { readValues(values, definition); });
    for (const Element child : element.children()) {
        if (child.name() != "enumeratedValue")
            continue;
        EnumeratedValue value;
        value.name = child.textOf("name");
        value.description = child.textOf("description");
        value.value = m_values->integer(child.child("value"));
        value.usage = child.attribute("usage");
        values.push_back(std::move(value));
    }
}

Array MemoryReader::readArray(Element element) {
    Array array;
    for (const Element child : element.children()) {
        if (child.name() == "dim")
            addDimension(array, child);
        else if (child.name() == "stride" || child.name() == "bitStride")
            array.stride = m_values->integer(child);
    }
    return array;
}

void MemoryReader::addDimension(Array& array, Element dim) {
    static constexpr std::size_t kMostDimensions = 16;
    if (array.dimensions.size() < kMostDimensions)
        array.dimensions.push_back({m_values->integer(dim)});
}

Access MemoryReader::readAccess(Element element) {
    const std::string word = m_values->text(element);
    for (const AccessWord& known : kAccesses)
        if (known.word == word)
            return known.access;
    if (m_sink)
        m_sink(makeDiagnostic(Severity::Warning, "unknown-word", element.place(),
                              "\"" + word + "\" is no access",
                              "one of: read-write, read-only, write-only, writeOnce, "
                              "read-writeOnce, no-access"));
    return Access::Unset;
}

Access MemoryReader::readPolicies(Element policies) {
    for (const Element policy : policies.children())
        if (const Element access = policy.child("access"))
            return readAccess(access);
    return Access::Unset;
}

bool MemoryReader::readFlag(Element element) {
    return element.text() == "true" || element.text() == "1";
}

std::string MemoryReader::readModes(Element element) const {
    std::string modes;
    const auto add = [&modes](std::string_view mode) {
        modes += modes.empty() ? "" : ", ";
        modes += mode;
    };
    for (const Element child : element.children()) {
        if (child.name() == "modeRef")
            add(child.text());
        else if (child.name() == "alternateGroups")
            for (const Element group : child.children())
                add(group.text());
    }
    return modes;
}

} // namespace tq::ipxact
