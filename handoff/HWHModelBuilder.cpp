#include "handoff/HWHModelBuilder.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <utility>

#include "handoff/HWHNameTable.h"
#include "handoff/HWHSignalNamer.h"
#include "handoff/HWHVocabulary.h"

namespace hwh {

namespace {

using base::JsonNode;

/// The core for which connections are read when the system has none.
constexpr const char* kFallbackCoreName = "yrel";
/// The core with several dies, whose excluded lists distinguish slaves by die.
constexpr const char* kCoreWithDies = "tovak";

std::uint32_t countOf(std::size_t size) {
    return static_cast<std::uint32_t>(size);
}

/// Room for so many more entries: exactly those at first, as most lists come in one piece.
template <class Entry>
void reserveMore(std::vector<Entry>& list, std::size_t count) {
    if (list.capacity() < list.size() + count)
        list.reserve(std::max(list.size() + count, list.capacity() * 2));
}

/// Whether enable parameters are on. What the composites say of a name is found once.
class EnableParams {
public:
    explicit EnableParams(DesignParams& design) : m_design(design) {}

    /// An instance without one is enabled, and so is one whose parameter the design doesn't know;
    /// of all values only the text "0" disables.
    bool isEnabled(std::string_view name) {
        if (name.empty())
            return true;
        if (const auto text = m_design.findText(name))
            return *text != kDisabling;
        const std::uint32_t number = m_names.intern(name);
        if (number == m_enabled.size()) {
            const auto value = m_design.resolveEnable(name);
            m_enabled.push_back(!value || *value != kDisabling);
        }
        return m_enabled[number];
    }

private:
    static constexpr std::string_view kDisabling = "0";

    DesignParams& m_design;
    NameTable m_names;
    std::vector<bool> m_enabled;
};

/// The properties that all instances of one "SDKNAME" share. Slaves are read before masters, each
/// in file order, and the last instance of a name decides.
struct ModuleName {
    std::uint32_t contentsNode = kNone;
    std::uint32_t excludingNode = kNone;
    std::uint32_t internalInstance = kNone; ///< the last in order whose name holds "_INT"
    bool isWritten = false;
};

class ModelBuilder {
public:
    ModelBuilder(const ConnectivityFile& file, DesignParams& design, const std::string& coreName)
        : m_file(file), m_design(design), m_enableParams(design), m_signals(m_model) {
        m_model.tape = &file.tape();
        m_model.topInstanceName = (coreName.empty() ? kFallbackCoreName : coreName) + kTopSuffix;
        m_model.namesDies = coreName == kCoreWithDies;
    }

    Model build() {
        m_model.instances = orderedByName(readInstances());
        selectModules();
        for (std::uint32_t module = 0; module < m_model.modules.size(); ++module) {
            addParameters(m_model.modules[module]);
            addPorts(module);
        }
        addExternalPorts();
        selectSlaves();
        return std::move(m_model);
    }

private:
    /// Something that a module holds, before it is put in order.
    struct Found {
        Text name;
        std::uint32_t node = 0;
    };
    /// A port that is connected to the top.
    struct ExternalEnd {
        Text name; ///< of the external port
        std::uint32_t port = 0;
    };

    // Instances and modules.
    std::vector<Instance> readInstances();
    Instance readInstance(const JsonNode& name, const JsonNode& value, Role role);
    std::vector<Instance> orderedByName(const std::vector<Instance>& read);
    void findInternalInstances();
    void selectModules();
    void selectSlaves();

    // What a module holds.
    void addParameters(Module& module);
    void addParameter(const Found& found, std::string_view asked);
    void addPorts(std::uint32_t module);
    void addPort(std::uint32_t module, const Found& found);
    void addConnections(Port& port);
    void collectExternalEnds(std::uint32_t port);

    void addExternalPorts();
    void addExternalPort(std::span<const ExternalEnd> ends);

    const ConnectivityFile& m_file;
    DesignParams& m_design;
    EnableParams m_enableParams;
    NameTable m_moduleNames;
    std::vector<ModuleName> m_byModuleName;
    std::vector<ExternalEnd> m_externalEnds;
    Model m_model;
    SignalNamer m_signals;

