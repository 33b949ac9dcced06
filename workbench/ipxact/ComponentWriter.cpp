#include "workbench/ipxact/ComponentWriter.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "workbench/ipxact/Arithmetic.h"
#include "workbench/ipxact/MemoryReader.h"
#include "workbench/text/TextStream.h"
#include "workbench/text/XmlNode.h"
#include "workbench/text/XmlText.h"

namespace tq::ipxact {

namespace {

std::string literal(Int128 number) {
    return "'h" + hexText(number).substr(2);
}

bool isNameStart(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c >= 0x80;
}

/// The name with what the standard doesn't allow replaced by "_".
std::string legalName(const std::string& name) {
    std::string legal = xmlText(name);
    std::replace_if(
        legal.begin(), legal.end(),
        [](char c) {
            const auto byte = static_cast<unsigned char>(c);
            return !isNameStart(byte) && !(c >= '0' && c <= '9') && c != '-' && c != '.';
        },
        '_');
    if (legal.empty() || !isNameStart(static_cast<unsigned char>(legal.front())))
        legal.insert(legal.begin(), '_');
    return legal;
}

/// Names that were given in one list, so that two stay two.
using Names = std::unordered_set<std::string>;

class Writer {
public:
    Writer(const Component& component, WrittenEdition edition, const DiagnosticSink& sink)
        : m_component(component), m_is2022(edition == WrittenEdition::Ieee2022), m_sink(sink) {}

    std::string write() {
        pugi::xml_document document;
        auto declaration = document.append_child(pugi::node_declaration);
        set(declaration, "version", "1.0");
        set(declaration, "encoding", "UTF-8");
        pugi::xml_node root = append(document, "ipxact:component");
        set(root, "xmlns:ipxact",
            m_is2022 ? "http://www.accellera.org/XMLSchema/IPXACT/1685-2022"
                     : "http://www.accellera.org/XMLSchema/IPXACT/1685-2014");
        const Vlnv& vlnv = m_component.vlnv;
        add(root, "vendor", legalName(vlnv.vendor.empty() ? "unknown" : vlnv.vendor));
        add(root, "library", legalName(vlnv.library.empty() ? "unknown" : vlnv.library));
        add(root, "name", legalName(vlnv.name));
        add(root, "version", wordOf(vlnv.version.empty() ? "1.0" : vlnv.version));
        if (m_is2022)
            addText(root, "description", m_component.description);
        writeMaps(root);
        if (!m_is2022)
            addText(root, "description", m_component.description);
        reportRest();
        TextStream out;
        document.save(out, "  ", pugi::format_indent);
        return out.str();
    }

private:
    static std::string wordOf(std::string text) {
        std::replace(text.begin(), text.end(), ' ', '_');
        return xmlText(text);
    }
    static pugi::xml_node add(pugi::xml_node parent, const char* name, const std::string& text) {
        pugi::xml_node child = append(parent, (std::string("ipxact:") + name).c_str());
        expectMemory(child.text().set(text.c_str()));
        return child;
    }
    static pugi::xml_node addElement(pugi::xml_node parent, const char* name) {
        return append(parent, (std::string("ipxact:") + name).c_str());
    }
    static void addText(pugi::xml_node parent, const char* name, const std::string& text) {
        if (!text.empty())
            add(parent, name, xmlText(text));
    }

    void report(const char* id, const Mark& mark, const std::string& text) {
        if (!m_sink)
            return;
        Place place = placeOfFile(m_component.file);
        place.line = mark.line;
        place.column = mark.column;
        m_sink(makeDiagnostic(Severity::Remark, id, std::move(place), text));
    }
    void leaveOut(const std::string& name, const Mark& mark, const char* why) {
        report("not-exported", mark, "\"" + name + "\" isn't exported: " + why);
    }
    void reportRest() {
        const std::size_t rest = m_component.interfaces.size() + m_component.channels.size() +
                                 m_component.ports.size() + m_component.addressSpaces.size();
        if (rest != 0)
            report("not-exported", {},
                   std::to_string(rest) +
                       " interfaces, channels, ports and address spaces aren't exported");
    }

    std::string nameIn(Names& names, const std::string& name, const Mark& mark) {
        std::string legal = legalName(name);
        for (int i = 2; !names.insert(legal).second; ++i)
            legal = legalName(name) + "_" + std::to_string(i);
        if (legal != name)
            report("renamed", mark, "\"" + name + "\" is written as \"" + legal + "\"");
        return legal;
    }

