#include "handoff/HWHTableFiller.h"

#include <string_view>
#include <utility>

#include "handoff/HWHVocabulary.h"

namespace hwh {

using base::JsonNode;

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

    void readMember(std::string_view name, const JsonNode& value);
};

namespace {

void readConnections(const JsonNode& value, std::map<std::string, std::string>& connections) {
    value.forEachElement([&](const JsonNode& connection) {
        if (connection.isObject())
            connections[std::string(findText(connection, member::kInstance))] =
                findText(connection, member::kPort);
    });
}

HWHPortRecord readPort(const JsonNode& port) {
    HWHPortRecord record;
    const std::pair<std::string_view, std::string*> fields[] = {
        {member::kName, &record.NAME},
        {member::kDirection, &record.DIR},
        {member::kSignalKind, &record.SIG_IS},
        {member::kInterruptId, &record.IRQID}};
    port.forEachMember([&](const JsonNode& name, const JsonNode& value) {
        if (name.text() == member::kConnections)
            readConnections(value, record.CONNECTIONS);
        for (const auto& [fieldName, field] : fields)
            if (name.text() == fieldName)
                *field = textOf(value);
    });
    return record;
}

void appendTexts(const JsonNode& array, HWHTextList& texts) {
    array.forEachElement([&](const JsonNode& element) {
        if (element.isString())
            texts.emplace_back(element.text());
    });
}

HWHExternalAddressing readExternalAddressing(const JsonNode& entry) {
    HWHExternalAddressing addressing;
    entry.forEachMember([&](const JsonNode& name, const JsonNode& value) {
        if (name.text() == "ADDRESS_SPACE")
            value.forEachMemberOfElements([&](const JsonNode& space, const JsonNode& texts) {
                if (!texts.isObject())
                    return;
                HWHTextMap& target = addressing.ADDRESS_SPACE[std::string(space.text())];
                target.clear();
                copyTexts(texts, target);
            });
        else if (name.text() == "ENPARAM")
            addressing.ENPARAM = textOf(value);
        else if (name.text() == "VLNV")
            addressing.VLNV = textOf(value);
        else if (name.text() == "MODE")
            addressing.MODE = textOf(value);
    });
    return addressing;
}

} // namespace

void copyTexts(const JsonNode& object, HWHTextMap& texts) {
    object.forEachMember([&](const JsonNode& name, const JsonNode& value) {
        texts[std::string(name.text())] = textOf(value);
    });
}

void TableFiller::Instance::readMember(std::string_view name, const JsonNode& value) {
    if (name == member::kPorts) {
        value.forEachElement([&](const JsonNode& port) {
            if (!port.isObject())
                return;
            HWHPortRecord record = readPort(port);
            ports[record.NAME] = std::move(record);
        });
    } else if (name == member::kParameters) {
        copyTexts(value, parameters);
    } else {
        scalars[std::string(name)] = textOf(value);
    }
}

bool TableFiller::fill(const ConnectivityFile& file) const {
    forEachObject(file.slaves(), [&](const JsonNode& name, const JsonNode& value) {
        readSlave(std::string(name.text()), value);
    });
    forEachObject(file.masters(), [&](const JsonNode& name, const JsonNode& value) {
        readMaster(std::string(name.text()), value);
    });
    forEachObject(file.externalAddressing(), [&](const JsonNode& name, const JsonNode& value) {
        externalAddressingTable[std::string(name.text())] = readExternalAddressing(value);
    });
    file.reportEnd();
    return file.masters().has_value();
}

void TableFiller::readSlave(const std::string& name, const JsonNode& value) const {
    Instance instance;
    value.forEachMember([&](const JsonNode& key, const JsonNode& content) {
        instance.readMember(key.text(), content);
    });
    store(name, scalar::kRoleSlave, std::move(instance));
}

void TableFiller::readMaster(const std::string& name, const JsonNode& value) const {
    Instance instance;
    HWHTextList excludedSlaves;
    std::map<std::string, HWHTextList> apertures;
    value.forEachMember([&](const JsonNode& key, const JsonNode& content) {
        if (key.text() == member::kExcludedSlaves)
            appendTexts(content, excludedSlaves);
        else if (key.text() == member::kExcludedInterfaces)
            readExcludedInterfaces(name, content, apertures);
        else
            instance.readMember(key.text(), content);
    });
    const std::string moduleName = instance.moduleName();
    excludedSlavesTable[moduleName] = std::move(excludedSlaves);
    apertureTable[moduleName] = std::move(apertures);
    store(name, scalar::kRoleMaster, std::move(instance));
}

void TableFiller::readExcludedInterfaces(const std::string& instanceName, const JsonNode& value,
                                         std::map<std::string, HWHTextList>& apertures) const {
    value.forEachMemberOfElements([&](const JsonNode& interface, const JsonNode& facts) {
        const std::string interfaceName(interface.text());
        HWHTextList* texts = nullptr; // restarts for each interface
        facts.forEachMember([&](const JsonNode& name, const JsonNode& content) {
            if (name.text() == "EN_PARAM") {
                interfaceEnableTable[{instanceName, interfaceName}] = textOf(content);
            } else if (name.text() == "APERTURE") {
                if (texts == nullptr) {
                    texts = &apertures[interfaceName];
                    texts->clear();
                }
                appendTexts(content, *texts);
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
