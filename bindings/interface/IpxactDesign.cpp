// Designs of IP-XACT components.

#include "bindings/core/Describe.h"
#include "bindings/core/Invoke.h"
#include "bindings/interface/IpxactParts.h"
#include "workbench/ipxact/DesignMap.h"

namespace tq::bindings {

using ipxact::Design;
using ipxact::SeenBlock;
using ipxact::SeenSpace;

struct InstanceRow {
    std::string path;
    std::string vlnv;
    bool isHierarchical = false;
};
template <>
struct RecordOf<InstanceRow> {
    using I = InstanceRow;
    static constexpr const char* name = "DesignInstance";
    static constexpr auto fields = std::tuple{field("path", &I::path), field("vlnv", &I::vlnv),
                                              field("isHierarchical", &I::isHierarchical)};
};

struct ConnectionRow {
    std::string name;
    std::string first;
    std::string second;
};
template <>
struct RecordOf<ConnectionRow> {
    using C = ConnectionRow;
    static constexpr const char* name = "DesignConnection";
    static constexpr auto fields =
        std::tuple{field("name", &C::name), field("first", &C::first), field("second", &C::second)};
};

template <>
struct RecordOf<SeenBlock> {
    static constexpr const char* name = "SeenBlock";
    static constexpr auto fields =
        std::tuple{field("path", &SeenBlock::path), field("start", &SeenBlock::start),
                   field("end", &SeenBlock::end)};
};
template <>
struct RecordOf<SeenSpace> {
    static constexpr const char* name = "SeenSpace";
    static constexpr auto fields =
        std::tuple{field("name", &SeenSpace::name), field("addressSpace", &SeenSpace::addressSpace),
                   field("blocks", &SeenSpace::blocks)};
};

namespace {

std::string textOf(const Design& design) {
    return design.vlnv.text();
}
std::string vlnv(const Design& design) {
    return design.vlnv.text();
}
std::string file(const Design& design) {
    return design.file;
}

std::vector<InstanceRow> instances(const Design& design) {
    std::vector<InstanceRow> rows;
    rows.reserve(design.instances.size());
    for (const ipxact::Instance& instance : design.instances)
        rows.push_back({instance.path, instance.component.vlnv.text(), instance.isHierarchical});
    return rows;
}

std::vector<ConnectionRow> connections(const Design& design) {
    const auto pathOf = [&design](const ipxact::Endpoint& end) {
        return design.instances[end.instance].path + "/" + end.interface;
    };
    std::vector<ConnectionRow> rows;
    rows.reserve(design.connections.size());
    for (const ipxact::Connection& connection : design.connections)
        rows.push_back({connection.name, pathOf(connection.first), pathOf(connection.second)});
    return rows;
}

std::vector<SeenSpace> mapOf(const Design& design) {
    return mapDesign(design, messageSink());
}
std::string tablesOf(const Design& design) {
    return designMapTable(mapOf(design));
}
std::string jsonOf(const Design& design) {
    DiagnosticList findings;
    const std::vector<SeenSpace> spaces = mapDesign(design, findings.sink());
    return designMapJson(spaces, findings.all());
}

std::unique_ptr<HABMBlock> importBlock(const Design& design) {
    ipxact::ImportSummary summary;
    return importDesign(design, summary, messageSink());
}

} // namespace

std::unique_ptr<Design> readDesignFile(const std::string& path,
                                       const std::vector<std::string>& libraries) {
    return std::make_unique<Design>(ipxact::readDesign(path, libraries, messageSink()));
}

void describeDesign(Interface& interface) {
    Describe<Design>("Design", "ipxact design", "design",
                     "A design with its component instances through all levels. Never changes.")
        .called<&textOf>()
        .deletable()
        .iterates("instances", nullptr)
        .property<&file>("file", "The path that it was read from.")
        .property<&vlnv>("vlnv", "vendor:library:name:version.")
        .property<&instances>("instances", "The instances, parents ahead of what is in them.")
        .property<&connections>("connections", "Its connections: INSTANCE/INTERFACE twice.")
        .method<&mapOf>("mapDesign", {},
                        "What each initiator sees at which addresses; the end is exclusive.",
                        Mode::Slow)
        .method<&importBlock>("importDesign", {},
                              "The design as a definition in the block model; messages tell what "
                              "that has no place for.",
                              Mode::Slow)
        .method<&tablesOf>("tables", {}, "What the initiators see as aligned tables.", Mode::Slow)
        .method<&jsonOf>("json", {}, "The same as a JSON document.", Mode::Slow);
    interface.add(infoOf<Design>());
}

} // namespace tq::bindings
