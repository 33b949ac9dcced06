// The config of a hard block subsystem as a person writes it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "blockmodel/HABM.h"
#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"
#include "workbench/files/JsonFile.h"

namespace tq {

/// A JSON file of this form (schemas/addressing_config.schema.json); every key but those of an
/// assign's two ends is optional:
///
///     {
///       "name": "linux_boot",
///       "parameters": { "NAME": "text" },
///       "instances": {
///         "uart0": { "parameters": { "NAME": "text" }, "registers": { "CTRL": "0x1" } }
///       },
///       "assigns": [
///         { "name": "low", "block": "/ddr0/map/block", "segment": "/cpu0/space/segment",
///           "offset": "0x0", "range": "2G", "type": "internal" }
///       ]
///     }
///
/// A register is named by its path below the instance, or by its bare name. Addresses are texts
/// that HABMAddrValue reads, or whole numbers. An assign starts at the segment's offset, spans the
/// block and is "normal" unless said otherwise.
///
/// What the definition doesn't have, an instance, a register or an end of an assign, raises
/// `InputError` with its place in the file, as does everything malformed. A sink is warned of
/// parameters that the definition doesn't have, of values wider than their register and of assigns
/// beyond their segment; all of them count as they are.
///
/// For a check, what the definition doesn't have is reported and left out, with the nearest names:
/// errors "unknown-instance:NAME", "unknown-register:NAME", "unknown-parameter:NAME" and
/// "assign-nowhere:NAME". The extents of assigns aren't looked at then, as `checkMap` does so, and
/// the ids end in what they are about.
class TQ_WORKBENCH_EXPORT AddressingConfig {
public:
    /// The config that changes nothing.
    AddressingConfig();
    enum class Purpose { Use, Check };
    static AddressingConfig read(JsonFile file, const HABMBlock& definition,
                                 const DiagnosticSink& sink = {}, Purpose purpose = Purpose::Use);

    /// The block that HBSAddressing::createSubsystemInstance takes.
    [[nodiscard]] const HABMBlock& block() const { return *m_block; }

    /// Creates the assigns on a subsystem that has none of their names. One with an end that
    /// doesn't exist, or that the config has switched off, has no target.
    void addAssignsTo(HABMBlock& subsystem) const;

    /// Where the file has the offset of an assign, or the assign; empty if it isn't of the file.
    [[nodiscard]] Place placeOfAssign(const std::string& name) const;
    /// Where the file sets a register, which is named by its path from the top block; empty if it
    /// doesn't.
    [[nodiscard]] Place placeOfRegister(const std::string& path) const;

private:
    struct Assign {
        std::string name;
        std::string blockPath;
        std::string segmentPath;
        HABMAddrValue offset;
        HABMAddrValue range;
        HABMAddrAssign::AssignType type = HABMAddrAssign::Normal;
    };

    class Reader;

    explicit AddressingConfig(const std::string& name);
    static void addAssign(HABMBlock& subsystem, const Assign& assign);

    using Offsets = std::unordered_map<std::string, std::size_t>;
    [[nodiscard]] Place placeIn(const Offsets& offsets, const std::string& name) const;

    std::unique_ptr<HABMBlock> m_block;
    std::vector<Assign> m_assigns;
    std::optional<JsonFile> m_file;
    Offsets m_assignOffsets;   ///< by name
    Offsets m_registerOffsets; ///< by path
};

} // namespace tq
