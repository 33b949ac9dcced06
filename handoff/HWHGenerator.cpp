#include "handoff/HWHGenerator.h"

#include <utility>

#include "HPAParamMgr.h"
#include "HUTEnv.h"
#include "HUTFile.h"
#include "HXMLWInterface.h"
#include "handoff/HBSJsonReader.h"
#include "handoff/HWHVocabulary.h"

namespace {

/// File name of a handoff for which the caller names none.
constexpr const char* kDefaultFileName = "ksb.hwh";

/// Behind a core's name: the instance that stands for the subsystem's outside.
constexpr const char* kTopSuffix = "_top";
/// The core for which connections are read when the system has none.
constexpr const char* kFallbackCoreName = "yrel";

} // namespace

HWHGenerator::HWHGenerator(const HWHTextMap& designParams, HWHTextMap& systemInfo)
    : m_systemInfo(systemInfo), m_systemInfoCopy(systemInfo), m_designParams(designParams) {}

void HWHGenerator::generate(const std::string& connectivityFile, const std::string& outputFile) {
    try {
        readConnectivity(connectivityFile);
        collectMetaParams();
        collectEnableParams();
        const auto root = buildDocument();
        if (root == nullptr)
            return;
        const std::string path =
            !outputFile.empty() ? outputFile
                                : HUTEnv::getPWD() + HUTFile::getDirSeparator() + kDefaultFileName;
        HXMLWInterface::writeToFile(root, path);
    } catch (...) {
        // Keys were only added; the caller's own entries stay where they are.
        std::erase_if(m_systemInfo,
                      [&](const auto& entry) { return !m_systemInfoCopy.contains(entry.first); });
        throw;
    }
}

void HWHGenerator::readConnectivity(const std::string& connectivityFile) {
    // What the file also tells, and no stage asks for.
    HWHExternalAddressingTable externalAddressing;
    HWHApertureTable apertures;
    HWHInterfaceEnableTable interfaceEnables;
    HBSJsonReader reader;
    // A file that lacks sections leaves its tables empty, and the document shows what there is.
    if (HPAParamMgr::getParamMgr()->getValueIfExistAsBool("project.allowPSSubCoreSplit", false))
        (void)reader.parseconnectivityjson(connectivityFile, m_instanceTable, m_excludedSlavesTable,
                                           externalAddressing, true, m_portTable, m_parameterTable,
                                           apertures, interfaceEnables, m_systemInfo);
    else
        (void)reader.parseconnectivityjson(connectivityFile, m_instanceTable, m_excludedSlavesTable,
                                           externalAddressing, true, m_portTable, m_parameterTable,
                                           apertures, interfaceEnables);
}

void HWHGenerator::collectMetaParams() {
    for (auto& [instance, scalars] : m_instanceTable) {
        const std::string& name = scalars[hwh::scalar::kMetaParam];
        if (!name.empty() && m_designParams.contains(name))
            m_metaParamTable.try_emplace(name);
    }
}

void HWHGenerator::collectEnableParams() {
    for (auto& [instance, scalars] : m_instanceTable) {
        const std::string& name = scalars[hwh::scalar::kEnableParam];
        if (name.empty() || m_enableParamTable.contains(name))
            continue;
        if (const std::string* value = m_designParams.resolveEnable(name))
            m_enableParamTable[name] = *value;
    }
}

std::shared_ptr<HXMLWElement> HWHGenerator::buildDocument() {
    auto root = HXMLWInterface::createRoot(hwh::element::kLomSystem);
    if (root == nullptr)
        return nullptr;
    writeRootAttributes(*root);
    HXMLWElement* systemInfo = root->addChild(hwh::element::kStstemInfo);
    HXMLWElement* externalPorts = root->addChild(hwh::element::kExternalPorts);
    root->addChild(hwh::element::kExternalInterfaces);
    HXMLWElement* modules = root->addChild(hwh::element::kModules);

    writeSystemInfo(*systemInfo);
    m_coreName = m_systemInfo[hwh::fact::kCoreName];
    if (m_coreName.empty())
        m_coreName = kFallbackCoreName;
    m_topInstanceName = m_coreName + kTopSuffix;
    writeModules(*modules);
    writeExternalPorts(externalPorts);
    return root;
}

void HWHGenerator::writeRootAttributes(HXMLWElement& root) {
    std::string timeStamp;
    HUTEnv::getTimeStamp(timeStamp);
    addSpaced(root, hwh::key::kOrvenaversion, HUTEnv::getProductVersion());
    root.addProperty(hwh::key::kGuvversion + hwh::word::kGuvVersionTail);
    if (!HPAParamMgr::getParamMgr()->getValueAsBool("project.NoTimeStamp"))
        addSpaced(root, hwh::key::kTimestamp, timeStamp);
}

void HWHGenerator::writeSystemInfo(HXMLWElement& element) {
    add(element, hwh::key::kArch, m_systemInfo[hwh::fact::kFamily]);
    add(element, hwh::key::kDevice, m_systemInfo[hwh::fact::kDevice]);
    add(element, hwh::key::kName, m_systemInfo[hwh::fact::kCoreName] + kTopSuffix);
    add(element, hwh::key::kPackage, m_systemInfo[hwh::fact::kPackage]);
    add(element, hwh::key::kSpeedgrade, m_systemInfo[hwh::fact::kSpeedGrade]);
}

void HWHGenerator::add(HXMLWElement& element, const std::string& key, const std::string& value) {
    m_text.assign(key).append("=").append(value);
    element.addProperty(m_text);
}

void HWHGenerator::addSpaced(HXMLWElement& element, const std::string& key,
                             const std::string& value) {
    m_text.assign(key).append(" = ").append(value);
    element.addProperty(m_text);
}