    void writeMaps(pugi::xml_node root) {
        if (m_component.memoryMaps.empty())
            return;
        pugi::xml_node list = addElement(root, "memoryMaps");
        Names names;
        for (const MemoryMap& map : m_component.memoryMaps) {
            pugi::xml_node node = addElement(list, "memoryMap");
            add(node, "name", nameIn(names, map.name, map.mark));
            addText(node, "description", map.description);
            m_unitBits = map.addressUnitBits;
            Names inner;
            for (const MemoryItem& item : map.items)
                writeItem(node, item, inner, false, Access::Unset);
            add(node, "addressUnitBits", decimalText(map.addressUnitBits.value_or(8)));
            for (const MemoryRemap& remap : map.remaps)
                leaveOut(remap.name, remap.mark, "it is there in some modes only");
        }
    }
    void writeItem(pugi::xml_node parent, const MemoryItem& item, Names& names, bool isBanked,
                   Access access) {
        access = item.access == Access::Unset ? access : item.access;
        if (item.kind == MemoryItem::Kind::Subspace)
            leaveOut(item.name, item.mark, "it shows an address space");
        else if (!isBanked && !item.base)
            leaveOut(item.name, item.mark, "its address is unknown");
        else if (item.kind == MemoryItem::Kind::Bank)
            writeBank(parent, item, names, isBanked, access);
        else
            writeBlocks(parent, item, names, isBanked, access);
    }
    void writeBank(pugi::xml_node parent, const MemoryItem& bank, Names& names, bool isBanked,
                   Access access) {
        if (bank.items.empty()) {
            leaveOut(bank.name, bank.mark, "it is empty");
            return;
        }
        pugi::xml_node node = addElement(parent, "bank");
        set(node, "bankAlignment", bank.isParallel ? "parallel" : "serial");
        add(node, "name", nameIn(names, bank.name, bank.mark));
        addText(node, "description", bank.description);
        if (!isBanked)
            add(node, "baseAddress", literal(bank.base.value_or(0)));
        Names inner;
        for (const MemoryItem& item : bank.items)
            writeItem(node, item, inner, true, access);
        addText(node, "usage", bank.usage);
    }
    /// 2014 has no arrays of blocks.
    void writeBlocks(pugi::xml_node parent, const MemoryItem& block, Names& names, bool isBanked,
                     Access access) {
        const Int128 count = std::min<Int128>(countOf(block.array).value_or(1), kMostElements);
        for (Int128 i = 0; i < count; ++i) {
            const Number base = plus(block.base, times(i, strideOf(block.array, block.range)));
            const std::string name =
                elementName(block.name, block.array, static_cast<std::size_t>(i));
            writeBlock(parent, block, nameIn(names, name, block.mark), i == 0 ? block.base : base,
                       isBanked, access);
        }
    }
    void writeBlock(pugi::xml_node parent, const MemoryItem& block, const std::string& name,
                    const Number& base, bool isBanked, Access access) {
        pugi::xml_node node = addElement(parent, "addressBlock");
        add(node, "name", name);
        addText(node, "description", block.description);
        if (!isBanked)
            add(node, "baseAddress", literal(base.value_or(0)));
        add(node, "range", literal(rangeOf(block)));
        add(node, "width", decimalText(std::max<Int128>(block.width.value_or(32), 1)));
        addText(node, "usage", block.usage);
        if (block.isVolatile)
            add(node, "volatile", "true");
        writeAccess(node, access);
        Names names;
        for (const Register& item : block.registers)
            writeRegisters(node, item, names, Access::Unset);
    }
    /// As far as its registers reach where it isn't known.
    Int128 rangeOf(const MemoryItem& block) const {
        if (block.range && *block.range > 0)
            return *block.range;
        return extentOf(block.registers);
    }
    Int128 extentOf(const std::vector<Register>& items) const {
        Int128 range = 1;
        for (const Register& item : items) {
            const Number size = sizeOf(item, m_unitBits);
            const Number last = times(minus(countOf(item.array), 1), strideOf(item.array, size));
            range = std::max(range, plus(item.offset, plus(last, size)).value_or(1));
        }
        return range;
    }

    void writeAccess(pugi::xml_node node, Access access) {
        if (access == Access::Unset)
            return;
        if (m_is2022)
            node = addElement(addElement(node, "accessPolicies"), "accessPolicy");
        else if (access == Access::NoAccess)
            return;
        add(node, "access", accessName(access));
    }

