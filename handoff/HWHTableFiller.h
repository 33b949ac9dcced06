// From the working object of a connectivity file to the tables.
#pragma once

#include "JsonDocument.h"
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

    /// What the working object had.
    enum class Found {
        Incomplete, ///< "slaves" or "masters" is missing
        Instances,  ///< both, but no "external_addressing"
        Everything,
    };

    [[nodiscard]] Found fill(const JsonValue& working) const;

private:
    struct Instance;

    void readSlave(const std::string& name, const JsonValue& value) const;
    void readMaster(const std::string& name, const JsonValue& value) const;
    void readExcludedInterfaces(const std::string& instanceName, const JsonValue& value,
                                std::map<std::string, HWHTextList>& apertures) const;
    void store(const std::string& name, const char* role, Instance&& instance) const;
};

} // namespace hwh
