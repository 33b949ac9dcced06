// hbs hardblock: pins, interfaces and port maps of one hard block of a metadata file.

#include <algorithm>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ComMsgMgr.h"
#include "hardblock/HBSHardBlockDataMgr.h"
#include "host/Command.h"
#include "host/JsonTree.h"
#include "host/Table.h"
#include "rapidjson_headers.h"
#include "xp_autodetect.h"

namespace host {

namespace {

using hardblock::HardBlockData;
using hardblock::Interface;
using hardblock::Pin;
using hardblock::PortMap;
using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

struct Options {
    std::string file;
    std::string name;
    std::string port;
    bool json = false;
};

// --- reading the file ---------------------------------------------------------------------------

/// The file with the places of its values. The library reads it too, but can't tell places.
JsonFile readWithPlaces(const std::string& path) {
    boost::iostreams::filtering_istream stream;
    isl::iostreams::xp_autodetect()(path, stream);
    if (!stream.good())
        throw BadInput(path + ": the file can't be read");
    std::string content;
    try {
        content.assign(std::istreambuf_iterator<char>(stream), {});
    } catch (const std::exception&) {
        throw BadInput(path + ": the file can't be read whole");
    }
    return JsonFile::parse(path, std::move(content));
}

/// The members of the member of that name; none where it is missing or isn't an object.
const std::vector<JsonNode::Member>& membersOf(const JsonNode& object, std::string_view name) {
    static const std::vector<JsonNode::Member> none;
    const JsonNode* node = object.find(name);
    return node == nullptr ? none : node->members;
}

/// Points out unknown keys: they do the library no harm, but most of them are slips of a person.
/// Past the first twenty it only counts, as each place is searched for from the start of the file.
class UnknownKeys {
public:
    explicit UnknownKeys(const JsonFile& file) : m_file(file) {}

    void pointOut() {
        for (const auto& block : m_file.object(m_file.root())) {
            check(block.value, {"interfaces", "pins"});
            for (const auto& interface : membersOf(block.value, "interfaces"))
                checkInterface(interface.value);
            for (const auto& pin : membersOf(block.value, "pins"))
                check(pin.value, {"type", "direction", "default_val", "size_left", "size_right"});
        }
        if (m_count > kMostShown)
            std::cerr << m_file.path() << ": " << m_count - kMostShown << " more unknown keys\n";
    }

private:
    static constexpr int kMostShown = 20;

    void checkInterface(const JsonNode& interface) {
        check(interface, {"access_point"});
        if (const JsonNode* accessPoint = interface.find("access_point"))
            check(*accessPoint, {"module", "parameters", "port_maps"});
    }
    void check(const JsonNode& object, std::initializer_list<std::string_view> known) {
        for (const auto& member : object.members)
            if (std::find(known.begin(), known.end(), member.name) == known.end() &&
                ++m_count <= kMostShown)
                complain(member, known);
    }
    void complain(const JsonNode::Member& member, std::initializer_list<std::string_view> known) {
        std::cerr << m_file.place(member.offset) << ": unknown key \"" << member.name
                  << "\" is ignored, known are: ";
        const char* separator = "";
        for (const auto& key : known)
            std::cerr << std::exchange(separator, ", ") << key;
        std::cerr << '\n';
    }

