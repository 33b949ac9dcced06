#include "workbench/hardblock/HardBlockReport.h"

#include <algorithm>
#include <initializer_list>
#include <map>
#include <string_view>
#include <utility>

#include "ComMsgMgr.h"
#include "hardblock/HBSHardBlockDataMgr.h"
#include "workbench/files/JsonFile.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/Table.h"
#include "workbench/text/Text.h"
#include "workbench/text/TextStream.h"

namespace tq {

namespace {

using hardblock::HardBlockData;
using hardblock::Interface;
using hardblock::Pin;
using hardblock::PortMap;

/// The members of the member of that name; none where it is missing or isn't an object.
const std::vector<JsonNode::Member>& membersOf(const JsonNode& object, std::string_view name) {
    static const std::vector<JsonNode::Member> none;
    const JsonNode* node = object.find(name);
    return node == nullptr ? none : node->members;
}

/// Reports unknown keys: the library ignores them, but most are slips.
class UnknownKeys {
public:
    UnknownKeys(const JsonFile& file, const DiagnosticSink& sink) : m_file(file), m_sink(sink) {}

    void report() {
        for (const auto& block : m_file.object(m_file.root())) {
            check(block.value, {"interfaces", "pins"});
            for (const auto& interface : membersOf(block.value, "interfaces"))
                checkInterface(interface.value);
            for (const auto& pin : membersOf(block.value, "pins"))
                check(pin.value, {"type", "direction", "default_val", "size_left", "size_right"});
        }
    }

private:
    void checkInterface(const JsonNode& interface) {
        check(interface, {"access_point"});
        if (const JsonNode* accessPoint = interface.find("access_point"))
            check(*accessPoint, {"module", "parameters", "port_maps"});
    }
    void check(const JsonNode& object, std::initializer_list<std::string_view> known) {
        for (const auto& member : object.members)
            if (std::find(known.begin(), known.end(), member.name) == known.end())
                m_sink(m_file.unknownKey(member, known, Severity::Warning));
    }

    const JsonFile& m_file;
    const DiagnosticSink& m_sink;
};

/// The hard blocks of the file alone: the data area, which the manager reads at its first use, may
/// hold others of the same names.
std::vector<HardBlockData*> load(const std::string& path, const DiagnosticSink& sink) {
    auto outer = ComMsgMgr::setSink([](const ComMsg&) {});
    auto* manager = HBSHardBlockDataMgr::getHardBlockDataMgr();
    const auto before = static_cast<std::ptrdiff_t>(manager->getHardBlocksData().size());
    ComMsgMgr::setSink([&](const ComMsg& message) {
        if (sink)
            sink(makeDiagnostic(Severity::Warning, "skipped-value", placeOfFile(path),
                                message.text()));
    });
    const bool good = manager->createHardBlocks(path);
    ComMsgMgr::setSink(std::move(outer));
    if (!good)
        throw fileError(path, "the file isn't hard block metadata");
    const auto all = manager->getHardBlocksData();
    return {all.begin() + before, all.end()};
}

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

} // namespace

std::vector<HardBlockData*> readHardBlocks(const std::string& path, const DiagnosticSink& sink) {
    const JsonFile file = JsonFile::read(path);
    if (sink)
        UnknownKeys(file, sink).report();
    return load(path, sink);
}

std::string hardBlockTables(HardBlockData& block) {
    const auto pins = block.getPinsEndIterator() - block.getPinsStartIterator();
    TextStream out;
    out << printable(block.getName()) << ": pins " << pins << ", interfaces "
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

PortAnswer findPin(HardBlockData& block, const std::string& port) {
    const std::size_t colon = port.find(':');
    if (colon == std::string::npos)
        throw InputError("--port " + port + ": expected INTERFACE:PORT");
    const std::string name = port.substr(0, colon);
    const Interface* interface = block.getInterfaceByName(name);
    if (interface == nullptr)
        return {"", block.getName() + " has no interface \"" + name + "\""};
    std::string pin = interface->getPortMapByName(port.substr(colon + 1));
    if (pin.empty())
        return {"", "no pin is mapped to " + port + " of " + block.getName()};
    return {std::move(pin), ""};
}

std::string portJson(const std::string& port, const PortAnswer& answer) {
    JsonWriter json;
    json.beginObject();
    json.member("port", port);
    json.member("mapped", answer.pin);
    json.endObject();
    return json.text();
}

} // namespace tq
