#include "workbench/ipxact/ComponentReader.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <utility>
#include <vector>

#include "workbench/files/InputError.h"
#include "workbench/ipxact/MemoryReader.h"

namespace tq::ipxact {

namespace {

struct ModeWord {
    std::string_view word;
    InterfaceMode mode;
};

/// The words of both terminologies.
constexpr std::array<ModeWord, 11> kModes{{
    {"initiator", InterfaceMode::Initiator},
    {"master", InterfaceMode::Initiator},
    {"target", InterfaceMode::Target},
    {"slave", InterfaceMode::Target},
    {"mirroredInitiator", InterfaceMode::MirroredInitiator},
    {"mirroredMaster", InterfaceMode::MirroredInitiator},
    {"mirroredTarget", InterfaceMode::MirroredTarget},
    {"mirroredSlave", InterfaceMode::MirroredTarget},
    {"system", InterfaceMode::System},
    {"mirroredSystem", InterfaceMode::MirroredSystem},
    {"monitor", InterfaceMode::Monitor},
}};

constexpr std::array<const char*, 5> kFormats{"IP-XACT SPIRIT 1.4", "IP-XACT SPIRIT 1.5",
                                              "IP-XACT 2009", "IP-XACT 2014", "IP-XACT 2022"};

std::string firstOf(Element element, std::initializer_list<std::string_view> attributes) {
    for (const std::string_view name : attributes)
        if (const std::string_view value = element.attribute(name); !value.empty())
            return std::string(value);
    return {};
}

/// Reads what lies around the memory: interfaces, channels, ports, parameters, views.
class StructureReader {
public:
    StructureReader(Component& component, Parameters& values, UnknownElements& unknown)
        : m_component(component), m_values(values), m_unknown(unknown) {}

    void readInterfaces(Element list) {
        for (const Element child : list.children())
            if (child.name() == "busInterface" && m_values.isPresent(child))
                m_component.interfaces.push_back(readInterface(child));
    }

    void readChannels(Element list) {
        for (const Element child : list.children()) {
            Channel channel;
            channel.name = child.textOf("name");
            channel.mark = markOf(child);
            for (const Element link : child.children())
                if (link.name() == "busInterfaceRef")
                    channel.interfaces.emplace_back(
                        link.child("localName") ? link.textOf("localName") : link.text());
            m_component.channels.push_back(std::move(channel));
        }
    }

    void readParameters(Element list) {
        for (const Element child : list.children()) {
            const Element content = child.child("value");
            ParameterValue parameter;
            parameter.name = child.textOf("name");
            if (parameter.name.empty())
                parameter.name = child.attribute("name");
            parameter.id = child.attribute("parameterId");
            if (parameter.id.empty())
                parameter.id = (content ? content : child).attribute("id");
            parameter.value = valueText(parameter.id, content ? content : child);
            m_component.parameters.push_back(std::move(parameter));
        }
    }

    void readModel(Element model) {
        for (const Element child : model.children()) {
            if (child.name() == "ports")
                readPorts(child);
            else if (child.name() == "views")
                readViews(child, model.child("instantiations"));
            else if (child.name() == "modelParameters")
                readParameters(child);
        }
    }

private:
    std::optional<std::string> valueText(std::string_view id, Element content) {
        if (!id.empty() && m_values.isKnown(id)) {
            const std::optional<Value> value = m_values.parameter(id);
            if (!value || std::holds_alternative<std::vector<Value>>(value->content))
                return std::nullopt;
            return value->text();
        }
        return std::string(content.text());
    }

    BusInterface readInterface(Element element) {
        BusInterface target;
        target.mark = markOf(element);
        for (const Element child : element.children()) {
            const std::string_view name = child.name();
            if (name == "name")
                target.name = child.text();
            else if (name == "busType")
                target.busType = vlnvOfReference(child);
            else if (name == "abstractionType")
                target.abstraction = vlnvOfReference(child);
            else if (name == "abstractionTypes")
                readAbstractions(target, child);
            else if (name == "portMaps")
                readPortMaps(target, child);
            else if (name == "bitsInLau")
                target.bitsInLau = m_values.integer(child);
            else if (name == "bitSteering")
                target.steersBits = m_values.text(child) == "on";
            else if (const InterfaceMode mode = modeOf(name); mode != InterfaceMode::Unknown)
                readMode(target, mode, child);
            else if (std::find(kPassedOver.begin(), kPassedOver.end(), name) == kPassedOver.end())
                m_unknown.report(child, element,
                                 {"name", "busType", "abstractionType", "abstractionTypes",
                                  "portMaps", "bitsInLau", "bitSteering", "initiator", "master",
                                  "target", "slave", "system", "monitor"});
        }
        return target;
    }
    static constexpr std::array<std::string_view, 9> kPassedOver{
        "displayName", "shortDescription", "description", "isPresent", "connectionRequired",
        "endianness",  "connection",       "parameters",  "index"};

