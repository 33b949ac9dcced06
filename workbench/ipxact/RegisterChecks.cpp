#include "workbench/ipxact/RegisterChecks.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "workbench/ipxact/Arithmetic.h"

namespace tq::ipxact {

namespace {

/// What lies at some addresses or bits, end exclusive.
struct Extent {
    Int128 start = 0;
    Int128 end = 0;
    Access access = Access::Unset;
    std::string_view name;
    Mark mark;
};

/// One only reads and the other only writes, so they may share a place.
bool areApart(Access left, Access right) {
    const auto writes = [](Access access) {
        return access == Access::WriteOnly || access == Access::WriteOnce;
    };
    return (left == Access::ReadOnly && writes(right)) ||
           (right == Access::ReadOnly && writes(left));
}

class Checker {
public:
    Checker(const Component& component, const ElementTree& tree, const DiagnosticSink& sink)
        : m_component(component), m_tree(tree), m_sink(sink) {}

    void check() {
        expectUniqueNames(m_component.memoryMaps, "memory map");
        expectUniqueNames(m_component.addressSpaces, "address space");
        expectUniqueNames(m_component.interfaces, "bus interface");
        for (const MemoryMap& map : m_component.memoryMaps)
            checkMap(map);
        for (const AddressSpace& space : m_component.addressSpaces)
            if (space.localMap)
                checkMap(*space.localMap);
        for (const BusInterface& interface : m_component.interfaces)
            checkInterface(interface);
        for (const Channel& channel : m_component.channels)
            for (const std::string& name : channel.interfaces)
                expectKnown(m_component.interfaces, name, "bus interface", channel.mark);
    }

private:
    void report(Severity severity, const char* id, const Mark& mark, const std::string& text,
                const Mark* other = nullptr) {
        Diagnostic diagnostic = makeDiagnostic(severity, id, placeOf(mark), text);
        if (other != nullptr)
            diagnostic.notes.push_back({placeOf(*other), "the other one is here"});
        m_sink(std::move(diagnostic));
    }
    [[nodiscard]] Place placeOf(const Mark& mark) const {
        return m_tree.placeAt(mark.line, mark.column);
    }

    template <class Objects>
    void expectUniqueNames(const Objects& objects, const char* kind) {
        std::unordered_map<std::string_view, const Mark*> seen;
        for (const auto& object : objects) {
            const auto [place, isNew] = seen.emplace(object.name, &object.mark);
            if (!isNew)
                report(Severity::Error, "duplicate-name", object.mark,
                       std::string(kind) + " \"" + object.name + "\" occurs twice", place->second);
        }
    }
    template <class Objects>
    void expectKnown(const Objects& objects, const std::string& name, const char* kind,
                     const Mark& mark) {
        if (!name.empty() && std::none_of(objects.begin(), objects.end(),
                                          [&](const auto& object) { return object.name == name; }))
            report(Severity::Error, "dangling-reference", mark,
                   "there is no " + std::string(kind) + " \"" + name + "\"");
    }

    void checkInterface(const BusInterface& interface) {
        expectKnown(m_component.memoryMaps, interface.memoryMap, "memory map", interface.mark);
        expectKnown(m_component.addressSpaces, interface.addressSpace, "address space",
                    interface.mark);
        for (const Bridge& bridge : interface.bridges)
            expectKnown(m_component.interfaces, bridge.initiator, "bus interface", bridge.mark);
    }

    void checkMap(const MemoryMap& map) {
        m_unitBits = map.addressUnitBits;
        checkItems(map.items);
        for (const MemoryRemap& remap : map.remaps)
            checkItems(remap.items);
    }
    void checkItems(const std::vector<MemoryItem>& items) {
        expectUniqueNames(items, "address block");
        std::vector<Extent> extents;
        for (const MemoryItem& item : items) {
            checkItem(item);
            addExtent(extents, item, item.base, item.range);
        }
        reportOverlaps(extents, Severity::Warning, "block-overlap", "address block");
    }
    void checkItem(const MemoryItem& item) {
        if (item.kind == MemoryItem::Kind::Subspace)
            checkSubspace(item);
        for (const MemoryItem& inner : item.items)
            checkItem(inner);
        checkRegisters(item.registers, item.range, item.name, item.access);
    }
    void checkSubspace(const MemoryItem& item) {
        expectKnown(m_component.interfaces, item.initiator, "bus interface", item.mark);
        for (const BusInterface& interface : m_component.interfaces)
            for (const AddressSpace& space : m_component.addressSpaces)
                if (interface.name == item.initiator && space.name == interface.addressSpace)
                    expectKnown(space.segments, item.segment, "segment", item.mark);
    }

