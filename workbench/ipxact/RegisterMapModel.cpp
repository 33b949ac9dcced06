#include "workbench/ipxact/RegisterMapModel.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "workbench/ipxact/Arithmetic.h"
#include "workbench/ipxact/RegisterListing.h"

namespace tq::ipxact {

namespace {

/// What fits into a plain number; absent otherwise.
template <class Plain>
std::optional<Plain> plain(const Number& number) {
    if (!number || *number < 0 || *number > static_cast<Int128>(std::numeric_limits<Plain>::max()))
        return std::nullopt;
    return static_cast<Plain>(*number);
}

Number inBytes(const Number& units, const Number& unitBits) {
    const Number bits = times(units, unitBits);
    return bits ? Number(*bits / 8) : std::nullopt;
}

MapAccess mapAccess(Access access) {
    if (access == Access::ReadOnly)
        return MapAccess::ReadOnly;
    return access == Access::WriteOnly || access == Access::WriteOnce ? MapAccess::WriteOnly
                                                                      : MapAccess::ReadWrite;
}

MapUsage mapUsage(const MemoryItem& item) {
    if (item.usage == "memory")
        return MapUsage::Memory;
    return item.usage == "reserved" ? MapUsage::Reserved : MapUsage::Register;
}

class Builder {
public:
    Builder(const Component& component, const DiagnosticSink& sink)
        : m_component(component), m_sink(sink) {}

    MapModel build() {
        MapModel model;
        model.name = m_component.vlnv.name;
        model.description = m_component.description;
        for (const ListedBlock& block : listBlocks(m_component))
            addBlock(model, block);
        return model;
    }

private:
    void leaveOut(const std::string& path, const Mark& mark, const char* why) {
        if (!m_sink)
            return;
        Place place = placeOfFile(m_component.file);
        place.line = mark.line;
        place.column = mark.column;
        m_sink(makeDiagnostic(Severity::Remark, "not-exported", std::move(place),
                              "\"" + path + "\" isn't exported: " + why));
    }
    void addBlock(MapModel& model, const ListedBlock& block) {
        const auto base = plain<std::uint64_t>(inBytes(block.address, block.addressUnitBits));
        if (!base || !block.modes.empty()) {
            leaveOut(block.path, block.source->mark,
                     base ? "it is there in some modes only" : "its address is unknown");
            return;
        }
        MapBlock target;
        target.path = block.path;
        target.description = block.source->description;
        target.base = *base;
        target.size = plain<std::uint64_t>(inBytes(block.size, block.addressUnitBits)).value_or(0);
        target.usage = mapUsage(*block.source);
        for (const ListedRegister& entry : block.registers)
            addRegister(target, block, entry);
        model.blocks.push_back(std::move(target));
    }
    void addRegister(MapBlock& target, const ListedBlock& block, const ListedRegister& entry) {
        const auto offset = plain<std::uint64_t>(
            inBytes(minus(entry.address, block.address), block.addressUnitBits));
        const auto width = plain<unsigned>(entry.width);
        if (!offset || !width || !entry.modes.empty()) {
            leaveOut(entry.path, entry.source->mark,
                     offset && width ? "it is there in some modes only"
                                     : "its address or width is unknown");
            return;
        }
        MapRegister one;
        one.name = flatName(entry.path, block.path);
        one.description = entry.source->description;
        one.offset = *offset;
        one.width = *width;
        one.access = mapAccess(entry.access);
        one.reset = plain<std::uint64_t>(entry.reset);
        for (const ListedField& field : entry.fields)
            addField(one, field);
        target.registers.push_back(std::move(one));
    }
    static void addField(MapRegister& target, const ListedField& field) {
        const auto lsb = plain<unsigned>(field.bitOffset);
        const auto width = plain<unsigned>(field.bitWidth);
        if (lsb && width && *width > 0)
            target.fields.push_back(
                {field.name, field.source->description, *lsb, *width, mapAccess(field.access)});
    }

    const Component& m_component;
    const DiagnosticSink& m_sink;
};

} // namespace

std::string flatName(std::string_view path, std::string_view blockPath) {
    std::string name(path.substr(std::min(path.size(), blockPath.size() + 1)));
    name.erase(std::remove(name.begin(), name.end(), ']'), name.end());
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '/' || c == '['; }, '_');
    return name;
}

MapModel mapModelOf(const Component& component, const DiagnosticSink& sink) {
    return Builder(component, sink).build();
}

} // namespace tq::ipxact