    // Scratch memory, reused.
    NameSorter m_sorter;
    NameSorter m_portSorter; ///< its order is walked while connections are sorted
    std::vector<Found> m_found;
    std::vector<Connection> m_foundEnds;
};

std::vector<Instance> ModelBuilder::readInstances() {
    std::vector<Instance> read;
    forEachObject(m_file.slaves(), [&](const JsonNode& name, const JsonNode& value) {
        read.push_back(readInstance(name, value, Role::Slave));
    });
    forEachObject(m_file.masters(), [&](const JsonNode& name, const JsonNode& value) {
        read.push_back(readInstance(name, value, Role::Master));
    });
    return read;
}

Instance ModelBuilder::readInstance(const JsonNode& name, const JsonNode& value, Role role) {
    const InstanceFacts facts = readFacts(value);
    const std::uint32_t moduleName = m_moduleNames.intern(facts.sdkName);
    if (moduleName == m_byModuleName.size())
        m_byModuleName.emplace_back();
    // Instances come in the order of reading, so that the last one of an "SDKNAME" stays.
    m_byModuleName[moduleName].contentsNode = value.index();
    if (role == Role::Master)
        m_byModuleName[moduleName].excludingNode = value.index();
    return {{name.index()},
            value.index(),
            moduleName,
            role,
            m_enableParams.isEnabled(facts.enableParam),
            facts.classification == scalar::kClassInterface};
}

std::vector<Instance> ModelBuilder::orderedByName(const std::vector<Instance>& read) {
    const auto order = m_sorter.sortKeepingLast(
        read.size(), [&](std::uint32_t number) { return m_model.text(read[number].name); });
    std::vector<Instance> ordered;
    ordered.reserve(order.size());
    for (const std::uint32_t number : order)
        ordered.push_back(read[number]);
    return ordered;
}

void ModelBuilder::findInternalInstances() {
    for (std::uint32_t i = 0; i < m_model.instances.size(); ++i)
        if (m_model.text(m_model.instances[i].name).find("_INT") != std::string_view::npos)
            m_byModuleName[m_model.instances[i].moduleName].internalInstance = i;
}

/// The first enabled instance of a name in order makes the module. Where it is the outside of a
/// piece, the piece's inside gives the facts.
void ModelBuilder::selectModules() {
    findInternalInstances();
    for (std::uint32_t i = 0; i < m_model.instances.size(); ++i) {
        const Instance& instance = m_model.instances[i];
        ModuleName& known = m_byModuleName[instance.moduleName];
        const bool isMasterInterface = instance.role == Role::Master && instance.isInterface;
        if (isMasterInterface || known.isWritten || !instance.isEnabled)
            continue;
        const bool isFolded = known.internalInstance != kNone &&
                              m_model.text(instance.name).find("_EXT") != std::string_view::npos;
        known.isWritten = true;
        m_model.modules.push_back({m_moduleNames[instance.moduleName],
                                   isFolded ? known.internalInstance : i,
                                   {},
                                   {},
                                   known.contentsNode,
                                   known.excludingNode});
    }
}

void ModelBuilder::selectSlaves() {
    for (std::uint32_t i = 0; i < m_model.instances.size(); ++i)
        if (m_model.instances[i].role == Role::Slave && m_model.instances[i].isEnabled)
            m_model.slaves.push_back(i);
}

void ModelBuilder::addParameters(Module& module) {
    m_found.clear();
    m_model.tape->node(module.contentsNode)
        .forEachMember([&](const JsonNode& name, const JsonNode& value) {
            if (name.text() == member::kParameters)
                value.forEachMember([&](const JsonNode& parameter, const JsonNode& content) {
                    m_found.push_back({{parameter.index()}, content.index()});
                });
        });
    const auto order = m_sorter.sortKeepingLast(
        m_found.size(), [&](std::uint32_t number) { return m_model.text(m_found[number].name); });
    reserveMore(m_model.parameters, order.size());
    module.parameters.begin = countOf(m_model.parameters.size());
    constexpr std::size_t most = DesignParams::kPrefetched;
    std::array<std::string_view, most> asked;
    for (std::size_t first = 0; first < order.size(); first += most) {
        const auto numbers = order.subspan(first, std::min(most, order.size() - first));
        for (std::size_t i = 0; i < numbers.size(); ++i)
            asked[i] = textOf(m_model.tape->node(m_found[numbers[i]].node));
        m_design.prefetch(std::span(asked).first(numbers.size()));
        for (std::size_t i = 0; i < numbers.size(); ++i)
            addParameter(m_found[numbers[i]], asked[i]);
    }
    module.parameters.end = countOf(m_model.parameters.size());
}

void ModelBuilder::addParameter(const Found& found, std::string_view asked) {
    const auto resolved = m_design.resolve(asked);
    std::string_view value = resolved.text;
    if (resolved.isInMegahertz)
        value = m_model.scaledValues.emplace_back(scaledToHz(std::string(resolved.text)));
    m_model.parameters.push_back({found.name, {found.node}, value, resolved.source});
}

void ModelBuilder::addPorts(std::uint32_t module) {
    m_found.clear();
    const auto findPort = [&](const JsonNode& port) {
        if (!port.isObject())
            return;
        Found found{{}, port.index()};
        port.forEachMember([&](const JsonNode& name, const JsonNode& value) {
            if (name.text() == member::kName)
                found.name = {value.index()};
        });
        m_found.push_back(found);
    };
    m_model.tape->node(m_model.modules[module].contentsNode)
        .forEachMember([&](const JsonNode& name, const JsonNode& value) {
            if (name.text() == member::kPorts)
                value.forEachElement(findPort);
        });
    const auto order = m_portSorter.sortKeepingLast(
        m_found.size(), [&](std::uint32_t number) { return m_model.text(m_found[number].name); });
    reserveMore(m_model.ports, order.size());
    m_model.modules[module].ports.begin = countOf(m_model.ports.size());
    for (const std::uint32_t number : order)
        addPort(module, m_found[number]);
    m_model.modules[module].ports.end = countOf(m_model.ports.size());
}

void ModelBuilder::addPort(std::uint32_t module, const Found& found) {
    Port port;
    port.name = found.name;
    port.module = module;
    m_foundEnds.clear();
    m_model.tape->node(found.node).forEachMember([&](const JsonNode& name, const JsonNode& value) {
        if (name.text() == member::kDirection)
            port.direction = {value.index()};
        else if (name.text() == member::kSignalKind)
            port.signalKind = {value.index()};
        else if (name.text() == member::kInterruptId)
            port.interruptId = {value.index()};
        else if (name.text() == member::kConnections)
            value.forEachElement([&](const JsonNode& end) {
                if (end.isObject())
                    m_foundEnds.push_back(readConnection(end));
            });
    });
    addConnections(port);
    const std::uint32_t number = countOf(m_model.ports.size());
    m_model.ports.push_back(port);
    // At once, as a port's signal depends on the ports before it in the document.
    m_signals.name(number);
    collectExternalEnds(number);
}

void ModelBuilder::addConnections(Port& port) {
    const auto order = m_sorter.sortKeepingLast(m_foundEnds.size(), [&](std::uint32_t number) {
        return m_model.text(m_foundEnds[number].instance);
    });
    reserveMore(m_model.connections, order.size());
    port.connections.begin = countOf(m_model.connections.size());
    for (const std::uint32_t number : order)
        m_model.connections.push_back(m_foundEnds[number]);
    port.connections.end = countOf(m_model.connections.size());
}

void ModelBuilder::collectExternalEnds(std::uint32_t port) {
    const Slice& connections = m_model.ports[port].connections;
    for (std::uint32_t i = connections.begin; i < connections.end; ++i)
        if (m_model.text(m_model.connections[i].instance) == m_model.topInstanceName)
            m_externalEnds.push_back({m_model.connections[i].port, port});
}

void ModelBuilder::addExternalPorts() {
    std::vector<ExternalEnd> ends;
    ends.reserve(m_externalEnds.size());
    for (const std::uint32_t number : m_sorter.sort(m_externalEnds.size(), [&](std::uint32_t i) {
             return m_model.text(m_externalEnds[i].name);
         }))
        ends.push_back(m_externalEnds[number]);
    for (auto first = ends.begin(); first != ends.end();) {
        const auto last = std::find_if(first, ends.end(), [&](const ExternalEnd& end) {
            return m_model.text(end.name) != m_model.text(first->name);
        });
        addExternalPort({first, last});
        first = last;
    }
}

/// Of the ports of one module the first that was visited counts.
void ModelBuilder::addExternalPort(std::span<const ExternalEnd> ends) {
    const auto moduleOf = [&](std::uint32_t number) {
        return m_model.ports[ends[number].port].module;
    };
    ExternalPort external;
    external.name = ends.front().name;
    external.ends.begin = countOf(m_model.externalEnds.size());
    std::uint32_t before = kNone;
    for (const std::uint32_t number : m_sorter.sort(
             ends.size(), [&](std::uint32_t i) { return m_model.modules[moduleOf(i)].name; })) {
        if (moduleOf(number) != before)
            m_model.externalEnds.push_back(ends[number].port);
        before = moduleOf(number);
    }
    external.ends.end = countOf(m_model.externalEnds.size());
    // Each end of a module's port has a signal by now, so the first one decides.
    external.namedBy = m_signals.signalAtEndOf(m_model.externalEnds[external.ends.begin]);
    m_model.externalPorts.push_back(external);
}

} // namespace

Model buildModel(const ConnectivityFile& file, DesignParams& design, const std::string& coreName) {
    return ModelBuilder(file, design, coreName).build();
}

} // namespace hwh
