#include "workbench/ipxact/SvdReader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "workbench/ipxact/Arithmetic.h"
#include "workbench/ipxact/MemoryReader.h"

namespace tq::ipxact {

namespace {

constexpr int kMostLevels = 16;
constexpr std::size_t kMostLabels = 65'536;

/// Decimal, "0x" and hexadecimal, "#" or "0b" and binary digits; K to T multiply by powers of
/// 1,024.
Number numberOf(std::string_view text) {
    const auto startsWith = [&text](std::string_view prefix) {
        return text.size() > prefix.size() && text.substr(0, prefix.size()) == prefix;
    };
    try {
        const auto literal = [](const std::string& literalText) {
            return evaluate(literalText, ExpressionLanguage::SystemVerilog,
                            [](std::string_view name) -> Value {
                                throw ExpressionError(std::string(name));
                            })
                .integer();
        };
        if (startsWith("+"))
            text.remove_prefix(1);
        if (startsWith("#") || startsWith("0b"))
            return literal("'b" + std::string(text.substr(text.front() == '#' ? 1 : 2)));
        return text.find_first_not_of("0123456789abcdefABCDEFxXkKmMgGtT") == std::string_view::npos
                   ? literal(std::string(text))
                   : std::nullopt;
    } catch (const ExpressionError&) {
        return std::nullopt;
    }
}

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// What registers take from the levels around them.
struct Properties {
    Number size = 32;
    Access access = Access::Unset;
    Number reset;
    Number mask;
};

class Reader {
public:
    Reader(Component& component, const DiagnosticSink& sink)
        : m_component(component), m_sink(sink), m_unknown(sink, component.leftOut) {}

    void read(Element device) {
        m_component.vlnv = {std::string(device.textOf("vendor")), "",
                            std::string(device.textOf("name")),
                            std::string(device.textOf("version"))};
        m_component.description = device.textOf("description");
        m_component.format = "CMSIS-SVD";
        MemoryMap map;
        map.name = m_component.vlnv.name;
        map.mark = markOf(device);
        if (const Element unit = device.child("addressUnitBits"))
            map.addressUnitBits = number(unit);
        const Properties properties = propertiesOf(device, {});
        m_peripherals = device.child("peripherals");
        for (const Element child : m_peripherals.children())
            if (child.name() == "peripheral")
                m_peripheralsByName.emplace(child.textOf("name"), child);
        for (const Element child : m_peripherals.children())
            if (child.name() == "peripheral")
                map.items.push_back(readPeripheral(child, properties));
            else
                m_unknown.report(child, m_peripherals, {"peripheral"});
        m_component.memoryMaps.push_back(std::move(map));
    }

private:
    Number number(Element element) {
        if (!element)
            return std::nullopt;
        const Number value = numberOf(element.text());
        if (!value && m_sink)
            m_sink(makeDiagnostic(Severity::Warning, "unknown-value", element.place(),
                                  "<" + std::string(element.name()) + "> \"" +
                                      std::string(element.text()) + "\" isn't a number"));
        return value;
    }
    Access accessOf(Element element) {
        static constexpr std::array<std::pair<std::string_view, Access>, 5> kWords{{
            {"read-write", Access::ReadWrite},
            {"read-only", Access::ReadOnly},
            {"write-only", Access::WriteOnly},
            {"writeOnce", Access::WriteOnce},
            {"read-writeOnce", Access::ReadWriteOnce},
        }};
        for (const auto& [word, access] : kWords)
            if (word == element.text())
                return access;
        if (m_sink)
            m_sink(makeDiagnostic(Severity::Warning, "unknown-word", element.place(),
                                  "\"" + std::string(element.text()) + "\" is no access",
                                  "one of: read-write, read-only, write-only, writeOnce, "
                                  "read-writeOnce"));
        return Access::Unset;
    }
    Properties propertiesOf(Element element, Properties properties) {
        for (const Element child : element.children()) {
            if (child.name() == "size")
                properties.size = number(child);
            else if (child.name() == "access")
                properties.access = accessOf(child);
            else if (child.name() == "resetValue")
                properties.reset = number(child);
            else if (child.name() == "resetMask")
                properties.mask = number(child);
        }
        return properties;
    }
    Array arrayOf(Element element) {
        Array array;
        if (const Element dim = element.child("dim")) {
            array.dimensions.push_back({number(dim), labelsOf(element.textOf("dimIndex"))});
            array.stride = number(element.child("dimIncrement"));
        }
        return array;
    }
    /// "0-3", "A-C" or "left,right".
    static std::vector<std::string> labelsOf(std::string_view text) {
        std::vector<std::string> labels;
        const std::size_t dash = text.find('-');
        if (dash != std::string_view::npos && text.find(',') == std::string_view::npos)
            return rangeLabels(text.substr(0, dash), text.substr(dash + 1));
        while (!text.empty() && labels.size() < kMostLabels) {
            const std::size_t comma = std::min(text.find(','), text.size());
            std::string_view label = text.substr(0, comma);
            while (!label.empty() && label.front() == ' ')
                label.remove_prefix(1);
            labels.emplace_back(label);
            text.remove_prefix(std::min(comma + 1, text.size()));
        }
        return labels;
    }
    static std::vector<std::string> rangeLabels(std::string_view first, std::string_view last) {
        std::vector<std::string> labels;
        const Number from = numberOf(first), to = numberOf(last);
        if (first.size() == 1 && last.size() == 1 && (!from || !to)) {
            for (char c = first[0]; c <= last[0] && c != '\x7f'; ++c)
                labels.emplace_back(1, c);
        } else if (from && to) {
            for (Int128 i = *from; i <= *to && labels.size() < kMostLabels; ++i)
                labels.push_back(decimalText(i));
        }
        return labels;
    }