    static InterfaceMode modeOf(std::string_view name) {
        for (const ModeWord& known : kModes)
            if (known.word == name)
                return known.mode;
        return InterfaceMode::Unknown;
    }

    void readMode(BusInterface& target, InterfaceMode mode, Element element) {
        target.mode = mode;
        for (const Element child : element.children()) {
            const std::string_view name = child.name();
            if (name == "memoryMapRef")
                target.memoryMap = child.attribute("memoryMapRef");
            else if (name == "addressSpaceRef")
                readSpaceReference(target, child);
            else if (name == "bridge" || name == "transparentBridge")
                target.bridges.push_back({firstOf(child, {"masterRef", "initiatorRef"}),
                                          child.attribute("opaque") == "true", markOf(child)});
            else if (name == "baseAddresses")
                readRemaps(target, child);
        }
    }
    void readSpaceReference(BusInterface& target, Element element) {
        target.addressSpace = element.attribute("addressSpaceRef");
        if (const Element base = element.child("baseAddress"))
            target.base = m_values.integer(base);
        else if (const Element offset = element.child("addressOffset"))
            target.base = m_values.integer(offset);
    }
    /// Several addresses with one range up to 2009, later pairs in one element or in many.
    void readRemaps(BusInterface& target, Element element) {
        Number range;
        if (const Element common = element.child("range"))
            range = m_values.integer(common);
        for (const Element child : element.children()) {
            if (child.name() == "remapAddress")
                target.remaps.push_back(
                    {m_values.integer(child), range, firstOf(child, {"state"})});
            else if (child.name() == "remapAddresses")
                target.remaps.push_back({m_values.integer(child.child("remapAddress")), range,
                                         std::string(child.textOf("modeRef"))});
        }
    }

    void readAbstractions(BusInterface& target, Element list) {
        for (const Element child : list.children()) {
            if (target.abstraction.name.empty())
                target.abstraction = vlnvOfReference(child.child("abstractionRef"));
            if (target.ports.empty())
                readPortMaps(target, child.child("portMaps"));
        }
    }
    void readPortMaps(BusInterface& target, Element list) {
        for (const Element child : list.children()) {
            if (child.name() != "portMap")
                continue;
            const Element logical = child.child("logicalPort"),
                          physical = child.child("physicalPort");
            PortMap map;
            map.logical = logical.textOf("name");
            map.physical = physical.textOf("name");
            // Up to 1.4 the names stood in the map itself.
            if (!logical.child("name"))
                map.logical = child.textOf("logicalPortName");
            if (!physical.child("name"))
                map.physical = child.textOf("physicalPortName");
            std::tie(map.logicalLeft, map.logicalRight) = rangeOf(logical);
            std::tie(map.physicalLeft, map.physicalRight) = rangeOf(physical);
            target.ports.push_back(std::move(map));
        }
    }
    std::pair<Number, Number> rangeOf(Element port) {
        Element range = port.child("range");
        if (!range)
            range = port.child("vector");
        if (!range)
            range = port.child("partSelect").child("range");
        if (!range)
            return {};
        return {m_values.integer(range.child("left")), m_values.integer(range.child("right"))};
    }

    void readPorts(Element list) {
        for (const Element child : list.children()) {
            if (child.name() != "port" || !m_values.isPresent(child))
                continue;
            const Element wire = child.child("wire");
            Port port;
            port.name = child.textOf("name");
            port.mark = markOf(child);
            port.direction = wire.textOf("direction");
            Element vector = wire.child("vector");
            if (!vector)
                vector = wire.child("vectors").child("vector");
            port.left = m_values.integer(vector.child("left"));
            port.right = m_values.integer(vector.child("right"));
            m_component.ports.push_back(std::move(port));
        }
    }

    /// Up to 2009 a view names its design itself; later it names an instantiation, which does.
    void readViews(Element list, Element instantiations) {
        for (const Element view : list.children()) {
            const std::string name(view.textOf("name"));
            if (const Element link = view.child("hierarchyRef"))
                m_component.hierarchies.push_back(
                    {name, vlnvOfReference(link), false, markOf(view)});
            addInstantiation(view, instantiations, "designConfigurationInstantiation",
                             "designConfigurationRef", true);
            addInstantiation(view, instantiations, "designInstantiation", "designRef", false);
        }
    }
    void addInstantiation(Element view, Element instantiations, std::string_view kind,
                          std::string_view reference, bool isConfiguration) {
        const std::string_view name = view.textOf(std::string(kind) + "Ref");
        for (const Element instantiation : instantiations.children())
            if (!name.empty() && instantiation.name() == kind &&
                instantiation.textOf("name") == name)
                m_component.hierarchies.push_back({std::string(view.textOf("name")),
                                                   vlnvOfReference(instantiation.child(reference)),
                                                   isConfiguration, markOf(view)});
    }