    static std::string elementName(std::string name, const Array& array, std::size_t index) {
        if (array.dimensions.empty())
            return name;
        const auto& labels = array.dimensions.front().labels;
        const std::string label = index < labels.size() ? labels[index] : std::to_string(index);
        const std::size_t mark = name.find("%s");
        return mark == std::string::npos ? name + "_" + label : name.replace(mark, 2, label);
    }
    /// "CH[%s]" counted from 0 is a plain array; other names with "%s" are written one by one.
    static bool isPlainArray(const Register& item) {
        const std::size_t mark = item.name.find("%s");
        if (mark == std::string::npos)
            return true;
        if (item.name.size() < 4 || item.name.substr(item.name.size() - 4) != "[%s]")
            return false;
        for (const Dimension& dimension : item.array.dimensions)
            for (std::size_t i = 0; i < dimension.labels.size(); ++i)
                if (dimension.labels[i] != std::to_string(i))
                    return false;
        return item.array.dimensions.size() == 1;
    }
    /// In 2014 elements lie side by side, so a stride is one more reason to write them singly.
    bool isWrittenAsArray(const Register& item, const Number& size) const {
        const Number stride = strideOf(item.array, size);
        return isPlainArray(item) && countOf(item.array) && (m_is2022 || stride == size);
    }

