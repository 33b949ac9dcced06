// Which instances become modules, and what memory each master reaches.

#include <string_view>
#include <unordered_set>
#include <utility>

#include "handoff/HWHGenerator.h"
#include "handoff/HWHVocabulary.h"

namespace {

namespace key = hwh::key;
namespace scalar = hwh::scalar;
namespace word = hwh::word;

/// The core whose excluded lists tell the slaves of its several dies apart.
constexpr const char* kCoreWithDies = "tovak";

bool holds(const std::string& instanceName, const char* mark) {
    return instanceName.find(mark) != std::string::npos;
}

} // namespace

void HWHGenerator::writeModules(HXMLWElement& modules) {
    auto internalInstances = findInternalInstances();
    const auto ranges = collectRanges();
    std::unordered_set<std::string> processed;
    std::size_t portCount = 0;
    for (const auto& [moduleName, ports] : m_portTable)
        portCount += ports.size();
    m_signalTable.reserve(portCount);

    for (auto& [instanceName, scalars] : m_instanceTable) {
        if (scalars[scalar::kRole] == scalar::kRoleMaster &&
            scalars[scalar::kClassification] == scalar::kClassInterface)
            continue;
        const std::string& moduleName = scalars[scalar::kSdkName];
        // A disabled instance leaves the module to a later one.
        if (processed.contains(moduleName) || isDisabled(scalars))
            continue;
        const auto internal = internalInstances.find(moduleName);
        const bool folded = holds(instanceName, "_EXT") && internal != internalInstances.end();
        writeModule(modules, moduleName, folded ? m_instanceTable[internal->second] : scalars,
                    ranges);
        processed.insert(moduleName);
    }
}

/// `scalars` are those of the instance that gives the facts.
void HWHGenerator::writeModule(HXMLWElement& modules, const std::string& moduleName,
                               HWHTextMap& scalars, const std::vector<MemoryRange>& ranges) {
    HXMLWElement* module = modules.addChild(hwh::element::kModule);
    add(*module, key::kInstance, moduleName);
    add(*module, key::kFullname, moduleName);
    add(*module, key::kHwversion, word::kHardwareVersion);
    add(*module, key::kIptype, scalars[scalar::kIpType]);
    add(*module, key::kModtype, scalars[scalar::kModType]);
    add(*module, key::kModclass, scalars[scalar::kModClass]);
    add(*module, key::kIsPl, word::kFalse);
    add(*module, key::kSlrNumber, scalars[scalar::kSlrNumber]);
    add(*module, key::kMultisocketsmp, scalars[scalar::kMultiSocketSmp]);
    add(*module, key::kIsEnable, word::kEnabled);

    writeParameters(*module, moduleName);
    writePorts(*module, moduleName);
    nameSignals(moduleName);
    if (scalars[scalar::kRole] == scalar::kRoleMaster)
        writeMemoryMap(module, moduleName, ranges);
}

/// By "SDKNAME"; of several, the latest in key order stands.
std::map<std::string, std::string> HWHGenerator::findInternalInstances() {
    std::map<std::string, std::string> internalInstances;
    for (auto& [instanceName, scalars] : m_instanceTable)
        if (holds(instanceName, "_INT"))
            internalInstances[scalars[scalar::kSdkName]] = instanceName;
    return internalInstances;
}

/// Every enabled slave in key order. The texts are made once here, as each master repeats them.
std::vector<HWHGenerator::MemoryRange> HWHGenerator::collectRanges() {
    const bool dies = m_coreName == kCoreWithDies;
    std::vector<MemoryRange> ranges;
    for (auto& [instanceName, scalars] : m_instanceTable) {
        if (scalars[scalar::kRole] == scalar::kRoleMaster || isDisabled(scalars))
            continue;
        const auto property = [&scalars = scalars](const std::string& key, const char* name) {
            return key + "=" + scalars[name];
        };
        const std::string tail = dies ? ":" + scalars[scalar::kSlrNumber] : "";
        const std::string isData = property(key::kIsData, scalar::kIsData);
        const std::string instance = property(key::kInstance, scalar::kSdkName);
        ranges.push_back(
            {scalars[scalar::kSdkName] + tail,
             instanceName + tail,
             // "IS_DATA" leads the list and comes again in its place: readers rely on the order.
             {isData, key::kBasename + "=" + word::kBaseAddressName,
              property(key::kBasevalue, scalar::kBaseAddress),
              key::kHighname + "=" + word::kHighAddressName,
              property(key::kHighvalue, scalar::kHighAddress), instance, isData,
              property(key::kIsInstruction, scalar::kIsInstruction),
              property(key::kMemtype, scalar::kMemType), key::kAccesstype + "=",
              key::kAtrustzone + "=", key::kAddressblock + "="},
             instance});
    }
    return ranges;
}

void HWHGenerator::writeMemoryMap(HXMLWElement* module, const std::string& masterName,
                                  const std::vector<MemoryRange>& ranges) {
    if (module == nullptr)
        return;
    HXMLWElement* memoryMap = module->addChild(hwh::element::kMemoryMap);
    HXMLWElement* peripherals = module->addChild(hwh::element::kPeripherals);
    const HWHTextList& list = m_excludedSlavesTable[masterName];
    const std::unordered_set<std::string_view> excluded(list.begin(), list.end());

    for (const MemoryRange& range : ranges) {
        if (excluded.contains(range.slaveName) || excluded.contains(range.instanceName))
            continue;
        HXMLWElement* element = memoryMap->addChild(hwh::element::kMemRange);
        for (const std::string& property : range.properties)
            element->addProperty(property);
        peripherals->addChild(hwh::element::kPeripheral)->addProperty(range.peripheral);
    }
}

/// What the table doesn't know is enabled, and so is any value but the one text "0".
bool HWHGenerator::isParamEnabled(const std::string& name) const {
    const auto entry = m_enableParamTable.find(name);
    return entry == m_enableParamTable.end() || entry->second != "0";
}

bool HWHGenerator::isDisabled(HWHTextMap& scalars) const {
    const std::string& name = scalars[scalar::kEnableParam];
    return !name.empty() && !isParamEnabled(name);
}