    Component& m_component;
    Parameters& m_values;
    UnknownElements& m_unknown;
};

Edition editionOfRoot(const ElementTree& tree) {
    const Element root = tree.root();
    const auto edition = editionOf(tree.rootNamespace());
    if (!edition || root.name() != "component")
        throw InputError(makeDiagnostic(
            Severity::Error, "no-component", root.place(),
            "<" + std::string(root.name()) + "> of the namespace \"" + tree.rootNamespace() +
                "\" is no component",
            "an IP-XACT component (SPIRIT 1.4 to IEEE 1685-2022) or a CMSIS-SVD device"));
    return *edition;
}

void readChild(Component& component, Element child, Element root, MemoryReader& memory,
               StructureReader& structure, UnknownElements& unknown) {
    static constexpr std::array<std::string_view, 29> kPassedOver{"vendor",
                                                                  "library",
                                                                  "name",
                                                                  "version",
                                                                  "displayName",
                                                                  "shortDescription",
                                                                  "remapStates",
                                                                  "componentGenerators",
                                                                  "choices",
                                                                  "fileSets",
                                                                  "cpus",
                                                                  "otherClockDrivers",
                                                                  "assertions",
                                                                  "whiteboxElements",
                                                                  "indirectInterfaces",
                                                                  "modes",
                                                                  "typeDefinitions",
                                                                  "powerDomains",
                                                                  "resetTypes",
                                                                  "clearboxElements",
                                                                  "generatorChain",
                                                                  "componentInstances",
                                                                  "abstractors",
                                                                  "busDefinitions",
                                                                  "generators",
                                                                  "loopbacks",
                                                                  "accessHandles",
                                                                  "constraintSets",
                                                                  "documentNameGroup"};
    const std::string_view name = child.name();
    if (name == "memoryMaps")
        component.memoryMaps = memory.readMaps(child);
    else if (name == "addressSpaces")
        component.addressSpaces = memory.readSpaces(child);
    else if (name == "busInterfaces")
        structure.readInterfaces(child);
    else if (name == "channels")
        structure.readChannels(child);
    else if (name == "parameters")
        structure.readParameters(child);
    else if (name == "model")
        structure.readModel(child);
    else if (name == "description")
        component.description = child.text();
    else if (std::find(kPassedOver.begin(), kPassedOver.end(), name) == kPassedOver.end())
        unknown.report(child, root,
                       {"memoryMaps", "addressSpaces", "busInterfaces", "channels", "model",
                        "parameters", "description", "fileSets", "choices", "cpus"});
}

} // namespace

const char* modeName(InterfaceMode mode) {
    static constexpr std::array<const char*, 8> kNames{
        "unknown",         "initiator", "target",          "mirrored initiator",
        "mirrored target", "system",    "mirrored system", "monitor"};
    return kNames[static_cast<std::size_t>(mode)];
}

Vlnv vlnvOf(Element root) {
    return {std::string(root.textOf("vendor")), std::string(root.textOf("library")),
            std::string(root.textOf("name")), std::string(root.textOf("version"))};
}

Vlnv vlnvOfReference(Element reference) {
    return {std::string(reference.attribute("vendor")), std::string(reference.attribute("library")),
            std::string(reference.attribute("name")), std::string(reference.attribute("version"))};
}

Component readComponent(const ElementTree& tree, const Overrides& overrides,
                        const TreeLookup& lookup, const DiagnosticSink& sink) {
    const Edition edition = editionOfRoot(tree);
    Component component;
    component.file = tree.path();
    component.vlnv = vlnvOf(tree.root());
    component.format = kFormats[static_cast<std::size_t>(edition)];
    component.leftOut = tree.foreignElements();
    Parameters values(tree, edition, overrides, sink);
    UnknownElements unknown(sink, component.leftOut);
    DefinitionTable definitions(tree.root(), lookup, sink);
    MemoryReader memory(values, definitions, unknown, sink);
    StructureReader structure(component, values, unknown);
    for (const Element child : tree.root().children())
        readChild(component, child, tree.root(), memory, structure, unknown);
    return component;
}

} // namespace tq::ipxact