    void writeRegisters(pugi::xml_node parent, const Register& item, Names& names, Access access) {
        const Number size = sizeOf(item, m_unitBits);
        if (!item.offset || (!item.isFile && !item.size)) {
            leaveOut(item.name, item.mark, "its address or size is unknown");
            return;
        }
        for (const Register& alternate : item.alternates)
            leaveOut(alternate.name, alternate.mark, "it is there in some modes only");
        access = item.access == Access::Unset ? access : item.access;
        if (item.array.dimensions.empty() || isWrittenAsArray(item, size)) {
            std::string name = item.name;
            if (const std::size_t mark = name.find("[%s]"); mark != std::string::npos)
                name.erase(mark);
            writeRegister(parent, item, nameIn(names, name, item.mark), *item.offset, true, access);
            return;
        }
        const Int128 count = std::min<Int128>(countOf(item.array).value_or(1), kMostElements);
        for (Int128 i = 0; i < count; ++i) {
            const Number offset =
                i == 0 ? item.offset : plus(item.offset, times(i, strideOf(item.array, size)));
            if (!offset)
                return;
            const std::string name =
                elementName(item.name, item.array, static_cast<std::size_t>(i));
            writeRegister(parent, item, nameIn(names, name, item.mark), *offset, false, access);
        }
    }
    void writeRegister(pugi::xml_node parent, const Register& item, const std::string& name,
                       Int128 offset, bool isArray, Access access) {
        pugi::xml_node node = addElement(parent, item.isFile ? "registerFile" : "register");
        add(node, "name", name);
        if (item.displayName != item.name)
            addText(node, "displayName", item.displayName);
        addText(node, "description", item.description);
        if (isArray)
            writeArray(node, item.array, "stride");
        add(node, "addressOffset", literal(offset));
        if (item.isFile)
            writeFileContent(node, item, access);
        else
            writeRegisterContent(node, item, access);
    }
    void writeArray(pugi::xml_node node, const Array& array, const char* stride) {
        if (array.dimensions.empty())
            return;
        if (m_is2022)
            node = addElement(node, "array");
        for (const Dimension& dimension : array.dimensions)
            add(node, "dim", decimalText(dimension.count.value_or(1)));
        if (m_is2022 && array.stride)
            add(node, stride, decimalText(*array.stride));
    }
    void writeFileContent(pugi::xml_node node, const Register& file, Access access) {
        const Int128 range = file.range && *file.range > 0 ? *file.range : extentOf(file.items);
        add(node, "range", literal(range));
        Names names;
        for (const Register& item : file.items)
            writeRegisters(node, item, names, access);
    }
    void writeRegisterContent(pugi::xml_node node, const Register& item, Access access) {
        add(node, "size", decimalText(*item.size));
        if (item.isVolatile)
            add(node, "volatile", "true");
        writeAccess(node, access);
        Names names;
        bool hasField = false;
        for (const Field& field : item.fields)
            hasField = writeField(node, field, names, item) || hasField;
        if (!hasField)
            writeWholeRegister(node, item);
    }
    void writeWholeRegister(pugi::xml_node node, const Register& item) {
        pugi::xml_node field = addElement(node, "field");
        set(field, m_is2022 ? "xml:id" : "fieldID",
            (std::string(kWholeRegister) + std::to_string(++m_wholeRegisters)).c_str());
        add(field, "name", legalName(item.name));
        add(field, "bitOffset", "0");
        if (m_is2022)
            add(field, "bitWidth", decimalText(*item.size));
        writeResets(field, item.resets);
        if (!m_is2022)
            add(field, "bitWidth", decimalText(*item.size));
    }
    bool writeField(pugi::xml_node parent, const Field& field, Names& names, const Register& item) {
        if (!field.bitOffset || !field.bitWidth || *field.bitWidth < 1) {
            leaveOut(field.name, field.mark, "its bits are unknown");
            return false;
        }
        const bool isArray = m_is2022 && !field.array.dimensions.empty();
        const Int128 count =
            isArray ? 1 : std::min<Int128>(countOf(field.array).value_or(1), kMostElements);
        for (Int128 i = 0; i < count; ++i) {
            const Number offset =
                plus(field.bitOffset, times(i, strideOf(field.array, field.bitWidth)));
            const std::string name =
                isArray ? field.name
                        : elementName(field.name, field.array, static_cast<std::size_t>(i));
            writeOneField(parent, field, nameIn(names, name, field.mark), offset.value_or(0), item,
                          isArray);
        }
        return count > 0;
    }
    void writeOneField(pugi::xml_node parent, const Field& field, const std::string& name,
                       Int128 offset, const Register& item, bool isArray) {
        pugi::xml_node node = addElement(parent, "field");
        add(node, "name", name);
        addText(node, "description", field.description);
        if (isArray)
            writeArray(node, field.array, "bitStride");
        add(node, "bitOffset", decimalText(offset));
        const std::vector<Reset> resets =
            field.resets.empty() ? cutResets(item.resets, offset, *field.bitWidth) : field.resets;
        if (m_is2022) {
            add(node, "bitWidth", decimalText(*field.bitWidth));
            if (field.isVolatile)
                add(node, "volatile", "true");
            writeResets(node, resets);
            writePolicy(node, field);
            writeValues(node, field);
            return;
        }
        writeResets(node, resets);
        add(node, "bitWidth", decimalText(*field.bitWidth));
        if (field.isVolatile)
            add(node, "volatile", "true");
        if (field.access != Access::NoAccess)
            addText(node, "access", accessName(field.access));
        writeValues(node, field);
        addText(node, "modifiedWriteValue", field.modifiedWriteValue);
        addText(node, "readAction", field.readAction);
    }
    void writePolicy(pugi::xml_node node, const Field& field) {
        if (field.access == Access::Unset && field.modifiedWriteValue.empty() &&
            field.readAction.empty())
            return;
        pugi::xml_node policy =
            addElement(addElement(node, "fieldAccessPolicies"), "fieldAccessPolicy");
        addText(policy, "access", accessName(field.access));
        addText(policy, "modifiedWriteValue", field.modifiedWriteValue);
        addText(policy, "readAction", field.readAction);
    }
    /// The bits of a register's resets that are the field's.
    static std::vector<Reset> cutResets(const std::vector<Reset>& resets, Int128 offset,
                                        Int128 width) {
        std::vector<Reset> cut;
        if (offset < 0 || offset > 126 || width > 126)
            return cut;
        const Int128 mask = (Int128{1} << static_cast<int>(width)) - 1;
        for (const Reset& reset : resets)
            if (reset.value && reset.type.empty())
                cut.push_back({reset.type, (*reset.value >> static_cast<int>(offset)) & mask, {}});
        return cut;
    }
    /// Those of other types than the default would need its definition.
    static void writeResets(pugi::xml_node node, const std::vector<Reset>& resets) {
        pugi::xml_node list;
        for (const Reset& reset : resets) {
            if (!reset.value || *reset.value < 0 || !(reset.type.empty() || reset.type == "HARD"))
                continue;
            if (!list)
                list = addElement(node, "resets");
            else
                return;
            pugi::xml_node one = addElement(list, "reset");
            add(one, "value", literal(*reset.value));
            if (reset.mask && *reset.mask >= 0)
                add(one, "mask", literal(*reset.mask));
        }
    }
    void writeValues(pugi::xml_node node, const Field& field) {
        pugi::xml_node list;
        Names names;
        for (const EnumeratedValue& value : field.values) {
            if (!value.value || *value.value < 0)
                continue;
            if (!list)
                list = addElement(node, "enumeratedValues");
            pugi::xml_node one = addElement(list, "enumeratedValue");
            if (value.usage == "read" || value.usage == "write")
                set(one, "usage", value.usage.c_str());
            add(one, "name", nameIn(names, value.name, field.mark));
            addText(one, "description", value.description);
            add(one, "value", literal(*value.value));
        }
    }

    static constexpr Int128 kMostElements = 100'000; ///< of an array that is written one by one

    const Component& m_component;
    bool m_is2022;
    const DiagnosticSink& m_sink;
    Number m_unitBits = 8;
    std::size_t m_wholeRegisters = 0;
};

} // namespace

std::string writeComponent(const Component& component, WrittenEdition edition,
                           const DiagnosticSink& sink) {
    return Writer(component, edition, sink).write();
}

} // namespace tq::ipxact
