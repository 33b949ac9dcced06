// The working object of one handoff: from the connectivity file to the written document.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "HXMLWElement.h"
#include "handoff/HWHDesignParams.h"
#include "handoff/HWHTables.h"

/// The road, one stage after the other: read the file, collect what the design says of meta and
/// enable parameters, build the document, write it. The stages of the document stand in
/// HWHGenerator_modules.cpp, …_ports.cpp and …_parameters.cpp.
class HWHGenerator {
public:
    /// Both maps have to outlive the object.
    HWHGenerator(const HWHTextMap& designParams, HWHTextMap& systemInfo);

    /// Does the whole work, once. After an exception `systemInfo` is as it was.
    void generate(const std::string& connectivityFile, const std::string& outputFile);

private:
    /// What a slave adds to the memory map of each master that reaches it.
    struct MemoryRange {
        std::string slaveName;               ///< as excluded lists may name it
        std::string instanceName;            ///< likewise
        std::vector<std::string> properties; ///< of the range, in order
        std::string peripheral;              ///< the property of the peripheral
    };

    // The road.
    void readConnectivity(const std::string& connectivityFile);
    void collectMetaParams();
    void collectEnableParams();
    std::shared_ptr<HXMLWElement> buildDocument();
    void writeRootAttributes(HXMLWElement& root);
    void writeSystemInfo(HXMLWElement& element);

    // Modules and memory ranges.
    void writeModules(HXMLWElement& modules);
    void writeModule(HXMLWElement& modules, const std::string& moduleName, HWHTextMap& scalars,
                     const std::vector<MemoryRange>& ranges);
    std::map<std::string, std::string> findInternalInstances();
    std::vector<MemoryRange> collectRanges();
    void writeMemoryMap(HXMLWElement* module, const std::string& masterName,
                        const std::vector<MemoryRange>& ranges);
    bool isParamEnabled(const std::string& name) const;
    bool isDisabled(HWHTextMap& scalars) const;

    // Ports, signals and external ports.
    void writePorts(HXMLWElement& module, const std::string& moduleName);
    HXMLWElement* writePort(HXMLWElement* ports, const HWHPortRecord& record);
    void nameSignals(const std::string& moduleName);
    void nameSignal(HXMLWElement& port, const std::string& moduleName, const HWHPortRecord& record);
    void writeExternalPorts(HXMLWElement* externalPorts);
    void writeExternalPort(HXMLWElement& externalPorts, const std::string& name,
                           const std::map<std::string, const HWHPortRecord*>& innerPorts);
    HXMLWElement* addSignalPort(HXMLWElement* parent, std::string name, std::string dir,
                                std::string sigIs, std::string left, std::string right,
                                std::string extra, std::string polarity, std::string irqId);
    HXMLWElement* addPlainPort(HXMLWElement* parent, std::string name, std::string dir,
                               std::string sigIs, std::string left, std::string right,
                               std::string polarity);
    HXMLWElement* addPortCommon(HXMLWElement& parent, const std::string& name,
                                const std::string& dir, const std::string& sigIs,
                                const std::string& left, const std::string& right);
    void addConnection(HXMLWElement& connections, const std::string& instance,
                       const std::string& port);

    // Parameters.
    void writeParameters(HXMLWElement& module, const std::string& moduleName);
    void addParameter(HXMLWElement& parameters, const std::string& name, std::string value);

    /// Adds an attribute through the text form, without blanks and with.
    void add(HXMLWElement& element, const std::string& key, const std::string& value);
    void addSpaced(HXMLWElement& element, const std::string& key, const std::string& value);

    HWHTextMap& m_systemInfo;
    HWHTextMap m_systemInfoCopy; ///< as it was at the start; no stage reads it
    hwh::DesignParams m_designParams;

    // Filled by the reader.
    HWHInstanceTable m_instanceTable;
    HWHExcludedSlavesTable m_excludedSlavesTable;
    HWHPortTable m_portTable;
    HWHParameterTable m_parameterTable;

    // Filled by the stages.
    std::map<std::string, HWHTextMap> m_metaParamTable; ///< the metaparameters the design knows
    HWHTextMap m_enableParamTable;                      ///< what an enable parameter resolved to
    std::string m_coreName;                             ///< never empty while modules are written
    std::string m_topInstanceName;                      ///< connections to it are external ports
    std::map<std::string, std::map<std::string, HXMLWElement*>> m_portElementsByModule;
    std::map<std::string, std::map<std::string, const HWHPortRecord*>> m_externalPortTable;
    std::unordered_map<std::string, std::string> m_signalTable; ///< "instance_port" to its signal

    std::string m_text; ///< the property under way; kept for its memory
};
