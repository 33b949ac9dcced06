// Reads the connectivity metadata of a hard block subsystem: its slaves and masters, their ports,
// connections, parameters and addresses.
#pragma once

#include <map>
#include <string>

#include "diagnostics/Diagnostic.h"
#include "handoff/HWHTables.h"
#include "tq_export.h"

/// Flattens connectivity files into tables. A reader keeps nothing: make one, call one operation.
///
///     HWHInstanceTable instances;
///     … // and the other six
///     if (!HBSJsonReader().parseconnectivityjson(file, instances, …))
///         ; // the file lacks "metadata", "slaves" or "masters"
///
/// The file is JSON in UTF-8, stored plain or protected. All leaves are texts. Its shape:
///
///     { "metadata": {
///         "slaves":  [ { INSTANCE: { "SDKNAME": …, SCALAR: …, "PARAMETERS": { NAME: VALUE },
///                        "PORTS": [ { "NAME": …, "DIR": …, "SIG_IS": …, "IRQID": …,
///                          "CONNECTIONS": [ { "INSTANCE": …, "PORT": … } ] } ] } } ],
///         "masters": [ { INSTANCE: { …the same…, "excluded_slaves": [ SLAVE ],
///                        "EXCLUDED_INTERFACES": [ { INTERFACE:
///                          { "EN_PARAM": …, "APERTURE": [ TEXT ] } } ] } } ],
///         "external_addressing": [ { ENTRY: { "ENPARAM": …, "VLNV": …, "MODE": …,
///                        "ADDRESS_SPACE": [ { SPACE: { NAME: VALUE } } ] } } ] } }
///
/// Duplicates. Of texts, ports, connections to one instance, parameters and whole instances the
/// later one counts. "PORTS", "PARAMETERS", "CONNECTIONS", "excluded_slaves" and "APERTURE" of one
/// object accumulate. Of "metadata", "slaves", "masters", "external_addressing" and the two members
/// of a connection the first counts. Instances with one "SDKNAME" share one entry of the port and
/// the parameter table, the last one read: slaves come before masters, each in file order.
///
/// Wrong types. Where a text belongs, anything else reads as the empty text. Where an
/// array or an object belongs, anything else counts as missing; in an array of objects or of texts
/// an element of another type is passed over.
///
/// Every operation but `parseComponentParameters` raises `HEXError`, naming the file, where it
/// can't be read, is no JSON, is nested deeper than a thousand levels, or holds more than the
/// parameter "general.maxInputMiB" allows once it is unpacked. The tables are then as they were, in
/// every operation.
class TQ_EXPORT HBSJsonReader {
public:
    /// True if the file has the required objects. Where "slaves" or "masters" is missing the result
    /// is false, and the tables keep what came before; without "metadata" they stay untouched. What
    /// the tables held before stays, entries of the same key are replaced.
    /// `isAddressing` has no effect here. Sends the entry line always, the exit line only when
    /// "external_addressing" has been read.
    [[nodiscard]] bool parseconnectivityjson(const std::string& fileName,
                                             HWHInstanceTable& instanceTable,
                                             HWHExcludedSlavesTable& excludedSlavesTable,
                                             HWHExternalAddressingTable& externalAddressingTable,
                                             bool isAddressing, HWHPortTable& portTable,
                                             HWHParameterTable& parameterTable,
                                             HWHApertureTable& apertureTable,
                                             HWHInterfaceEnableTable& interfaceEnableTable);

    /// The same for metadata that may be split by cells: on the core and the devices that are made
    /// so, "metadata" holds one object per cell, and the cell is the part after the first "_"
    /// of `systemInfo["cell_name"]` (all of it without "_"). False if that cell is missing.
    /// Keys of `systemInfo` that are looked up and missing stay as empty entries.
    [[nodiscard]] bool
    parseconnectivityjson(const std::string& fileName, HWHInstanceTable& instanceTable,
                          HWHExcludedSlavesTable& excludedSlavesTable,
                          HWHExternalAddressingTable& externalAddressingTable, bool isAddressing,
                          HWHPortTable& portTable, HWHParameterTable& parameterTable,
                          HWHApertureTable& apertureTable,
                          HWHInterfaceEnableTable& interfaceEnableTable, HWHTextMap& systemInfo);

    /// Both with findings: values of wrong types, things that come twice or are missing, and
    /// misspelt members, with their places, and what isn't JSON ahead of the exception. What a
    /// handoff would make of the file is `HBSHandoff`'s to check.
    [[nodiscard]] bool parseconnectivityjson(
        const std::string& fileName, HWHInstanceTable& instanceTable,
        HWHExcludedSlavesTable& excludedSlavesTable,
        HWHExternalAddressingTable& externalAddressingTable, bool isAddressing,
        HWHPortTable& portTable, HWHParameterTable& parameterTable, HWHApertureTable& apertureTable,
        HWHInterfaceEnableTable& interfaceEnableTable, const tq::DiagnosticSink& sink);
    [[nodiscard]] bool
    parseconnectivityjson(const std::string& fileName, HWHInstanceTable& instanceTable,
                          HWHExcludedSlavesTable& excludedSlavesTable,
                          HWHExternalAddressingTable& externalAddressingTable, bool isAddressing,
                          HWHPortTable& portTable, HWHParameterTable& parameterTable,
                          HWHApertureTable& apertureTable,
                          HWHInterfaceEnableTable& interfaceEnableTable, HWHTextMap& systemInfo,
                          const tq::DiagnosticSink& sink);

    /// The members of the root's "mio_registers", an object of texts. False if it is missing, and
    /// at once for an empty file name.
    [[nodiscard]] bool parseMioRegisters(const std::string& fileName, HWHTextMap& registers);

    /// The members of all objects in the array "parameters" of the root's "hic_user_paramters".
    /// False if either is missing.
    [[nodiscard]] bool parseHicUserParameters(const std::string& fileName, HWHTextMap& parameters);

    /// The parameters below the root's "component": objects are entered through "parameters" and
    /// "parameter", and each element of an array gives "name" the text under "string" of its
    /// "value", which must come after "name". False, with no report, for a file that can't be
    /// read or parsed or has no "component", and where the way down meets something other than an
    /// object or an array.
    [[nodiscard]] bool parseComponentParameters(const std::string& fileName,
                                                HWHTextMap& parameters);
};
