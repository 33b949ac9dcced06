#include "handoff/HWHTableFiller.h"

#include <string_view>
#include <utility>

#include "HCRapidJsonReadWriteUtils.h"
#include "handoff/HWHJsonAccess.h"
#include "handoff/HWHVocabulary.h"

namespace hwh {

/// What slaves and masters have in common.
struct TableFiller::Instance {
    HWHTextMap scalars;
    std::map<std::string, HWHPortRecord> ports;
    HWHTextMap parameters;

    /// Under which the ports and parameters go; empty for an instance without one.
    [[nodiscard]] std::string moduleName() const {
        const auto entry = scalars.find(scalar::kSdkName);
        return entry == scalars.end() ? std::string() : entry->second;
    }

    void readMember(std::string_view name, const JsonValue& value);
};

namespace {

void readConnections(const JsonValue& value, std::map<std::string, std::string>& connections) {
    forEachElement(value, [&](const JsonValue& connection) {
        if (connection.IsObject())
            connections[HCRapidJsonReadWriteUtils::GetStringProperty(connection, "INSTANCE")] =
                HCRapidJsonReadWriteUtils::GetStringProperty(connection, "PORT");
    });
}

HWHPortRecord readPort(const JsonValue& port) {
    HWHPortRecord record;
    const std::pair<std::string_view, std::string*> fields[] = {{"NAME", &record.NAME},
                                                                {"DIR", &record.DIR},
                                                                {"SIG_IS", &record.SIG_IS},
                                                                {"IRQID", &record.IRQID}};
    forEachMember(port, [&](std::string_view name, const JsonValue& value) {
        if (name == "CONNECTIONS")
            readConnections(value, record.CONNECTIONS);
        for (const auto& [fieldName, field] : fields)
            if (name == fieldName)
                *field = textOf(value);
    });
    return record;
}

void appendTexts(const JsonValue& array, HWHTextList& texts) {
    forEachElement(array, [&](const JsonValue& element) {
        if (element.IsString())
            texts.push_back(textOf(element));
    });
}

HWHExternalAddressing readExternalAddressing(const JsonValue& entry) {
    HWHExternalAddressing addressing;
    forEachMember(entry, [&](std::string_view name, const JsonValue& value) {
        if (name == "ADDRESS_SPACE")
            forEachMemberOfElements(value, [&](std::string_view space, const JsonValue& texts) {
                if (!texts.IsObject())
                    return;
                HWHTextMap& target = addressing.ADDRESS_SPACE[std::string(space)];
                target.clear();
                copyTexts(texts, target);
            });
        else if (name == "ENPARAM")
            addressing.ENPARAM = textOf(value);
        else if (name == "VLNV")
            addressing.VLNV = textOf(value);
        else if (name == "MODE")
            addressing.MODE = textOf(value);
    });
    return addressing;
}

} // namespace

void TableFiller::Instance::readMember(std::string_view name, const JsonValue& value) {
    if (name == "PORTS") {
        forEachElement(value, [&](const JsonValue& port) {
            if (!port.IsObject())
                return;
            HWHPortRecord record = readPort(port);
            ports[record.NAME] = std::move(record);
        });
    } else if (name == "PARAMETERS") {
        copyTexts(value, parameters);
    } else {
        scalars[std::string(name)] = textOf(value);
    }
}

TableFiller::Found TableFiller::fill(const JsonValue& working) const {
    const auto forEachInstance = [](const JsonValue& list, auto read) {
        forEachMemberOfElements(list, [&](std::string_view name, const JsonValue& value) {
            if (value.IsObject())
                read(std::string(name), value);
        });
    };
    const JsonValue* slaves = findArray(working, "slaves");
    if (slaves == nullptr)
        return Found::Incomplete;
    forEachInstance(
        *slaves, [&](const std::string& name, const JsonValue& value) { readSlave(name, value); });
    const JsonValue* masters = findArray(working, "masters");
    if (masters == nullptr)
        return Found::Incomplete;
    forEachInstance(*masters, [&](const std::string& name, const JsonValue& value) {
        readMaster(name, value);
    });
    const JsonValue* external = findArray(working, "external_addressing");
    if (external == nullptr)
        return Found::Instances;
    forEachInstance(*external, [&](const std::string& name, const JsonValue& value) {
        externalAddressingTable[name] = readExternalAddressing(value);
    });
    return Found::Everything;
}

void TableFiller::readSlave(const std::string& name, const JsonValue& value) const {
    Instance instance;
    forEachMember(value, [&](std::string_view member, const JsonValue& content) {
        instance.readMember(member, content);
    });
    store(name, scalar::kRoleSlave, std::move(instance));
}

void TableFiller::readMaster(const std::string& name, const JsonValue& value) const {
    Instance instance;
    HWHTextList excludedSlaves;
    std::map<std::string, HWHTextList> apertures;
    forEachMember(value, [&](std::string_view member, const JsonValue& content) {
        if (member == "excluded_slaves")
            appendTexts(content, excludedSlaves);
        else if (member == "EXCLUDED_INTERFACES")
            readExcludedInterfaces(name, content, apertures);
        else
            instance.readMember(member, content);
    });
    const std::string moduleName = instance.moduleName();
    excludedSlavesTable[moduleName] = std::move(excludedSlaves);
    apertureTable[moduleName] = std::move(apertures);
    store(name, scalar::kRoleMaster, std::move(instance));
}

void TableFiller::readExcludedInterfaces(const std::string& instanceName, const JsonValue& value,
                                         std::map<std::string, HWHTextList>& apertures) const {
    forEachMemberOfElements(value, [&](std::string_view interface, const JsonValue& facts) {
        const std::string interfaceName(interface);
        HWHTextList texts;
        forEachMember(facts, [&](std::string_view name, const JsonValue& content) {
            if (name == "EN_PARAM") {
                interfaceEnableTable[{instanceName, interfaceName}] = textOf(content);
            } else if (name == "APERTURE") {
                appendTexts(content, texts);
                apertures[interfaceName] = texts;
            }
        });
    });
}

void TableFiller::store(const std::string& name, const char* role, Instance&& instance) const {
    const std::string moduleName = instance.moduleName();
    instance.scalars[scalar::kRole] = role;
    instanceTable[name] = std::move(instance.scalars);
    portTable[moduleName] = std::move(instance.ports);
    parameterTable[moduleName] = std::move(instance.parameters);
}

} // namespace hwh
