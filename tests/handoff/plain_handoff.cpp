#include "handoff/plain_handoff.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <utility>

#include "HUTEnv.h"
#include "HXMLWInterface.h"
#include "handoff/HBSJsonReader.h"

namespace handoff_support {

namespace {

struct Tables {
    HWHInstanceTable instances;
    HWHExcludedSlavesTable excluded;
    HWHPortTable ports;
    HWHParameterTable parameters;

    Tables(const std::string& file, bool split, Texts& system) {
        HWHExternalAddressingTable external;
        HWHApertureTable apertures;
        HWHInterfaceEnableTable enables;
        HBSJsonReader reader;
        if (split)
            (void)reader.parseconnectivityjson(file, instances, excluded, external, true, ports,
                                               parameters, apertures, enables, system);
        else
            (void)reader.parseconnectivityjson(file, instances, excluded, external, true, ports,
                                               parameters, apertures, enables);
    }
};

Texts pairsOf(const std::string& prefix, std::string text) {
    if (text.size() >= 2 && text.front() == '{' && text.back() == '}')
        text = text.substr(1, text.size() - 2);
    std::vector<std::string> words;
    while (!text.empty()) {
        if (text.front() == ' ')
            text.erase(0, 1);
        const std::size_t blank = text.find(' ');
        words.push_back(text.substr(0, blank));
        text = blank == std::string::npos ? "" : text.substr(blank + 1);
    }
    Texts pairs;
    for (std::size_t i = 0; i + 1 < words.size(); i += 2)
        pairs[prefix + "_" + words[i]] = words[i + 1];
    return pairs;
}

std::string inHz(const std::string& megahertz) {
    const double hertz = std::trunc(std::atof(megahertz.c_str()) * 1000000.0);
    if (!(std::abs(hertz) < 9.2e18))
        return "0";
    return std::to_string(static_cast<std::uint32_t>(static_cast<std::int64_t>(hertz)));
}

std::string resolve(const Texts& design, const std::string& name) {
    const auto names = [&](const char* unit) { return name.find(unit) != std::string::npos; };
    if (design.contains(name))
        return names("_FREQMHZ") ? inHz(design.at(name)) : design.at(name);
    for (const auto& [key, text] : design) {
        const Texts pairs = name.starts_with(key) ? pairsOf(key, text) : Texts();
        if (pairs.contains(name))
            return names("CTRL_ACT_FREQMHZ") ? inHz(pairs.at(name)) : pairs.at(name);
    }
    return name;
}

bool isEnabled(const Texts& design, const std::string& name) {
    std::string value = "unknown";
    for (const auto& [key, text] : design) {
        if (name.empty())
            return true;
        if (key == name)
            return text != "0";
        const Texts pairs = name.starts_with(key) ? pairsOf(key, text) : Texts();
        if (pairs.contains(name))
            value = pairs.at(name);
    }
    return value != "0";
}

class PlainHandoff {
public:
    PlainHandoff(const Texts& design, Texts& system, Tables tables)
        : m_design(design), m_system(system), m_tables(std::move(tables)) {
        const std::string core = system["ps_core_name"];
        m_top = (core.empty() ? "yrel" : core) + "_top";
    }

    std::shared_ptr<HXMLWElement> document() {
        auto root = HXMLWInterface::createRoot("LOMSYSTEM");
        root->addProperty("@ORVENAVERSION = " + HUTEnv::getProductVersion());
        root->addProperty("@GUVVERSION = 1.2");
        HXMLWElement* info = root->addChild("STSTEMINFO");
        info->addProperty("@ARCH=" + m_system["family"]);
        info->addProperty("@DEVICE=" + m_system["device"]);
        info->addProperty("@NAME=" + m_system["ps_core_name"] + "_top");
        info->addProperty("@PACKAGE=" + m_system["package"]);
        info->addProperty("@SPEEDGRADE=" + m_system["speedgrade"]);
        HXMLWElement* externalPorts = root->addChild("EXTERNALPORTS");
        root->addChild("EXTERNALINTERFACES");
        addModules(*root->addChild("MODULES"));
        for (const auto& [name, ends] : m_externalPorts)
            addExternalPort(*externalPorts, name, ends);
        return root;
    }

private:
    using Ends = std::map<std::string, HWHPortRecord>; ///< by module

    void addModules(HXMLWElement& modules) {
        Texts internal;
        for (auto& [name, scalars] : m_tables.instances)
            if (name.find("_INT") != std::string::npos)
                internal[scalars["SDKNAME"]] = name;
        std::vector<std::string> done;
        for (auto& [name, scalars] : m_tables.instances) {
            const std::string module = scalars["SDKNAME"];
            if ((scalars["isMasterOrSlave"] == "master" &&
                 scalars["CLASSIFICATION"] == "INTERFACE") ||
                std::find(done.begin(), done.end(), module) != done.end() ||
                !isEnabled(m_design, scalars["ENPARAM"]))
                continue;
            const bool folded = name.find("_EXT") != std::string::npos && internal.contains(module);
            addModule(*modules.addChild("MODULE"), module,
                      folded ? m_tables.instances[internal[module]] : scalars);
            done.push_back(module);
        }
    }

