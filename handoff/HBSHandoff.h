// The decisions of a hardware handoff: what the document will hold and why, and what looks wrong in
// the metadata.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "tq_export.h"

namespace hwh {
struct Decision;
}

/// Reads a connectivity file once and decides what `HBSGenerateService::generateHWH` writes.
///
///     tq::DiagnosticList findings;
///     const HBSHandoff handoff(design, system, "connectivity.json", findings.sink());
///     for (std::size_t i = 0; i < handoff.portCount(); ++i)
///         std::cout << handoff.port(i).signal << '\n';
///     handoff.writeDocument("sorrel.hwh");
///
/// Modules, ports and so on are numbered from 0 in the order of the document; a number must be
/// below the count. Texts are valid as long as the object. Immutable: several threads may use it at
/// once.
class TQ_EXPORT HBSHandoff {
public:
    using Texts = std::map<std::string, std::string>;

    /// A module of the document: all instances of one "SDKNAME".
    struct Module {
        std::string_view name;     ///< its "SDKNAME"
        std::string_view instance; ///< the instance that gives its facts
        bool isMaster = false;     ///< masters have a memory map
        std::size_t firstPort = 0;
        std::size_t portCount = 0;
    };
    /// One end of a connection.
    struct End {
        std::string_view module;
        std::string_view port;
    };
    /// Why a port carries its signal.
    enum class Reason : std::uint8_t {
        OwnPort,     ///< no end of the net had a signal, so the port names it after itself
        FarEnd,      ///< one of the ends that it lists had a signal
        ListedByFar, ///< an earlier port lists this one
    };
    /// A port of a module, with the name of its signal.
    struct Port {
        End end;
        std::string_view direction;
        std::string_view kind;
        std::string signal;
        std::size_t namedBy = 0; ///< number of the port after which the signal is named
        Reason reason = Reason::OwnPort;
    };
    /// A port of the subsystem's outside.
    struct ExternalPort {
        std::string_view name;
        std::string signal;
        std::size_t namedBy = 0;
        std::vector<std::size_t> ports; ///< of modules, that it is joined to
    };
    /// A memory range, with its texts as the metadata has them.
    struct Range {
        std::string_view slave; ///< "SDKNAME"
        std::string_view instance;
        std::string_view base;
        std::string_view high;
        /// The addresses of the two texts, none where they can't be read as such: "0x" and
        /// hexadecimal digits, or decimal digits, of up to 64 bits.
        std::optional<std::uint64_t> baseAddress;
        std::optional<std::uint64_t> highAddress;
        std::string_view memoryType;
        std::string_view isData;
        std::string_view isInstruction;
    };

    /// The arguments are those of `generateHWH`, as are the tool's parameters that count.
    ///
    /// A sink receives what was dropped or looks wrong, each with its place in the file: members
    /// of wrong types, misspelt, repeated or missing ("wrong-type", "unknown-key", "duplicate-port"
    /// …), names of nothing ("unknown-enable-parameter", "unknown-excluded-slave",
    /// "missing-far-port", "unresolved-parameter"), "two-names" of one net, frequencies and
    /// addresses that can't be read, ranges that are empty or overlap. A good file has no finding.
    /// Missing sections are errors, all else is a warning.
    ///
    /// Raises `HEXError` for a file that can't be read or parsed. With a sink its text says why the
    /// file can't be read, and the sink first gets the place where it isn't JSON.
    HBSHandoff(Texts designParams, Texts systemInfo, const std::string& connectivityFile,
               const tq::DiagnosticSink& sink = {});
    ~HBSHandoff();
    HBSHandoff(const HBSHandoff&) = delete;
    HBSHandoff& operator=(const HBSHandoff&) = delete;

    /// False where "metadata", its cell, "slaves" or "masters" is missing.
    [[nodiscard]] bool isComplete() const;
    /// The subsystem's name in the document.
    [[nodiscard]] const std::string& topName() const;
    /// The instance to which connections with the outside go. It differs from `topName` where the
    /// system's facts name no core.
    [[nodiscard]] std::string_view topInstance() const;

    /// The modules in document order, masters and slaves.
    [[nodiscard]] std::size_t moduleCount() const;
    [[nodiscard]] Module module(std::size_t number) const;
    /// Of all modules.
    [[nodiscard]] std::size_t portCount() const;
    [[nodiscard]] Port port(std::size_t number) const;
    /// The ends that a port lists, ordered by module.
    [[nodiscard]] std::vector<End> connections(std::size_t port) const;
    /// The ports of the subsystem's outside, ordered by name.
    [[nodiscard]] std::size_t externalPortCount() const;
    [[nodiscard]] ExternalPort externalPort(std::size_t number) const;
    /// What a master reaches, ordered by instance; empty for a slave. Takes time in proportion to
    /// the slaves and the master's excluded list.
    [[nodiscard]] std::vector<Range> ranges(std::size_t module) const;

    /// Writes the document, as `generateHWH` does; the parameter "project.NoTimeStamp" counts.
    void writeDocument(const std::string& outputFile) const;

private:
    Texts m_design;
    Texts m_system;
    std::string m_topName;
    std::unique_ptr<hwh::Decision> m_decision;
};