    /// The object that another is derived from, by its name in the same list or by a path of names
    /// from the device.
    Element sourceOf(Element element, Element list) {
        const std::string_view name = element.attribute("derivedFrom");
        if (name.empty())
            return {};
        Element source = find(list, name);
        if (!source)
            source = findPath(name);
        if ((!source || source == element) && m_sink)
            m_sink(makeDiagnostic(Severity::Warning, "dangling-reference", element.place(),
                                  "it is derived from \"" + std::string(name) +
                                      "\", which isn't there"));
        return source == element ? Element() : source;
    }
    static Element find(Element list, std::string_view name) {
        for (const Element child : list.children())
            if (child.textOf("name") == name)
                return child;
        return {};
    }
    Element findPath(std::string_view path) {
        Element scope;
        while (!path.empty()) {
            const std::size_t dot = std::min(path.find('.'), path.size());
            const std::string_view name = path.substr(0, dot);
            if (!scope) {
                const auto known = m_peripheralsByName.find(name);
                scope = known == m_peripheralsByName.end() ? Element() : known->second;
            } else {
                const Element inner = scope.child("registers") ? scope.child("registers")
                                      : scope.child("fields")  ? scope.child("fields")
                                                               : scope;
                scope = find(inner, name);
            }
            if (!scope)
                return {};
            path.remove_prefix(std::min(dot + 1, path.size()));
        }
        return scope;
    }
    /// Calls `read` for what `element` is derived from and then for itself.
    template <class Read>
    void readDerived(Element element, Element list, Read read) {
        if (const Element source = sourceOf(element, list)) {
            if (m_levels == kMostLevels || ++m_derived > kMostDerived) {
                if (m_sink && !std::exchange(m_isCutShort, true))
                    m_sink(makeDiagnostic(Severity::Warning, "too-deep", element.place(),
                                          "too many objects are derived from one another"));
            } else {
                ++m_levels;
                readDerived(source, list, read);
                --m_levels;
            }
        }
        read(element);
    }

