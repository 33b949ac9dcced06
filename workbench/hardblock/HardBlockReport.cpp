#include "workbench/hardblock/HardBlockReport.h"

#include <cstddef>
#include <map>
#include <optional>
#include <utility>

#include "base/FileReading.h"
#include "hardblock/HBSHardBlockDataMgr.h"
#include "workbench/files/InputError.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/MessageFinding.h"
#include "workbench/text/Table.h"
#include "workbench/text/Text.h"
#include "workbench/text/TextStream.h"

namespace tq {

namespace {

using hardblock::HardBlockData;
using hardblock::Interface;
using hardblock::Pin;
using hardblock::PortMap;

/// The library keeps these in no defined order; people want them sorted.
std::map<std::string, Interface*> interfacesOf(HardBlockData& block) {
    std::map<std::string, Interface*> sorted;
    for (auto it = block.getInterfaceStartIterator(); it != block.getInterfaceEndIterator(); ++it)
        sorted.emplace(it->first, it->second.get());
    return sorted;
}

std::map<std::string, std::string> parametersOf(Interface& interface) {
    return {interface.getParameterStartIterator(), interface.getParameterEndIterator()};
}

std::map<std::string, PortMap*> portMapsOf(Interface& interface) {
    std::map<std::string, PortMap*> sorted;
    for (auto it = interface.getPortMapStartIterator(); it != interface.getPortMapEndIterator();
         ++it)
        sorted.emplace(it->first, it->second.get());
    return sorted;
}

const char* typeName(const Pin& pin) {
    return pin.getType() == hardblock::Type::Vector ? "vector" : "wire";
}

std::string rangeOf(const Pin& pin) {
    const auto bound = [](int size) { return size == -1 ? "" : std::to_string(size); };
    const std::string left = bound(pin.getLeftSize());
    const std::string right = bound(pin.getRightSize());
    return left.empty() && right.empty() ? "" : "[" + left + ":" + right + "]";
}

std::size_t pinsOf(HardBlockData& block) {
    return static_cast<std::size_t>(block.getPinsEndIterator() - block.getPinsStartIterator());
}

void printPins(HardBlockData& block, std::ostream& out) {
    Table table({{"Pin"}, {"Direction"}, {"Type"}, {"Range"}, {"Default"}});
    for (auto it = block.getPinsStartIterator(); it != block.getPinsEndIterator(); ++it) {
        const Pin& pin = **it;
        table.addRow({pin.getName(), pin.getDirectionAsStr(), typeName(pin), rangeOf(pin),
                      pin.getDefaultValue()});
    }
    table.print(out);
}

void printInterfaces(HardBlockData& block, std::ostream& out) {
    Table interfaces({{"Interface"}, {"Module"}, {"Parameters"}});
    Table maps({{"Interface"}, {"Port"}, {"Pin"}});
    for (const auto& [name, interface] : interfacesOf(block)) {
        std::string parameters;
        for (const auto& [parameter, value] : parametersOf(*interface))
            parameters.append(parameters.empty() ? "" : ", ")
                .append(parameter)
                .append("=")
                .append(value);
        interfaces.addRow({name, interface->getApModuleName(), parameters});
        for (const auto& entry : portMapsOf(*interface))
            for (const auto& [mapped, port] : entry.second->getMappedRawPorts())
                maps.addRow({name, port, mapped});
    }
    for (const Table* table : {&interfaces, &maps}) {
        if (table->empty())
            continue;
        out << '\n';
        table->print(out);
    }
}

void write(JsonWriter& json, const Pin& pin) {
    json.beginObject();
    json.member("name", pin.getName());
    json.member("type", typeName(pin));
    json.member("direction", pin.getDirectionAsStr());
    json.member("default", pin.getDefaultValue());
    json.member("left", pin.getLeftSize());
    json.member("right", pin.getRightSize());
    json.endObject();
}

void write(JsonWriter& json, const std::string& name, Interface& interface) {
    json.beginObject();
    json.member("name", name);
    json.member("module", interface.getApModuleName());
    json.beginObject("parameters");
    for (const auto& [parameter, value] : parametersOf(interface))
        json.member(parameter, value);
    json.endObject();
    json.beginArray("port_maps");
    for (const auto& entry : portMapsOf(interface))
        for (const auto& [mapped, port] : entry.second->getMappedRawPorts()) {
            json.beginObject();
            json.member("port", port);
            json.member("mapped", mapped);
            json.endObject();
        }
    json.endArray();
    json.endObject();
}

/// "[7:4]" of "A[7:4]".
std::string rangeOf(const std::string& port) {
    const std::size_t open = port.find('[');
    return open == std::string::npos ? "" : port.substr(open);
}

void writePort(JsonWriter& json, const std::string& port, PortMap& portMap) {
    json.beginObject();
    json.member("name", port);
    json.beginArray("pins");
    for (const auto& [mapped, side] : portMap.getMappedRawPorts()) {
        json.beginObject();
        json.member("port", side);
        json.member("mapped", mapped);
        json.endObject();
    }
    json.endArray();
    json.endObject();
}

} // namespace

/// The hard blocks of the file alone: the data area, which the manager reads at its first use, may
/// hold others of the same names.
std::vector<HardBlockData*> readHardBlocks(const std::string& path, const DiagnosticSink& sink) {
    if (const auto obstacle = base::findObstacle(path))
        throw fileError(path, "can't be read: " + obstacle->reason);
    // They say what the findings say.
    const MessageScope silence([](const ComMsg&) {});
    auto* manager = HBSHardBlockDataMgr::getHardBlockDataMgr();
    const auto before = static_cast<std::ptrdiff_t>(manager->getHardBlocksData().size());
    std::optional<Diagnostic> fatal;
    const bool good = manager->createHardBlocks(path, [&](Diagnostic finding) {
        if (finding.severity == Severity::Error) {
            finding.id.clear();
            fatal = std::move(finding);
        } else if (sink) {
            sink(std::move(finding));
        }
    });
    if (fatal)
        throw InputError(*fatal);
    if (!good)
        throw fileError(path, "the file isn't hard block metadata");
    const auto all = manager->getHardBlocksData();
    return {all.begin() + before, all.end()};
}

std::string hardBlockList(const std::vector<HardBlockData*>& blocks) {
    using Align = Table::Align;
    Table table({{"Hard block"}, {"Pins", Align::Right}, {"Interfaces", Align::Right}});
    for (HardBlockData* block : blocks)
        table.addRow({block->getName(), std::to_string(pinsOf(*block)),
                      std::to_string(interfacesOf(*block).size())});
    TextStream out;
    table.print(out);
    return out.str();
}

std::string hardBlockListJson(const std::vector<HardBlockData*>& blocks) {
    JsonWriter json;
    json.beginArray();
    for (HardBlockData* block : blocks) {
        json.beginObject();
        json.member("name", block->getName());
        json.member("pins", pinsOf(*block));
        json.member("interfaces", interfacesOf(*block).size());
        json.endObject();
    }
    json.endArray();
    return json.text();
}

std::string hardBlockTables(HardBlockData& block) {
    TextStream out;
    out << printable(block.getName()) << ": pins " << pinsOf(block) << ", interfaces "
        << interfacesOf(block).size() << "\n\n";
    printPins(block, out);
    printInterfaces(block, out);
    return out.str();
}

std::string hardBlockJson(HardBlockData& block) {
    JsonWriter json;
    json.beginObject();
    json.member("name", block.getName());
    json.beginArray("pins");
    for (auto it = block.getPinsStartIterator(); it != block.getPinsEndIterator(); ++it)
        write(json, **it);
    json.endArray();
    json.beginArray("interfaces");
    for (const auto& [name, interface] : interfacesOf(block))
        write(json, name, *interface);
    json.endArray();
    json.endObject();
    return json.text();
}

std::string hardBlockTree(HardBlockData& block) {
    TextStream out;
    out << printable(block.getName()) << '\n';
    for (const auto& [name, interface] : interfacesOf(block)) {
        const std::string module = interface->getApModuleName();
        out << "  " << printable(name) << (module.empty() ? "" : " (" + printable(module) + ")")
            << '\n';
        for (const auto& [port, portMap] : portMapsOf(*interface)) {
            out << "    " << printable(port) << '\n';
            for (const auto& [mapped, side] : portMap->getMappedRawPorts())
                out << "      " << printable(rangeOf(side)) << (rangeOf(side).empty() ? "" : " ")
                    << "-> " << printable(mapped) << '\n';
        }
    }
    return out.str();
}

std::string hardBlockTreeJson(HardBlockData& block) {
    JsonWriter json;
    json.beginObject();
    json.member("name", block.getName());
    json.beginArray("interfaces");
    for (const auto& [name, interface] : interfacesOf(block)) {
        json.beginObject();
        json.member("name", name);
        json.member("module", interface->getApModuleName());
        json.beginArray("ports");
        for (const auto& [port, portMap] : portMapsOf(*interface))
            writePort(json, port, *portMap);
        json.endArray();
        json.endObject();
    }
    json.endArray();
    json.endObject();
    return json.text();
}

} // namespace tq