    void addModule(HXMLWElement& element, const std::string& module, Texts scalars) {
        element.addProperty("@INSTANCE=" + module);
        element.addProperty("@FULLNAME=" + module);
        element.addProperty("@HWVERSION=11.0");
        element.addProperty("@IPTYPE=" + scalars["IP_TYPE"]);
        element.addProperty("@MODTYPE=" + scalars["MODTYPE"]);
        element.addProperty("@MODCLASS=" + scalars["MODCLASS"]);
        element.addProperty("@IS_PL=FALSE");
        element.addProperty("@SLR_NUMBER=" + scalars["SLR_NUMBER"]);
        element.addProperty("@MULTISOCKETSMP=" + scalars["MULTISOCKETSMP"]);
        element.addProperty("@IS_ENABLE=1");
        HXMLWElement* parameters = element.addChild("PARAMETERS");
        for (const auto& [name, value] : m_tables.parameters[module]) {
            HXMLWElement* parameter = parameters->addChild("PARAMETER");
            parameter->addProperty("@NAME=" + name);
            parameter->addProperty("@VALUE=" + resolve(m_design, value));
        }
        HXMLWElement* ports = element.addChild("PORTS");
        for (const auto& [name, record] : m_tables.ports[module]) {
            HXMLWElement* port = addPort(*ports, name, record);
            if (record.SIG_IS == "INTERRUPT")
                port->addProperty("@IRQID=" + record.IRQID);
            nameSignal(*port, module, record);
        }
        if (scalars["isMasterOrSlave"] == "master")
            addMemoryMap(element, m_tables.excluded[module]);
    }

    static HXMLWElement* addPort(HXMLWElement& parent, const std::string& name,
                                 const HWHPortRecord& record) {
        HXMLWElement* port = parent.addChild("PORT");
        port->addProperty("@NAME=" + name);
        port->addProperty("@DIR=" + record.DIR);
        port->addProperty("@SIGIS=" + (record.SIG_IS.empty() ? "undef" : record.SIG_IS));
        port->addProperty("@LEFT=");
        port->addProperty("@RIGHT=");
        return port;
    }

    static void addConnection(HXMLWElement& port, const std::string& instance,
                              const std::string& farPort) {
        std::vector<std::shared_ptr<HXMLWElement>> children;
        port.getChildren(children);
        HXMLWElement* connections =
            children.empty() ? port.addChild("CONNECTIONS") : children.back().get();
        HXMLWElement* connection = connections->addChild("CONNECTION");
        connection->addProperty("@INSTANCE=" + instance);
        connection->addProperty("@PORT=" + farPort);
    }

    void nameSignal(HXMLWElement& port, const std::string& module, const HWHPortRecord& record) {
        std::string signal;
        const std::string own = module + "_" + record.NAME;
        for (const auto& [instance, farPort] : record.CONNECTIONS) {
            addConnection(port, instance, farPort);
            if (instance == m_top)
                m_externalPorts[farPort].emplace(module, record);
            if (signal.empty() && m_signals.contains(instance + "_" + farPort))
                signal = m_signals[instance + "_" + farPort];
        }
        if (signal.empty())
            signal = m_signals.contains(own) ? m_signals[own] : own;
        m_signals.emplace(own, signal);
        for (const auto& [instance, farPort] : record.CONNECTIONS)
            m_signals.emplace(instance + "_" + farPort, signal);
        port.addProperty("@SIGNAME = " + signal);
    }

    void addMemoryMap(HXMLWElement& module, const HWHTextList& excluded) {
        HXMLWElement* memoryMap = module.addChild("MEMORYMAP");
        HXMLWElement* peripherals = module.addChild("PERIPHERALS");
        for (auto& [name, scalars] : m_tables.instances) {
            const std::string die =
                m_system["ps_core_name"] == "tovak" ? ":" + scalars["SLR_NUMBER"] : "";
            const auto excludes = [&](const std::string& text) {
                return std::find(excluded.begin(), excluded.end(), text + die) != excluded.end();
            };
            if (scalars["isMasterOrSlave"] == "master" ||
                !isEnabled(m_design, scalars["ENPARAM"]) || excludes(scalars["SDKNAME"]) ||
                excludes(name))
                continue;
            HXMLWElement* range = memoryMap->addChild("MEMRANGE");
            range->addProperty("@IS_DATA=" + scalars["IS_DATA"]);
            range->addProperty("@BASENAME=C_BASEADDR");
            range->addProperty("@BASEVALUE=" + scalars["BASE_ADDR"]);
            range->addProperty("@HIGHNAME=C_HIGHADDR");
            range->addProperty("@HIGHVALUE=" + scalars["HIGH_ADDR"]);
            range->addProperty("@INSTANCE=" + scalars["SDKNAME"]);
            range->addProperty("@IS_DATA=" + scalars["IS_DATA"]);
            range->addProperty("@IS_INSTRUCTION=" + scalars["IS_INSTRUCTION"]);
            range->addProperty("@MEMTYPE=" + scalars["MEMTYPE"]);
            for (const char* empty : {"@ACCESSTYPE=", "@ATRUSTZONE=", "@ADDRESSBLOCK="})
                range->addProperty(empty);
            peripherals->addChild("PERIPHERAL")->addProperty("@INSTANCE=" + scalars["SDKNAME"]);
        }
    }

    void addExternalPort(HXMLWElement& externalPorts, const std::string& name, const Ends& ends) {
        HXMLWElement* port = addPort(externalPorts, name, ends.begin()->second);
        std::string signal;
        for (const auto& [module, record] : ends) {
            addConnection(*port, module, record.NAME);
            if (signal.empty())
                signal = m_signals[module + "_" + record.NAME];
        }
        port->addProperty("@SIGNAME = " + signal);
    }

    const Texts& m_design;
    Texts& m_system;
    Tables m_tables;
    std::string m_top;
    Texts m_signals; ///< by "instance_port"
    std::map<std::string, Ends> m_externalPorts;
};

} // namespace

void writePlainHandoff(const Texts& design, Texts system, const std::string& connectivityFile,
                       bool splitByCells, const std::string& outputFile) {
    Tables tables(connectivityFile, splitByCells, system);
    HXMLWInterface::writeToFile(PlainHandoff(design, system, std::move(tables)).document(),
                                outputFile);
}

} // namespace handoff_support