    const JsonFile& m_file;
    int m_count = 0;
};

/// The hard blocks of the file alone: the data area, which the manager reads at its first use, may
/// hold others of the same names.
std::vector<HardBlockData*> load(const std::string& path) {
    auto sink = ComMsgMgr::setSink([](const ComMsg&) {});
    auto* manager = HBSHardBlockDataMgr::getHardBlockDataMgr();
    const auto before = static_cast<std::ptrdiff_t>(manager->getHardBlocksData().size());
    ComMsgMgr::setSink(
        [&](const ComMsg& message) { std::cerr << path << ": " << message.text() << '\n'; });
    const bool good = manager->createHardBlocks(path);
    ComMsgMgr::setSink(std::move(sink));
    if (!good)
        throw BadInput(path + ": the file isn't hard block metadata");
    const auto all = manager->getHardBlocksData();
    return {all.begin() + before, all.end()};
}

// --- showing a hard block -----------------------------------------------------------------------

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

void printPins(HardBlockData& block) {
    Table table({{"Pin"}, {"Direction"}, {"Type"}, {"Range"}, {"Default"}});
    for (auto it = block.getPinsStartIterator(); it != block.getPinsEndIterator(); ++it) {
        const Pin& pin = **it;
        table.addRow({pin.getName(), pin.getDirectionAsStr(), typeName(pin), rangeOf(pin),
                      pin.getDefaultValue()});
    }
    table.print(std::cout);
}

void printInterfaces(HardBlockData& block) {
    Table interfaces({{"Interface"}, {"Module"}, {"Parameters"}});
    Table maps({{"Interface"}, {"Port"}, {"Stands for"}});
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
        std::cout << '\n';
        table->print(std::cout);
    }
}

void print(HardBlockData& block) {
    const auto pins = block.getPinsEndIterator() - block.getPinsStartIterator();
    std::cout << block.getName() << ": pins " << pins << ", interfaces "
              << interfacesOf(block).size() << "\n\n";
    printPins(block);
    printInterfaces(block);
}

// --- the same for programs ----------------------------------------------------------------------

void writeMember(Writer& writer, const std::string& key, const std::string& text) {
    writer.Key(key.data(), static_cast<rapidjson::SizeType>(key.size()));
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void writePin(Writer& writer, const Pin& pin) {
    writer.StartObject();
    writeMember(writer, "name", pin.getName());
    writeMember(writer, "type", typeName(pin));
    writeMember(writer, "direction", pin.getDirectionAsStr());
    writeMember(writer, "default", pin.getDefaultValue());
    writer.Key("left");
    writer.Int(pin.getLeftSize());
    writer.Key("right");
    writer.Int(pin.getRightSize());
    writer.EndObject();
}

void writeInterface(Writer& writer, const std::string& name, Interface& interface) {
    writer.StartObject();
    writeMember(writer, "name", name);
    writeMember(writer, "module", interface.getApModuleName());
    writer.Key("parameters");
    writer.StartObject();
    for (const auto& [parameter, value] : parametersOf(interface))
        writeMember(writer, parameter, value);
    writer.EndObject();
    writer.Key("port_maps");
    writer.StartArray();
    for (const auto& entry : portMapsOf(interface))
        for (const auto& [mapped, port] : entry.second->getMappedRawPorts()) {
            writer.StartObject();
            writeMember(writer, "port", port);
            writeMember(writer, "mapped", mapped);
            writer.EndObject();
        }
    writer.EndArray();
    writer.EndObject();
}

void write(Writer& writer, HardBlockData& block) {
    writer.StartObject();
    writeMember(writer, "name", block.getName());
    writer.Key("pins");
    writer.StartArray();
    for (auto it = block.getPinsStartIterator(); it != block.getPinsEndIterator(); ++it)
        writePin(writer, **it);
    writer.EndArray();
    writer.Key("interfaces");
    writer.StartArray();
    for (const auto& [name, interface] : interfacesOf(block))
        writeInterface(writer, name, *interface);
    writer.EndArray();
    writer.EndObject();
}

// --- the command --------------------------------------------------------------------------------

int noResult(const std::string& reason) {
    std::cerr << "hbs: " << reason << '\n';
    return kNoResult;
}

int showBlock(const Options& options, HardBlockData& block) {
    if (!options.json) {
        print(block);
        return kSuccess;
    }
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    write(writer, block);
    std::cout << buffer.GetString() << '\n';
    return kSuccess;
}

/// Answers what stands behind "INTERFACE:PORT", such as "M_AXI:AWADDR[6]".
int showPort(const Options& options, HardBlockData& block) {
    const std::size_t colon = options.port.find(':');
    if (colon == std::string::npos)
        throw BadInput("--port " + options.port + ": expected INTERFACE:PORT");
    const std::string name = options.port.substr(0, colon);
    const Interface* interface = block.getInterfaceByName(name);
    if (interface == nullptr)
        return noResult(block.getName() + " has no interface \"" + name + "\"");
    const std::string mapped = interface->getPortMapByName(options.port.substr(colon + 1));
    if (mapped.empty())
        return noResult("nothing stands behind " + options.port + " of " + block.getName());
    if (!options.json) {
        std::cout << mapped << '\n';
        return kSuccess;
    }
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartObject();
    writeMember(writer, "port", options.port);
    writeMember(writer, "mapped", mapped);
    writer.EndObject();
    std::cout << buffer.GetString() << '\n';
    return kSuccess;
}

int run(const Options& options) {
    const JsonFile file = readWithPlaces(options.file);
    UnknownKeys(file).pointOut();
    const auto blocks = load(options.file);
    const auto found = std::find_if(blocks.begin(), blocks.end(), [&](const HardBlockData* block) {
        return block->getName() == options.name;
    });
    if (found != blocks.end())
        return options.port.empty() ? showBlock(options, **found) : showPort(options, **found);
    std::string names;
    for (const auto* block : blocks)
        names += (names.empty() ? ", which holds: " : ", ") + block->getName();
    return noResult("no hard block \"" + options.name + "\" in " + options.file + names);
}

} // namespace

void declareHardblock(CLI::App& app, int& status) {
    auto options = std::make_shared<Options>();
    CLI::App* command =
        app.add_subcommand("hardblock", "Lists the pins, interfaces and port maps of a hard block");
    command->add_option("FILE", options->file, "Hard block metadata (JSON)")->required();
    command->add_option("NAME", options->name, "Name of a hard block in it")->required();
    command->add_option("--port", options->port,
                        "INTERFACE:PORT, such as M_AXI:AWADDR[6]: what stands behind that bit");
    command->add_flag("--json", options->json, "Prints JSON for programs");
    command->callback([options, &status] { status = run(*options); });
}

} // namespace host
