// A hard block subsystem from its definition and a config to its address map.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "addressing/HBSAddressing.h"
#include "blockmodel/HABM.h"
#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"
#include "workbench/addressing/AddressMap.h"
#include "workbench/addressing/AddressViews.h"
#include "workbench/addressing/AddressingConfig.h"

namespace tq {

/// Reads a definition of the data area ("TQ_DATA_PATH", see `HUTEnv`), applies a config and builds
/// the address map with what each initiator sees:
///
///     const ConfiguredMap map("kestrom:hardblock:sorrel_ps:1.0", "linux.json", findings.sink());
///     map.check(findings.sink());
class TQ_WORKBENCH_EXPORT ConfiguredMap {
public:
    /// An empty `configPath` is the config that changes nothing. The sink gets what
    /// is found in the files of the definition, and by `AddressingConfig::read` for this purpose.
    /// Raises `InputError` for a VLNV that can't be split, a definition that can't be read and a
    /// bad config.
    ConfiguredMap(const std::string& vlnv, const std::string& configPath,
                  const DiagnosticSink& sink = {},
                  AddressingConfig::Purpose purpose = AddressingConfig::Purpose::Use);
    ~ConfiguredMap();
    ConfiguredMap(const ConfiguredMap&) = delete;
    ConfiguredMap& operator=(const ConfiguredMap&) = delete;

    // The parts of the map, valid as long as this object.

    /// As `HBSAddressing::createSubsystemDefinition` gives it.
    [[nodiscard]] const HABMBlock& definition() const { return *m_definition; }
    /// The definition with the config and its assigns applied.
    [[nodiscard]] const HABMBlock& instance() const { return *m_instance; }
    /// As read from the file at `configPath()`, which is empty for the config that changes nothing.
    [[nodiscard]] const AddressingConfig& config() const { return m_config; }
    [[nodiscard]] const std::string& configPath() const { return m_configPath; }
    /// The addresses of `instance()`, and what each initiator sees at them.
    [[nodiscard]] const AddressMap& map() const { return *m_map; }
    [[nodiscard]] const AddressViews& views() const { return *m_views; }
    /// How the expressions of the definition were decided, in the order of deciding.
    [[nodiscard]] const std::vector<HBSDecision>& decisions() const { return m_decisions; }
    /// The folder of the hard blocks in the data area.
    [[nodiscard]] const std::string& hardblocks() const { return m_hardblocks; }

    /// The findings of `checkMap`.
    void check(const DiagnosticSink& sink) const;

private:
    std::string m_vlnv;
    std::string m_configPath;
    std::string m_hardblocks;
    const HABMBlock* m_definition;
    AddressingConfig m_config;
    std::vector<HBSDecision> m_decisions;
    std::unique_ptr<HABMBlock> m_instance;
    std::unique_ptr<AddressMap> m_map;
    std::unique_ptr<AddressViews> m_views;
};

/// Raises `InputError` if a file to be written is one that definitions come of: a compiled block, a
/// table or a script of the data area.
TQ_WORKBENCH_EXPORT void refuseDefinition(const std::string& output);

} // namespace tq
