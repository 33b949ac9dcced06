#include "handoff/HBSJsonReader.h"

#include <string_view>

#include "ComMsgMgr.h"
#include "HCRapidJsonReadWriteUtils.h"
#include "HUTFile.h"
#include "JsonDocument.h"
#include "handoff/HWHJsonAccess.h"
#include "handoff/HWHTableFiller.h"
#include "handoff/HWHVocabulary.h"
#include "xp_autodetect.h"

namespace {

namespace fact = hwh::fact;

constexpr unsigned kDebugMask = 0x1000003;

/// The core, and its devices, whose metadata is split by cells.
constexpr const char* kSplitCore = "tovak";
constexpr const char* kSplitDevices[] = {"qmzt4401", "qmzt4402"};

template <class... Args>
void sendDebugLine(int line, const char* format, const Args&... args) {
    ComMsgMgr::sendScopedMsg::eval(static_cast<int>(sizeof...(args)), __FILE__, line, "hbs",
                                   "cdo.gen", kDebugMask, format, args...);
}

/// Reads a file into `document` or raises.
void load(const std::string& fileName, JsonDocument& document) {
    const HUTFile file(fileName);
    const std::string canonicalName = file.getCanonicalName();
    boost::iostreams::filtering_istream stream;
    isl::iostreams::xp_autodetect()(fileName, stream);
    if (!file.exists() || !file.isFile() || stream.bad())
        HCRapidJsonReadWriteUtils::errorReadingJsonFile(canonicalName);
    document.ParseStream(stream);
    // A protected file that is damaged shows it no earlier than here.
    if (stream.bad())
        HCRapidJsonReadWriteUtils::errorReadingJsonFile(canonicalName);
    if (document.HasParseError())
        HCRapidJsonReadWriteUtils::errorParsingJsonFile(
            canonicalName, HCRapidJsonReadWriteUtils::GetErrorMsgFromDocument(document));
}

bool splitCoreSelection(HWHTextMap& systemInfo) {
    if (systemInfo[fact::kCoreName] != kSplitCore)
        return false;
    const std::string& device = systemInfo[fact::kDevice];
    return device == kSplitDevices[0] || device == kSplitDevices[1];
}

std::string cellKey(const std::string& cellName) {
    const std::size_t divider = cellName.find('_');
    return divider == std::string::npos ? cellName : cellName.substr(divider + 1);
}

bool fill(const JsonValue& working, const hwh::TableFiller& tables) {
    const auto found = tables.fill(working);
    if (found == hwh::TableFiller::Found::Everything)
        sendDebugLine(__LINE__, "\t\t HBSJsonReader::parseconnectivityjson- Exit\n");
    return found != hwh::TableFiller::Found::Incomplete;
}

/// A "value" takes the name that was seen last, so a name lives on from element to element.
bool readComponent(const JsonValue& value, HWHTextMap& parameters) {
    if (value.IsObject()) {
        for (const auto& member : value.GetObject()) {
            const std::string_view name = hwh::nameOf(member);
            if ((name == "parameters" || name == "parameter") &&
                !readComponent(member.value, parameters))
                return false;
        }
        return true;
    }
    if (!value.IsArray())
        return false;

    std::string name;
    hwh::forEachMemberOfElements(value, [&](std::string_view key, const JsonValue& member) {
        if (key == "name") {
            name = hwh::textOf(member);
        } else if (key == "value") {
            parameters[name] = HCRapidJsonReadWriteUtils::GetStringProperty(member, "string");
            name.clear();
        }
    });
    return true;
}

} // namespace

bool HBSJsonReader::parseconnectivityjson(const std::string& fileName,
                                          HWHInstanceTable& instanceTable,
                                          HWHExcludedSlavesTable& excludedSlavesTable,
                                          HWHExternalAddressingTable& externalAddressingTable, bool,
                                          HWHPortTable& portTable,
                                          HWHParameterTable& parameterTable,
                                          HWHApertureTable& apertureTable,
                                          HWHInterfaceEnableTable& interfaceEnableTable) {
    sendDebugLine(__LINE__, "\t\t\t HBSJsonReader::parseconnectivityjson- tmpFile: %s Enter\n",
                  fileName);
    JsonDocument document;
    load(fileName, document);
    const JsonValue* metadata = hwh::findObject(document, "metadata");
    return metadata != nullptr &&
           fill(*metadata, {instanceTable, excludedSlavesTable, externalAddressingTable, portTable,
                            parameterTable, apertureTable, interfaceEnableTable});
}

bool HBSJsonReader::parseconnectivityjson(
    const std::string& fileName, HWHInstanceTable& instanceTable,
    HWHExcludedSlavesTable& excludedSlavesTable,
    HWHExternalAddressingTable& externalAddressingTable, bool isAddressing, HWHPortTable& portTable,
    HWHParameterTable& parameterTable, HWHApertureTable& apertureTable,
    HWHInterfaceEnableTable& interfaceEnableTable, HWHTextMap& systemInfo) {
    sendDebugLine(
        __LINE__,
        "\t\t HBSJsonReader::parseconnectivityjson- isAddressing: %d fileName: %s Enter\n",
        isAddressing, fileName);
    JsonDocument document;
    load(fileName, document);
    const JsonValue* working = hwh::findObject(document, "metadata");
    if (working != nullptr && splitCoreSelection(systemInfo))
        working = hwh::findObject(*working, cellKey(systemInfo[fact::kCellName]));
    return working != nullptr &&
           fill(*working, {instanceTable, excludedSlavesTable, externalAddressingTable, portTable,
                           parameterTable, apertureTable, interfaceEnableTable});
}

bool HBSJsonReader::parseMioRegisters(const std::string& fileName, HWHTextMap& registers) {
    if (fileName.empty())
        return false;
    JsonDocument document;
    load(fileName, document);
    const JsonValue* object = hwh::findObject(document, "mio_registers");
    if (object == nullptr)
        return false;
    hwh::copyTexts(*object, registers);
    return true;
}

bool HBSJsonReader::parseHicUserParameters(const std::string& fileName, HWHTextMap& parameters) {
    JsonDocument document;
    load(fileName, document);
    const JsonValue* owner = hwh::findObject(document, "hic_user_paramters");
    const JsonValue* list = owner == nullptr ? nullptr : hwh::findArray(*owner, "parameters");
    if (list == nullptr)
        return false;
    for (const JsonValue& element : list->GetArray())
        hwh::copyTexts(element, parameters);
    return true;
}

bool HBSJsonReader::parseComponentParameters(const std::string& fileName, HWHTextMap& parameters) {
    boost::iostreams::filtering_istream stream;
    isl::iostreams::xp_autodetect()(fileName, stream);
    JsonDocument document;
    if (!stream.bad())
        document.ParseStream(stream);
    if (stream.bad() || document.HasParseError())
        return false;
    const JsonValue* component = hwh::findMember(document, "component");
    return component != nullptr && readComponent(*component, parameters);
}
