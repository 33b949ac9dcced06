#include "handoff/HWHDocumentWriter.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "HPAParamMgr.h"
#include "HUTEnv.h"
#include "HUTFile.h"
#include "HXMLWStream.h"
#include "handoff/HWHMemoryMaps.h"
#include "handoff/HWHVocabulary.h"

namespace hwh {

namespace {

/// File name of a handoff for which the caller names none.
constexpr const char* kDefaultFileName = "ksb.hwh";

/// Keys carry the mark of an attribute.
void addTo(HXMLWText& text, std::string_view key, std::string_view value) {
    text.attribute(key.substr(1), value);
}

void writeRange(HXMLWText& text, const InstanceFacts& slave) {
    text.start(element::kMemRange);
    // The format has "IS_DATA" again after the instance; an attribute keeps its first place.
    addTo(text, key::kIsData, slave.isData);
    addTo(text, key::kBasename, word::kBaseAddressName);
    addTo(text, key::kBasevalue, slave.baseAddress);
    addTo(text, key::kHighname, word::kHighAddressName);
    addTo(text, key::kHighvalue, slave.highAddress);
    addTo(text, key::kInstance, slave.sdkName);
    addTo(text, key::kIsInstruction, slave.isInstruction);
    addTo(text, key::kMemtype, slave.memType);
    addTo(text, key::kAccesstype, "");
    addTo(text, key::kAtrustzone, "");
    addTo(text, key::kAddressblock, "");
    text.end();
}

void writePeripheral(HXMLWText& text, const InstanceFacts& slave) {
    text.start(element::kPeripheral);
    addTo(text, key::kInstance, slave.sdkName);
    text.end();
}

using WriteSlave = void(HXMLWText& text, const InstanceFacts& slave);

/// The elements of all slaves, rendered once where several masters repeat them.
struct RenderedElements {
    /// Levels above an element of a memory map.
    static constexpr std::size_t kDepth = 4;

    HXMLWText text{kDepth};
    std::vector<std::size_t> ends; ///< by slave

    std::string_view operator[](std::uint32_t slave) const {
        const std::size_t begin = slave == 0 ? 0 : ends[slave - 1];
        return text.bytes().substr(begin, ends[slave] - begin);
    }
};

class DocumentWriter {
public:
    DocumentWriter(const Model& model, const std::string& path)
        : m_model(model), m_memoryMaps(model), m_stream(path), m_text(m_stream.text()),
          m_masters(std::count_if(model.modules.begin(), model.modules.end(),
                                  [&](const Module& module) { return hasMemoryMap(module); })) {}

    void write(const DocumentFacts& facts) {
        m_text.start(element::kLomSystem);
        writeRootAttributes(facts);
        writeSystemInfo(facts);
        m_text.start(element::kExternalPorts);
        for (const ExternalPort& port : m_model.externalPorts)
            writeExternalPort(port);
        m_text.end();
        m_text.start(element::kExternalInterfaces);
        m_text.end();
        m_text.start(element::kModules);
        for (const Module& module : m_model.modules)
            writeModule(module);
        m_text.end();
        m_text.end();
        m_stream.finish();
    }

private:
    static constexpr std::uint32_t kPrefetched = 16;
    /// Bytes that are handed on to the file at once.
    static constexpr std::size_t kFlushedBytes = std::size_t{1} << 16U;

    void writeRootAttributes(const DocumentFacts& facts);
    void writeSystemInfo(const DocumentFacts& facts);
    void writeExternalPort(const ExternalPort& port);
    void writeModule(const Module& module);
    void writeModuleAttributes(const Module& module);
    void writeParameters(const Module& module);
    void writePorts(const Module& module);
    void writePortAttributes(std::string_view name, const Port& port);
    void writeConnections(const Slice& connections);
    void writeConnection(std::string_view instance, std::string_view port);
    void writeMemoryMap(const Module& module);
    void writeForEach(const char* parent, std::span<const std::uint32_t> slaves,
                      RenderedElements& rendered, WriteSlave* writeSlave);
    void writeSignalName(std::uint32_t namedBy);