    MemoryItem readPeripheral(Element element, const Properties& around) {
        MemoryItem block;
        Properties properties = around;
        Element registers;
        block.mark = markOf(element);
        readDerived(element, m_peripherals, [&](Element one) {
            properties = propertiesOf(one, properties);
            if (one.child("registers"))
                registers = one.child("registers");
            readPeripheralContent(block, one);
        });
        block.access = properties.access;
        readRegisters(block.registers, registers, properties);
        return block;
    }
    void readPeripheralContent(MemoryItem& block, Element element) {
        Number range;
        for (const Element child : element.children()) {
            const std::string_view name = child.name();
            if (name == "name")
                block.name = child.text();
            else if (name == "description")
                block.description = child.text();
            else if (name == "baseAddress")
                block.base = number(child);
            else if (name == "addressBlock") {
                const Number end = plus(number(child.child("offset")), number(child.child("size")));
                range = range && end ? Number(std::max(*range, *end)) : end;
            } else if (!isOneOf(name, {"version", "alternatePeripheral", "groupName",
                                       "prependToName", "appendToName", "headerStructName",
                                       "disableCondition", "size", "access", "protection",
                                       "resetValue", "resetMask", "interrupt", "registers", "dim",
                                       "dimIncrement", "dimIndex", "dimName", "dimArrayIndex"}))
                m_unknown.report(child, element,
                                 {"name", "baseAddress", "addressBlock", "interrupt", "registers",
                                  "description", "groupName"});
        }
        if (range)
            block.range = range;
        if (element.child("dim"))
            block.array = arrayOf(element);
    }

    void readRegisters(std::vector<Register>& items, Element list, const Properties& around) {
        if (m_levels == kMostLevels)
            return;
        ++m_levels;
        for (const Element child : list.children()) {
            if (child.name() == "register")
                items.push_back(readRegister(child, list, around));
            else if (child.name() == "cluster")
                items.push_back(readCluster(child, list, around));
        }
        --m_levels;
    }
    Register readCluster(Element element, Element list, const Properties& around) {
        Register cluster;
        cluster.isFile = true;
        cluster.mark = markOf(element);
        Properties properties = around;
        Element content = element;
        readDerived(element, list, [&](Element one) {
            properties = propertiesOf(one, properties);
            if (one.child("register") || one.child("cluster"))
                content = one;
            readCommon(cluster, one);
        });
        readRegisters(cluster.items, content, properties);
        return cluster;
    }
    void readCommon(Register& target, Element element) {
        for (const Element child : element.children()) {
            const std::string_view name = child.name();
            if (name == "name")
                target.name = child.text();
            else if (name == "displayName")
                target.displayName = child.text();
            else if (name == "description")
                target.description = child.text();
            else if (name == "addressOffset")
                target.offset = number(child);
            else if (name == "alternateRegister" || name == "alternateGroup" ||
                     name == "alternateCluster")
                target.modes = child.text();
            else if (!isOneOf(name,
                              {"register", "cluster", "fields", "size", "access", "protection",
                               "resetValue", "resetMask", "dim", "dimIncrement", "dimIndex",
                               "dimName", "dimArrayIndex", "headerStructName", "dataType",
                               "modifiedWriteValues", "writeConstraint", "readAction"}))
                m_unknown.report(child, element,
                                 {"name", "displayName", "description", "addressOffset", "size",
                                  "access", "resetValue", "resetMask", "fields", "dim",
                                  "dimIncrement", "register", "cluster"});
        }
        if (element.child("dim"))
            target.array = arrayOf(element);
    }
    Register readRegister(Element element, Element list, const Properties& around) {
        Register target;
        target.mark = markOf(element);
        Properties properties = around;
        Element fields;
        readDerived(element, list, [&](Element one) {
            properties = propertiesOf(one, properties);
            if (one.child("fields"))
                fields = one.child("fields");
            readCommon(target, one);
        });
        target.size = properties.size;
        target.access = properties.access;
        if (properties.reset)
            target.resets.push_back({"", cutTo(properties.reset, properties.size),
                                     cutTo(properties.mask, properties.size)});
        for (const Element child : fields.children())
            if (child.name() == "field")
                target.fields.push_back(readField(child, fields));
            else
                m_unknown.report(child, fields, {"field"});
        return target;
    }
    /// A value for registers of every size may be wider than this one.
    static Number cutTo(const Number& value, const Number& size) {
        if (!value || !size || *size < 1 || *size > 126)
            return value;
        return *value & ((Int128{1} << static_cast<int>(*size)) - 1);
    }

