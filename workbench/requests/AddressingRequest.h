// A question about the address map of a hard block subsystem, with all its options.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tq_workbench_export.h"
#include "workbench/addressing/ConfiguredMap.h"
#include "workbench/addressing/MapComparison.h"
#include "workbench/requests/Console.h"

namespace tq {

/// Configures a subsystem and shows its map, checks it, answers questions, writes files, and
/// compares the maps of two configs or two saved ones.
struct TQ_WORKBENCH_EXPORT AddressingRequest {
    std::string vlnv; ///< vendor:library:name:version
    std::string data; ///< the data area, set as TQ_DATA_PATH of the process
    std::vector<std::string> configs;
    std::vector<std::string> saved; ///< two maps to compare, or none
    // Files to write; "-" is the standard output, which then holds that alone.
    std::string report;
    std::string map;
    std::string svg;
    std::string html;
    std::vector<std::string> exports; ///< by their endings
    bool isJson = false;
    bool hasRegisters = false;
    bool isCheck = false;
    std::vector<std::string> allowed; ///< see `AllowedFindings`
    // Questions; see `findAt`, `findNamed` and `findReason`.
    std::optional<std::string> at;
    std::string from; ///< one initiator; empty for all
    std::optional<std::string> find;
    std::optional<std::string> why;

    /// Raises `InputError`.
    [[nodiscard]] Outcome run(const Console& console) const;

private:
    using Maps = std::vector<std::unique_ptr<const ConfiguredMap>>;

    [[nodiscard]] bool isQuestion() const;
    [[nodiscard]] std::vector<std::string> outputs() const;
    void refuse() const;
    [[nodiscard]] Maps readMaps(const DiagnosticSink& sink) const;
    void writePictures(const Maps& maps) const;
    void writeFiles(const ConfiguredMap& configured, const DiagnosticSink& sink) const;
    [[nodiscard]] Outcome answer(const Console& console, const ConfiguredMap& configured,
                                 const DiagnosticList& findings) const;
    [[nodiscard]] Outcome show(const Console& console, const ConfiguredMap& configured,
                               DiagnosticList& findings) const;
    [[nodiscard]] Outcome tell(const Console& console,
                               const std::vector<MapDifference>& differences) const;
    [[nodiscard]] Outcome runOnConfigs(const Console& console) const;
};

} // namespace tq