    void add(const std::string& key, std::string_view value) { addTo(m_text, key, value); }
    void endElement() {
        m_text.end();
        flushIfMany();
    }
    void flushIfMany() {
        if (m_text.bytes().size() >= kFlushedBytes)
            m_stream.flush();
    }
    [[nodiscard]] bool hasMemoryMap(const Module& module) const {
        return m_model.instances[module.instance].role == Role::Master;
    }
    [[nodiscard]] std::string_view moduleNameOf(std::uint32_t port) const {
        return m_model.modules[m_model.ports[port].module].name;
    }

    const Model& m_model;
    MemoryMaps m_memoryMaps;
    HXMLWStream m_stream;
    HXMLWText& m_text;
    std::ptrdiff_t m_masters; ///< modules with a memory map
    RenderedElements m_ranges;
    RenderedElements m_peripherals;
    std::string m_signalName; ///< kept for its memory
};

void DocumentWriter::writeRootAttributes(const DocumentFacts& facts) {
    add(key::kOrvenaversion, facts.productVersion);
    add(key::kGuvversion, word::kGuvVersion);
    if (facts.timeStamp)
        add(key::kTimestamp, *facts.timeStamp);
}

void DocumentWriter::writeSystemInfo(const DocumentFacts& facts) {
    m_text.start(element::kStstemInfo);
    add(key::kArch, facts.arch);
    add(key::kDevice, facts.device);
    add(key::kName, facts.name);
    add(key::kPackage, facts.package);
    add(key::kSpeedgrade, facts.speedGrade);
    m_text.end();
}

/// The interrupt number isn't written: at this level an "INTERRUPT" is a plain port.
void DocumentWriter::writeExternalPort(const ExternalPort& port) {
    m_text.start(element::kPort);
    writePortAttributes(m_model.text(port.name),
                        m_model.ports[m_model.externalEnds[port.ends.begin]]);
    writeSignalName(port.namedBy);
    m_text.start(element::kConnections);
    for (std::uint32_t i = port.ends.begin; i < port.ends.end; ++i) {
        const std::uint32_t end = m_model.externalEnds[i];
        writeConnection(moduleNameOf(end), m_model.text(m_model.ports[end].name));
    }
    m_text.end();
    endElement();
}

void DocumentWriter::writeModule(const Module& module) {
    m_text.start(element::kModule);
    writeModuleAttributes(module);
    writeParameters(module);
    writePorts(module);
    if (hasMemoryMap(module))
        writeMemoryMap(module);
    endElement();
}

void DocumentWriter::writeModuleAttributes(const Module& module) {
    const InstanceFacts facts = m_model.factsOf(m_model.instances[module.instance]);
    add(key::kInstance, module.name);
    add(key::kFullname, module.name);
    add(key::kHwversion, word::kHardwareVersion);
    add(key::kIptype, facts.ipType);
    add(key::kModtype, facts.modType);
    add(key::kModclass, facts.modClass);
    add(key::kIsPl, word::kFalse);
    add(key::kSlrNumber, facts.slrNumber);
    add(key::kMultisocketsmp, facts.multiSocketSmp);
    add(key::kIsEnable, word::kEnabled);
}

void DocumentWriter::writeParameters(const Module& module) {
    m_text.start(element::kParameters);
    for (std::uint32_t i = module.parameters.begin; i < module.parameters.end; ++i) {
        // Values lie all over the design's parameters.
        if (i + kPrefetched < module.parameters.end)
            __builtin_prefetch(m_model.parameters[i + kPrefetched].value.data());
        m_text.start(element::kParameter);
        add(key::kName, m_model.text(m_model.parameters[i].name));
        add(key::kValue, m_model.parameters[i].value);
        endElement();
    }
    m_text.end();
}

void DocumentWriter::writePorts(const Module& module) {
    m_text.start(element::kPorts);
    for (std::uint32_t i = module.ports.begin; i < module.ports.end; ++i) {
        const Port& port = m_model.ports[i];
        m_text.start(element::kPort);
        writePortAttributes(m_model.text(port.name), port);
        if (m_model.text(port.signalKind) == signal::kInterrupt)
            add(key::kIrqid, m_model.text(port.interruptId));
        writeSignalName(port.signal.namedBy);
        writeConnections(port.connections);
        endElement();
    }
    m_text.end();
}

/// The metadata has no bounds of vectors, so none are written.
void DocumentWriter::writePortAttributes(std::string_view name, const Port& port) {
    add(key::kName, name);
    const std::string_view kind = m_model.text(port.signalKind);
    add(key::kDir, m_model.text(port.direction));
    add(key::kSigis, kind.empty() ? word::kUndefinedSignal : kind);
    add(key::kLeft, "");
    add(key::kRight, "");
}

void DocumentWriter::writeConnections(const Slice& connections) {
    if (connections.begin == connections.end)
        return;
    m_text.start(element::kConnections);
    for (std::uint32_t i = connections.begin; i < connections.end; ++i)
        writeConnection(m_model.text(m_model.connections[i].instance),
                        m_model.text(m_model.connections[i].port));
    m_text.end();
}

void DocumentWriter::writeConnection(std::string_view instance, std::string_view port) {
    m_text.start(element::kConnection);
    add(key::kInstance, instance);
    add(key::kPort, port);
    endElement();
}

void DocumentWriter::writeSignalName(std::uint32_t namedBy) {
    m_signalName.assign(moduleNameOf(namedBy))
        .append("_")
        .append(m_model.text(m_model.ports[namedBy].name));
    add(key::kSigname, m_signalName);
}

/// The elements of one slave are the same for all masters.
void DocumentWriter::writeMemoryMap(const Module& module) {
    const auto slaves = m_memoryMaps.reachableFrom(module);
    writeForEach(element::kMemoryMap, slaves, m_ranges, writeRange);
    writeForEach(element::kPeripherals, slaves, m_peripherals, writePeripheral);
}

void DocumentWriter::writeForEach(const char* parent, std::span<const std::uint32_t> slaves,
                                  RenderedElements& rendered, WriteSlave* writeSlave) {
    m_text.start(parent);
    if (m_masters > 1 && rendered.ends.empty())
        for (const std::uint32_t instance : m_model.slaves) {
            writeSlave(rendered.text, m_model.factsOf(m_model.instances[instance]));
            rendered.ends.push_back(rendered.text.bytes().size());
        }
    for (const std::uint32_t slave : slaves) {
        if (m_masters > 1)
            m_text.append(rendered[slave]);
        else
            writeSlave(m_text, m_model.factsOf(m_model.instances[m_model.slaves[slave]]));
        flushIfMany();
    }
    m_text.end();
}

} // namespace

DocumentFacts DocumentFacts::collect(HWHTextMap& systemInfo) {
    DocumentFacts facts;
    std::string timeStamp;
    HUTEnv::getTimeStamp(timeStamp);
    facts.productVersion = HUTEnv::getProductVersion();
    if (!HPAParamMgr::getParamMgr()->getValueAsBool("project.NoTimeStamp"))
        facts.timeStamp = timeStamp;
    facts.arch = systemInfo[fact::kFamily];
    facts.device = systemInfo[fact::kDevice];
    facts.name = systemInfo[fact::kCoreName] + kTopSuffix;
    facts.package = systemInfo[fact::kPackage];
    facts.speedGrade = systemInfo[fact::kSpeedGrade];
    return facts;
}

void writeDocument(const Model& model, const DocumentFacts& facts, const std::string& path) {
    DocumentWriter(model, path.empty()
                              ? HUTEnv::getPWD() + HUTFile::getDirSeparator() + kDefaultFileName
                              : path)
        .write(facts);
}

} // namespace hwh
