// The tables into which the connectivity metadata is read.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "handoff/HWHExternalAddressing.h"
#include "handoff/HWHPortRecord.h"

// Ordered maps throughout: keys compare bytewise, the shorter first at equal prefix, and the order
// of the handoff document follows from that.

using HWHTextMap = std::map<std::string, std::string>;
using HWHTextList = std::vector<std::string>;

/// Instance name to the instance's scalar properties, "isMasterOrSlave" among them.
using HWHInstanceTable = std::map<std::string, HWHTextMap>;
/// A master's "SDKNAME" to the slaves it can't reach.
using HWHExcludedSlavesTable = std::map<std::string, HWHTextList>;
/// A module's "SDKNAME" to its ports by name.
using HWHPortTable = std::map<std::string, std::map<std::string, HWHPortRecord>>;
/// A module's "SDKNAME" to its parameters by name.
using HWHParameterTable = std::map<std::string, HWHTextMap>;
/// By entry name.
using HWHExternalAddressingTable = std::map<std::string, HWHExternalAddressing>;
/// A master's "SDKNAME" to the apertures of its interfaces by interface name.
using HWHApertureTable = std::map<std::string, std::map<std::string, HWHTextList>>;
/// Instance name and interface name to the parameter that enables the interface.
using HWHInterfaceEnableTable = std::map<std::pair<std::string, std::string>, std::string>;
