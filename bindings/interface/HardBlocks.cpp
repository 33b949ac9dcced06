// Pins, interfaces and port maps of hard blocks.

#include <algorithm>

#include "bindings/core/Describe.h"
#include "bindings/core/Invoke.h"
#include "bindings/interface/Parts.h"
#include "hardblock/HBSHardBlockDataMgr.h"
#include "workbench/hardblock/HardBlockReport.h"

namespace tq::bindings {

using hardblock::HardBlockData;
using hardblock::Pin;
using hardblock::PortMap;
using HardBlockInterface = hardblock::Interface;

struct MappedRange {
    std::string mapped;
    std::string port;
};

template <>
struct RecordOf<MappedRange> {
    static constexpr const char* name = "MappedRange";
    static constexpr auto fields =
        std::tuple{field("mapped", &MappedRange::mapped), field("port", &MappedRange::port)};
};

template <>
struct TextsOf<hardblock::Direction> {
    static constexpr std::array table = {std::pair{hardblock::Direction::In, "IN"},
                                         std::pair{hardblock::Direction::InOut, "INOUT"},
                                         std::pair{hardblock::Direction::Out, "OUT"}};
};

template <>
struct TextsOf<hardblock::Type> {
    static constexpr std::array table = {std::pair{hardblock::Type::Wire, "wire"},
                                         std::pair{hardblock::Type::Vector, "vector"}};
};

namespace {

HBSHardBlockDataMgr& manager() {
    return *HBSHardBlockDataMgr::getHardBlockDataMgr();
}

template <class T>
std::string nameOf(const T& object) {
    return object.getName();
}

/// The objects of a map or a vector of owning pointers, by name.
template <class T, class Iterator, class Get>
std::vector<T*> collect(Iterator begin, Iterator end, Get get) {
    std::vector<T*> all;
    for (Iterator entry = begin; entry != end; ++entry)
        all.push_back(get(*entry));
    return all;
}

template <class T>
std::vector<T*> byName(std::vector<T*> objects) {
    std::sort(objects.begin(), objects.end(),
              [](const T* a, const T* b) { return a->getName() < b->getName(); });
    return objects;
}

HardBlockData* getHardBlockByName(const std::string& name) {
    HardBlockData* const found = manager().getHardBlockByName(name);
    if (found == nullptr)
        throw ScriptError(Failure::Kind::NotFound, "there is no hard block \"" + name + "\"");
    return found;
}

std::vector<HardBlockData*> getHardBlocksData() {
    return manager().getHardBlocksData();
}

std::vector<HardBlockData*> readBlocks(const std::string& path) {
    return readHardBlocks(path, messageSink());
}

std::vector<HardBlockInterface*> interfaces(HardBlockData& block) {
    return byName(collect<HardBlockInterface>(block.getInterfaceStartIterator(),
                                              block.getInterfaceEndIterator(),
                                              [](auto& entry) { return entry.second.get(); }));
}

HardBlockInterface* getInterfaceByName(HardBlockData& block, const std::string& name) {
    HardBlockInterface* const found = block.getInterfaceByName(name);
    if (found == nullptr)
        throw ScriptError(Failure::Kind::NotFound,
                          "hard block " + block.getName() + " has no interface \"" + name + "\"");
    return found;
}

std::vector<Pin*> pins(HardBlockData& block) {
    return collect<Pin>(block.getPinsStartIterator(), block.getPinsEndIterator(),
                        [](auto& entry) { return entry.get(); });
}

std::vector<std::string> findPinsOf(HardBlockData& block, const std::string& port) {
    const PortAnswer answer = findPins(block, port);
    if (!answer.isWhole())
        throw ScriptError(Failure::Kind::NotFound, answer.problem);
    std::vector<std::string> pins;
    pins.reserve(answer.mappings.size());
    for (const PortAnswer::Mapping& mapping : answer.mappings)
        pins.push_back(mapping.pin);
    return pins;
}

std::map<std::string, std::string> parameters(HardBlockInterface& interface) {
    return {interface.getParameterStartIterator(), interface.getParameterEndIterator()};
}

std::vector<PortMap*> portMaps(HardBlockInterface& interface) {
    return byName(collect<PortMap>(interface.getPortMapStartIterator(),
                                   interface.getPortMapEndIterator(),
                                   [](auto& entry) { return entry.second.get(); }));
}

std::vector<MappedRange> mappedRawPorts(PortMap& map) {
    std::vector<MappedRange> ranges;
    ranges.reserve(map.getMappedRawPorts().size());
    for (const auto& [mapped, port] : map.getMappedRawPorts())
        ranges.push_back({mapped, port});
    return ranges;
}

} // namespace

void describeHardBlocks(Interface& interface) {
    Describe<HardBlockData>("HardBlockData", "hardblock block", "hard block",
                            "What one hard block of the device offers: its pins and interfaces.")
        .called<&nameOf<HardBlockData>>()
        .property<&HardBlockData::getName>("name", "The hard block's name.")
        .property<&interfaces>("interfaces", "Its interfaces, by name.")
        .property<&pins>("pins", "Its pins in order of creation.")
        .maker<&getInterfaceByName>("getInterfaceByName", {required("name")},
                                    "The interface of that name.")
        .method<&findPinsOf>("findPins", {required("port")},
                             "The pins behind a port or some of its bits: \"M_AXI:AWADDR[7:4]\".")
        .method<&hardBlockTables>("tables", {}, "The hard block as aligned tables.")
        .method<&hardBlockJson>("json", {}, "The same as a JSON document.");
    interface.add(infoOf<HardBlockData>());

    using I = HardBlockInterface;
    Describe<I>("Interface", "hardblock interface", "interface",
                "An interface of a hard block: its access point, parameters and port maps.")
        .called<&nameOf<I>>()
        .property<&I::getName>("name", "The interface's name.")
        .property<&I::getApModuleName>("apModuleName", "The module of its access point.")
        .property<&parameters>("parameters", "Its parameters by name.")
        .property<&portMaps>("portMaps", "Its port maps, by port.")
        .method<&I::getParameterByName>("getParameterByName", {required("name")},
                                        "A parameter's value; empty for an unknown one.")
        .method<&I::getPortMapByName>("getPortMapByName", {required("port")},
                                      "The pin bit that one bit of a port is mapped to, or the "
                                      "empty text: \"A[6]\".");
    interface.add(infoOf<I>());

    Describe<Pin>("Pin", "hardblock pin", "pin", "A pin of a hard block.")
        .called<&nameOf<Pin>>()
        .property<&Pin::getName>("name", "The pin's name.")
        .property<&Pin::getDirection>("direction", "IN, OUT or INOUT.")
        .property<&Pin::getType>("type", "wire or vector.")
        .property<&Pin::getDefaultValue>("defaultValue", "The default value as the file has it.")
        .property<&Pin::getLeftSize>("leftSize", "Left bound of its range; -1 for none.")
        .property<&Pin::getRightSize>("rightSize", "Right bound of its range; -1 for none.");
    interface.add(infoOf<Pin>());

    Describe<PortMap>("PortMap", "hardblock portmap", "port map",
                      "The mappings of one port of an interface.")
        .called<&nameOf<PortMap>>()
        .property<&PortMap::getName>("name", "The port's name.")
        .property<&mappedRawPorts>("mappedRawPorts", "Its mappings in order, as texts.");
    interface.add(infoOf<PortMap>());

    Island island{"hardblock", "Metadata of hard blocks.", {}};
    island.functions.push_back(function<&readBlocks>(
        "readHardBlocks", {required("path")},
        "The hard blocks of one metadata file. They stay to the end of the process.", Mode::Slow));
    island.functions.push_back(function<&getHardBlockByName>(
        "getHardBlockByName", {required("name")},
        "The first hard block of that name, of all that were read.", Mode::Slow));
    island.functions.back().result = &Convert<HardBlockData>::type(); // never none
    island.functions.push_back(function<&getHardBlocksData>(
        "getHardBlocksData", {},
        "All hard blocks: those of the data area (TQ_DATA_PATH) and of files read since.",
        Mode::Slow));
    interface.add(std::move(island));
}

} // namespace tq::bindings
