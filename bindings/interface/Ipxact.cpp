// Register descriptions of IP-XACT and CMSIS-SVD.

#include <memory>

#include "bindings/core/Describe.h"
#include "bindings/core/Invoke.h"
#include "bindings/interface/IpxactParts.h"
#include "bindings/interface/Parts.h"
#include "workbench/ipxact/RegisterDescription.h"
#include "workbench/ipxact/RegisterExport.h"

namespace tq::bindings {

using ipxact::Component;
using ipxact::ImportSummary;
using ipxact::ListedField;
using ipxact::ListedRegister;

struct ValueRow {
    std::string_view name;
    ipxact::Number value;
    std::string_view description;
};
template <>
struct RecordOf<ValueRow> {
    static constexpr const char* name = "EnumeratedValue";
    static constexpr auto fields =
        std::tuple{field("name", &ValueRow::name), field("value", &ValueRow::value),
                   field("description", &ValueRow::description)};
};

struct FieldRow {
    std::string_view name;
    std::optional<std::int64_t> bitOffset;
    std::optional<std::int64_t> bitWidth;
    std::string access;
    ipxact::Number reset;
    std::string_view description;
    std::vector<ValueRow> values;
};
template <>
struct RecordOf<FieldRow> {
    using F = FieldRow;
    static constexpr const char* name = "ListedField";
    static constexpr auto fields =
        std::tuple{field("name", &F::name),         field("bitOffset", &F::bitOffset),
                   field("bitWidth", &F::bitWidth), field("access", &F::access),
                   field("reset", &F::reset),       field("description", &F::description),
                   field("values", &F::values)};
};

struct RegisterRow {
    std::string path;
    std::string name;
    ipxact::Number address;
    std::optional<std::int64_t> width;
    std::string access;
    ipxact::Number reset;
    std::string modes;
    std::string_view description;
    std::vector<FieldRow> fields;
};
template <>
struct RecordOf<RegisterRow> {
    using R = RegisterRow;
    static constexpr const char* name = "ListedRegister";
    static constexpr auto fields =
        std::tuple{field("path", &R::path),       field("name", &R::name),
                   field("address", &R::address), field("width", &R::width),
                   field("access", &R::access),   field("reset", &R::reset),
                   field("modes", &R::modes),     field("description", &R::description),
                   field("fields", &R::fields)};
};

template <>
struct RecordOf<ipxact::Summary> {
    using S = ipxact::Summary;
    static constexpr const char* name = "ComponentSummary";
    static constexpr auto fields =
        std::tuple{field("memoryMaps", &S::memoryMaps), field("blocks", &S::blocks),
                   field("registers", &S::registers),   field("fields", &S::fields),
                   field("interfaces", &S::interfaces), field("leftOut", &S::leftOut)};
};

struct ImportRow {
    std::string path;
    ImportSummary summary;
};
template <>
struct RecordOf<ImportSummary> {
    using S = ImportSummary;
    static constexpr const char* name = "ImportSummary";
    static constexpr auto fields = std::tuple{field("memoryMaps", &S::memoryMaps),
                                              field("blocks", &S::blocks),
                                              field("registers", &S::registers),
                                              field("interfaces", &S::interfaces),
                                              field("instances", &S::instances),
                                              field("connections", &S::connections),
                                              field("left", &S::left)};
};
template <>
struct RecordOf<ImportRow> {
    static constexpr const char* name = "ImportedFile";
    static constexpr auto fields =
        std::tuple{field("path", &ImportRow::path), field("summary", &ImportRow::summary)};
};

namespace {

using Paths = std::vector<std::string>;

std::string textOf(const Component& component) {
    return component.vlnv.text();
}
std::string vlnv(const Component& component) {
    return component.vlnv.text();
}
std::string file(const Component& component) {
    return component.file;
}
std::string description(const Component& component) {
    return component.description;
}
std::string format(const Component& component) {
    return component.format;
}

FieldRow rowOf(const ListedField& listed) {
    FieldRow row{listed.name,
                 countOf(listed.bitOffset),
                 countOf(listed.bitWidth),
                 ipxact::accessName(listed.access),
                 listed.reset,
                 listed.source->description,
                 {}};
    for (const ipxact::EnumeratedValue& value : listed.source->values)
        row.values.push_back({value.name, value.value, value.description});
    return row;
}

/// The texts of fields are views into the entry.
Value valueOf(const ListedRegister& entry, Call& call) {
    RegisterRow row{entry.path,
                    entry.name,
                    entry.address,
                    countOf(entry.width),
                    ipxact::accessName(entry.access),
                    entry.reset,
                    entry.modes,
                    entry.source->description,
                    {}};
    for (const ListedField& field : entry.fields)
        row.fields.push_back(rowOf(field));
    return Convert<RegisterRow>::to(row, call);
}

} // namespace

/// Registers of a component, given to scripts one by one as they are visited.
struct VisitedRegisters {
    const Component* component;
};
template <>
struct Convert<VisitedRegisters> {
    static const Type& type() { return Convert<std::vector<RegisterRow>>::type(); }
    static Value to(const VisitedRegisters& registers, Call& call) {
        List list;
        forEachRegister(*registers.component,
                        [&](const ListedRegister& entry) { list.push_back(valueOf(entry, call)); });
        return {std::move(list)};
    }
};

namespace {

VisitedRegisters registers(const Component& component) {
    return {&component};
}

std::string tablesOf(const Component& component, const std::string& pattern, bool fields) {
    return registerTable(component, {pattern, fields});
}
std::string jsonOf(const Component& component, const std::string& pattern) {
    return registerJson(component, {pattern, true}, {});
}
std::string exportOf(const Component& component, const std::string& format) {
    return exportComponent(component, "registers." + format, messageSink());
}

std::unique_ptr<HABMBlock> importBlock(const Component& component) {
    ImportSummary summary;
    return importComponent(component, summary, messageSink());
}

std::unique_ptr<Component> readFile(const std::string& path, const Paths& libraries) {
    return std::make_unique<Component>(ipxact::readDescription(path, libraries, messageSink()));
}

ImportRow importPath(const std::string& path, const std::string& area, const Paths& libraries,
                     bool asTables) {
    ImportRow row;
    row.path = ipxact::importFile(path, {area, libraries, asTables}, row.summary, messageSink());
    return row;
}

} // namespace

void describeIpxact(Interface& interface) {
    using C = Component;
    Describe<C>("Component", "ipxact component", "component",
                "A component of IP-XACT or a device of CMSIS-SVD, with all its registers and "
                "fields. Never changes.")
        .called<&textOf>()
        .deletable()
        .iterates("registers", nullptr)
        .property<&file>("file", "The path that it was read from.")
        .property<&vlnv>("vlnv", "vendor:library:name:version.")
        .property<&description>("description", "Its description.")
        .property<&format>("format", "The edition: \"IP-XACT 2014\", \"CMSIS-SVD\".")
        .property<&ipxact::summaryOf>("summary", "Counts of what it holds, arrays not unrolled.")
        .property<&registers>("registers",
                              "The registers in file order, arrays unrolled up to 250,000 of them, "
                              "addresses counted from the start of their map in its units.",
                              Mode::Slow)
        .method<&importBlock>("importComponent", {},
                              "The component as a definition in the block model; messages tell "
                              "what that has no place for.",
                              Mode::Slow)
        .method<&exportOf>("export", {required("format")},
                           "The registers as a file for other tools, by the ending of such files: "
                           "xml (IP-XACT 2014), 2022.xml, h, ld, dts, rdl, svd, csv or md.",
                           Mode::Slow)
        .method<&tablesOf>(
            "tables", {optional("pattern", {std::string("*")}), optional("fields", {false})},
            "The registers whose names or paths match as an aligned table.", Mode::Slow)
        .method<&jsonOf>("json", {optional("pattern", {std::string("*")})},
                         "The same as a JSON document, with fields.", Mode::Slow);
    interface.add(infoOf<C>());
    describeDesign(interface);

    Island island{"ipxact", "IP-XACT components and designs, and CMSIS-SVD devices.", {}};
    island.functions.push_back(function<&readFile>(
        "readDescription", {required("path"), optional("libraries", {List{}})},
        "A component of any edition of IP-XACT or a CMSIS-SVD device, checked: messages tell what "
        "is wrong. Libraries are folders with the type definitions that it refers to.",
        Mode::Slow));
    island.functions.push_back(function<&readDesignFile>(
        "readDesign", {required("path"), optional("libraries", {List{}})},
        "A design, a design configuration or a hierarchical component with all that is below it. "
        "Without libraries the files beside it are searched.",
        Mode::Slow));
    island.functions.push_back(function<&importPath>(
        "importFile",
        {required("path"), required("area"), optional("libraries", {List{}}),
         optional("asTables", {false})},
        "Writes the definition of a component, design or device below a data area, or its tables.",
        Mode::Slow));
    interface.add(std::move(island));
}

} // namespace tq::bindings
