#include "handoff/HBSJsonReader.h"

#include <string_view>

#include "handoff/HWHConnectivity.h"
#include "handoff/HWHShapeCheck.h"
#include "handoff/HWHTableFiller.h"
#include "input/InputFile.h"

namespace {

using base::JsonNode;

/// A "value" takes the name that was seen last, so a name stays in effect from element to element.
void readComponentList(const JsonNode& list, HWHTextMap& parameters) {
    std::string_view name;
    list.forEachMemberOfElements([&](const JsonNode& key, const JsonNode& value) {
        if (key.text() == "name") {
            name = hwh::textOf(value);
        } else if (key.text() == "value") {
            parameters[std::string(name)] = hwh::findText(value, "string");
            name = {};
        }
    });
}

bool readComponent(const JsonNode& value, HWHTextMap& parameters) {
    if (value.isArray()) {
        readComponentList(value, parameters);
        return true;
    }
    bool good = value.isObject();
    value.forEachMember([&](const JsonNode& name, const JsonNode& member) {
        if (good && (name.text() == "parameters" || name.text() == "parameter"))
            good = readComponent(member, parameters);
    });
    return good;
}

bool fill(const hwh::TableFiller& tables, const hwh::ConnectivityFile& file,
          const tq::DiagnosticSink& sink) {
    if (sink)
        hwh::checkShape(file, sink);
    return tables.fill(file);
}

} // namespace

bool HBSJsonReader::parseconnectivityjson(const std::string& fileName,
                                          HWHInstanceTable& instanceTable,
                                          HWHExcludedSlavesTable& excludedSlavesTable,
                                          HWHExternalAddressingTable& externalAddressingTable,
                                          bool isAddressing, HWHPortTable& portTable,
                                          HWHParameterTable& parameterTable,
                                          HWHApertureTable& apertureTable,
                                          HWHInterfaceEnableTable& interfaceEnableTable) {
    return parseconnectivityjson(fileName, instanceTable, excludedSlavesTable,
                                 externalAddressingTable, isAddressing, portTable, parameterTable,
                                 apertureTable, interfaceEnableTable, tq::DiagnosticSink());
}

bool HBSJsonReader::parseconnectivityjson(
    const std::string& fileName, HWHInstanceTable& instanceTable,
    HWHExcludedSlavesTable& excludedSlavesTable,
    HWHExternalAddressingTable& externalAddressingTable, bool isAddressing, HWHPortTable& portTable,
    HWHParameterTable& parameterTable, HWHApertureTable& apertureTable,
    HWHInterfaceEnableTable& interfaceEnableTable, HWHTextMap& systemInfo) {
    return parseconnectivityjson(fileName, instanceTable, excludedSlavesTable,
                                 externalAddressingTable, isAddressing, portTable, parameterTable,
                                 apertureTable, interfaceEnableTable, systemInfo,
                                 tq::DiagnosticSink());
}

bool HBSJsonReader::parseconnectivityjson(
    const std::string& fileName, HWHInstanceTable& instanceTable,
    HWHExcludedSlavesTable& excludedSlavesTable,
    HWHExternalAddressingTable& externalAddressingTable, bool, HWHPortTable& portTable,
    HWHParameterTable& parameterTable, HWHApertureTable& apertureTable,
    HWHInterfaceEnableTable& interfaceEnableTable, const tq::DiagnosticSink& sink) {
    const hwh::TableFiller tables{instanceTable,       excludedSlavesTable, externalAddressingTable,
                                  portTable,           parameterTable,      apertureTable,
                                  interfaceEnableTable};
    return fill(tables, hwh::ConnectivityFile(fileName, sink), sink);
}

bool HBSJsonReader::parseconnectivityjson(const std::string& fileName,
                                          HWHInstanceTable& instanceTable,
                                          HWHExcludedSlavesTable& excludedSlavesTable,
                                          HWHExternalAddressingTable& externalAddressingTable,
                                          bool isAddressing, HWHPortTable& portTable,
                                          HWHParameterTable& parameterTable,
                                          HWHApertureTable& apertureTable,
                                          HWHInterfaceEnableTable& interfaceEnableTable,
                                          HWHTextMap& systemInfo, const tq::DiagnosticSink& sink) {
    const hwh::TableFiller tables{instanceTable,       excludedSlavesTable, externalAddressingTable,
                                  portTable,           parameterTable,      apertureTable,
                                  interfaceEnableTable};
    return fill(tables, hwh::ConnectivityFile(fileName, isAddressing, systemInfo, sink), sink);
}

bool HBSJsonReader::parseMioRegisters(const std::string& fileName, HWHTextMap& registers) {
    if (fileName.empty())
        return false;
    const base::JsonTape tape = hwh::readJsonFile(fileName);
    const auto object = hwh::findObject(tape.root(), "mio_registers");
    if (!object)
        return false;
    hwh::copyTexts(*object, registers);
    return true;
}

bool HBSJsonReader::parseHicUserParameters(const std::string& fileName, HWHTextMap& parameters) {
    const base::JsonTape tape = hwh::readJsonFile(fileName);
    const auto owner = hwh::findObject(tape.root(), "hic_user_paramters");
    const auto list = owner ? hwh::findArray(*owner, "parameters") : std::nullopt;
    if (!list)
        return false;
    list->forEachElement([&](const JsonNode& element) { hwh::copyTexts(element, parameters); });
    return true;
}

bool HBSJsonReader::parseComponentParameters(const std::string& fileName, HWHTextMap& parameters) {
    const base::FileContent content = input::readFile(fileName);
    if (!content.isWhole())
        return false;
    const base::JsonTape tape(content.text);
    if (tape.HasParseError())
        return false;
    const auto component = hwh::findMember(tape.root(), "component");
    return component && readComponent(*component, parameters);
}