    /// An array is one extent per element where the elements leave room for others between.
    template <class Object>
    void addExtent(std::vector<Extent>& extents, const Object& object, const Number& start,
                   const Number& size, Access around = Access::Unset) {
        const Number count = countOf(object.array), stride = strideOf(object.array, size);
        const Number end = plus(start, plus(times(minus(count, 1), stride), size));
        if (!start || !end || !count || *size < 1)
            return;
        const Access access = object.access == Access::Unset ? around : object.access;
        if (*stride <= *size || *count > kMostElements - static_cast<Int128>(extents.size())) {
            extents.push_back({*start, *end, access, object.name, object.mark});
            return;
        }
        for (Int128 i = 0; i < *count; ++i)
            extents.push_back({*start + i * *stride, *start + i * *stride + *size, access,
                               object.name, object.mark});
    }
    void reportOverlaps(std::vector<Extent>& extents, Severity severity, const char* id,
                        const char* kind) {
        std::stable_sort(extents.begin(), extents.end(),
                         [](const Extent& a, const Extent& b) { return a.start < b.start; });
        const Extent* widest = nullptr;
        for (const Extent& extent : extents) {
            if (widest != nullptr && extent.start < widest->end && extent.name != widest->name &&
                !areApart(widest->access, extent.access))
                report(severity, id, extent.mark,
                       std::string(kind) + " \"" + std::string(extent.name) + "\" overlaps \"" +
                           std::string(widest->name) + "\" at " + hexText(extent.start),
                       &widest->mark);
            if (widest == nullptr || extent.end > widest->end)
                widest = &extent;
        }
    }

    void checkRegisters(const std::vector<Register>& items, const Number& range,
                        const std::string& container, Access access) {
        expectUniqueNames(items, "register");
        std::vector<Extent> extents;
        for (const Register& item : items) {
            const Number size = sizeOf(item, m_unitBits);
            const Access own = item.access == Access::Unset ? access : item.access;
            if (item.modes.empty()) // else another's place on purpose
                addExtent(extents, item, item.offset, size, access);
            expectInside(item, size, range, container);
            if (item.isFile)
                checkRegisters(item.items, item.range, item.name, own);
            else
                checkRegister(item, item.size, own);
        }
        reportOverlaps(extents, Severity::Warning, "register-overlap", "register");
    }
    void expectInside(const Register& item, const Number& size, const Number& range,
                      const std::string& container) {
        const Number stride = strideOf(item.array, size);
        const Number end =
            plus(item.offset, plus(times(minus(countOf(item.array), 1), stride), size));
        if (end && range && *end > *range)
            report(Severity::Error, "beyond-block", item.mark,
                   std::string(item.array.dimensions.empty() ? "register" : "array") + " \"" +
                       item.name + "\" ends at " + hexText(*end) + ", beyond \"" + container +
                       "\" of " + hexText(*range));
    }

    void checkRegister(const Register& item, const Number& size, Access access) {
        expectUniqueNames(item.fields, "field");
        checkResets(item.resets, size, item.name, item.mark);
        std::vector<Extent> extents;
        for (const Field& field : item.fields) {
            addExtent(extents, field, field.bitOffset, field.bitWidth, access);
            checkResets(field.resets, field.bitWidth, field.name, field.mark);
            const Number stride = strideOf(field.array, field.bitWidth);
            const Number end =
                plus(field.bitOffset,
                     plus(times(minus(countOf(field.array), 1), stride), field.bitWidth));
            if (end && size && *end > *size)
                report(Severity::Error, "field-beyond-register", field.mark,
                       "field \"" + field.name + "\" ends at bit " + decimalText(*end - 1) +
                           ", beyond the " + decimalText(*size) + " bits of \"" + item.name + "\"");
        }
        reportOverlaps(extents, Severity::Error, "field-overlap", "field");
        for (const Register& alternate : item.alternates)
            checkRegister(alternate, alternate.size ? alternate.size : size, access);
    }
    void checkResets(const std::vector<Reset>& resets, const Number& size, const std::string& name,
                     const Mark& mark) {
        for (const Reset& reset : resets)
            if (reset.value && size && *size >= 0 && *size < 127 &&
                (*reset.value < 0 || (*reset.value >> static_cast<int>(*size)) != 0))
                report(Severity::Error, "reset-too-wide", mark,
                       "the reset " + hexText(*reset.value) + " of \"" + name +
                           "\" has more than its " + decimalText(*size) + " bits");
    }

    /// Extents of one block that are kept apart; longer arrays count as a whole.
    static constexpr Int128 kMostElements = 100'000;

    const Component& m_component;
    const ElementTree& m_tree;
    const DiagnosticSink& m_sink;
    Number m_unitBits = 8;
};

} // namespace

void checkComponent(const Component& component, const ElementTree& tree,
                    const DiagnosticSink& sink) {
    if (sink)
        Checker(component, tree, sink).check();
}

} // namespace tq::ipxact
