// From a connectivity file to the tables of the reader's callers.
#pragma once

#include <map>
#include <string>

#include "handoff/HWHConnectivity.h"
#include "handoff/HWHTables.h"

namespace hwh {

/// Fills the caller's tables in the order slaves, masters, external addressing.
class TableFiller {
public:
    HWHInstanceTable& instanceTable;
    HWHExcludedSlavesTable& excludedSlavesTable;
    HWHExternalAddressingTable& externalAddressingTable;
    HWHPortTable& portTable;
    HWHParameterTable& parameterTable;
    HWHApertureTable& apertureTable;
    HWHInterfaceEnableTable& interfaceEnableTable;

    /// False where the file lacks slaves or masters.
    [[nodiscard]] bool fill(const ConnectivityFile& file) const;

private:
    struct Instance;

    void readSlave(const std::string& name, const base::JsonNode& value) const;
    void readMaster(const std::string& name, const base::JsonNode& value) const;
    void readExcludedInterfaces(const std::string& instanceName, const base::JsonNode& value,
                                std::map<std::string, HWHTextList>& apertures) const;
    void store(const std::string& name, const char* role, Instance&& instance) const;
};

/// Puts the members of an object into `texts`.
void copyTexts(const base::JsonNode& object, HWHTextMap& texts);

} // namespace hwh
