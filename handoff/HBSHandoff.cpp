#include "handoff/HBSHandoff.h"

#include <utility>

#include "base/Address.h"
#include "handoff/HWHDecision.h"
#include "handoff/HWHDocumentWriter.h"
#include "handoff/HWHMemoryMaps.h"
#include "handoff/HWHVocabulary.h"

namespace {

HBSHandoff::Reason reasonOf(hwh::SignalReason reason) {
    switch (reason) {
    case hwh::SignalReason::FarEnd:
        return HBSHandoff::Reason::FarEnd;
    case hwh::SignalReason::ListedByFar:
        return HBSHandoff::Reason::ListedByFar;
    case hwh::SignalReason::OwnPort:
        break;
    }
    return HBSHandoff::Reason::OwnPort;
}

} // namespace

HBSHandoff::HBSHandoff(Texts designParams, Texts systemInfo, const std::string& connectivityFile,
                       const tq::DiagnosticSink& sink)
    : m_design(std::move(designParams)), m_system(std::move(systemInfo)),
      m_topName(m_system[hwh::fact::kCoreName] + hwh::kTopSuffix),
      m_decision(std::make_unique<hwh::Decision>(m_design, m_system, connectivityFile, sink)) {}

HBSHandoff::~HBSHandoff() = default;

bool HBSHandoff::isComplete() const {
    return m_decision->file.masters().has_value();
}

const std::string& HBSHandoff::topName() const {
    return m_topName;
}

std::string_view HBSHandoff::topInstance() const {
    return m_decision->model.topInstanceName;
}

std::size_t HBSHandoff::moduleCount() const {
    return m_decision->model.modules.size();
}

HBSHandoff::Module HBSHandoff::module(std::size_t number) const {
    const hwh::Model& model = m_decision->model;
    const hwh::Module& module = model.modules[number];
    const hwh::Instance& instance = model.instances[module.instance];
    return {module.name, model.text(instance.name), instance.role == hwh::Role::Master,
            module.ports.begin, module.ports.end - module.ports.begin};
}

std::size_t HBSHandoff::portCount() const {
    return m_decision->model.ports.size();
}

HBSHandoff::Port HBSHandoff::port(std::size_t number) const {
    const hwh::Model& model = m_decision->model;
    const hwh::Port& port = model.ports[number];
    return {{model.modules[port.module].name, model.text(port.name)},
            model.text(port.direction),
            model.text(port.signalKind),
            model.signalName(port.signal.namedBy),
            port.signal.namedBy,
            reasonOf(port.signal.reason)};
}

std::vector<HBSHandoff::End> HBSHandoff::connections(std::size_t port) const {
    const hwh::Model& model = m_decision->model;
    const hwh::Slice& slice = model.ports[port].connections;
    std::vector<End> ends;
    ends.reserve(slice.end - slice.begin);
    for (std::uint32_t i = slice.begin; i < slice.end; ++i)
        ends.push_back(
            {model.text(model.connections[i].instance), model.text(model.connections[i].port)});
    return ends;
}

std::size_t HBSHandoff::externalPortCount() const {
    return m_decision->model.externalPorts.size();
}

HBSHandoff::ExternalPort HBSHandoff::externalPort(std::size_t number) const {
    const hwh::Model& model = m_decision->model;
    const hwh::ExternalPort& port = model.externalPorts[number];
    return {
        model.text(port.name),
        model.signalName(port.namedBy),
        port.namedBy,
        {model.externalEnds.begin() + port.ends.begin, model.externalEnds.begin() + port.ends.end}};
}

std::vector<HBSHandoff::Range> HBSHandoff::ranges(std::size_t module) const {
    const hwh::Model& model = m_decision->model;
    std::vector<Range> ranges;
    if (!this->module(module).isMaster)
        return ranges;
    hwh::MemoryMaps maps(model);
    for (const std::uint32_t slave : maps.reachableFrom(model.modules[module])) {
        const hwh::Instance& instance = model.instances[model.slaves[slave]];
        const hwh::InstanceFacts facts = model.factsOf(instance);
        ranges.push_back({facts.sdkName, model.text(instance.name), facts.baseAddress,
                          facts.highAddress, base::readAddress(facts.baseAddress),
                          base::readAddress(facts.highAddress), facts.memType, facts.isData,
                          facts.isInstruction});
    }
    return ranges;
}

void HBSHandoff::writeDocument(const std::string& outputFile) const {
    Texts system = m_system; // missing keys are added
    hwh::writeDocument(m_decision->model, hwh::DocumentFacts::collect(system), outputFile);
}