    Field readField(Element element, Element list) {
        Field field;
        field.mark = markOf(element);
        readDerived(element, list, [&](Element one) { readFieldContent(field, one); });
        return field;
    }
    void readFieldContent(Field& field, Element element) {
        Number lsb, msb;
        for (const Element child : element.children()) {
            const std::string_view name = child.name();
            if (name == "name")
                field.name = child.text();
            else if (name == "description")
                field.description = child.text();
            else if (name == "bitOffset")
                field.bitOffset = number(child);
            else if (name == "bitWidth")
                field.bitWidth = number(child);
            else if (name == "lsb")
                lsb = number(child);
            else if (name == "msb")
                msb = number(child);
            else if (name == "bitRange")
                std::tie(msb, lsb) = rangeOf(child);
            else if (name == "access")
                field.access = accessOf(child);
            else if (name == "modifiedWriteValues")
                field.modifiedWriteValue = child.text();
            else if (name == "readAction")
                field.readAction = child.text();
            else if (name == "enumeratedValues")
                readValues(field.values, child);
            else if (!isOneOf(name, {"writeConstraint", "dim", "dimIncrement", "dimIndex",
                                     "dimName", "dimArrayIndex"}))
                m_unknown.report(child, element,
                                 {"name", "description", "bitOffset", "bitWidth", "lsb", "msb",
                                  "bitRange", "access", "enumeratedValues", "readAction"});
        }
        if (lsb && msb) {
            field.bitOffset = lsb;
            field.bitWidth = plus(minus(msb, lsb), 1);
        } else if (field.bitOffset && !field.bitWidth) {
            field.bitWidth = 1;
        }
        if (element.child("dim"))
            field.array = arrayOf(element);
    }
    /// "[7:4]".
    std::pair<Number, Number> rangeOf(Element element) {
        const std::string_view text = element.text();
        const std::size_t colon = text.find(':');
        if (text.size() < 5 || text.front() != '[' || text.back() != ']' ||
            colon == std::string_view::npos) {
            static_cast<void>(number(element)); // reports it
            return {};
        }
        return {numberOf(text.substr(1, colon - 1)),
                numberOf(text.substr(colon + 1, text.size() - colon - 2))};
    }
    /// A value with bits that don't matter ("#1x") has no number.
    static void readValues(std::vector<EnumeratedValue>& values, Element element) {
        for (const Element child : element.children())
            if (child.name() == "enumeratedValue")
                values.push_back(
                    {std::string(child.textOf("name")), std::string(child.textOf("description")),
                     numberOf(child.textOf("value")), std::string(element.textOf("usage"))});
    }

    Component& m_component;
    const DiagnosticSink& m_sink;
    UnknownElements m_unknown;
    Element m_peripherals;
    std::unordered_map<std::string_view, Element> m_peripheralsByName;
    int m_levels = 0;
    std::size_t m_derived = 0;
    bool m_isCutShort = false;
};

} // namespace

bool isSvd(const ElementTree& tree) {
    return tree.rootNamespace().empty() && tree.root().name() == "device";
}

Component readSvd(const ElementTree& tree, const DiagnosticSink& sink) {
    Component component;
    component.file = tree.path();
    component.leftOut = tree.foreignElements();
    Reader(component, sink).read(tree.root());
    return component;
}

} // namespace tq::ipxact
