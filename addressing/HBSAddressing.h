// HBSAddressing: from compiled hard block definitions to one design's configured subsystem, and the
// report of its addressing.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/RapidJson.h"
#include "blockmodel/HABMBlock.h"
#include "diagnostics/Diagnostic.h"
#include "tq_export.h"

class HUTFile;

/// How one enablement expression was decided.
struct TQ_EXPORT HBSDecision {
    std::string path;       ///< of the block or interface, as in the definition
    std::string expression; ///< as the definition has it
    std::string evaluated;  ///< with the values of registers and variables put in
    std::string result;     ///< text of the result; empty if the expression wasn't run, or failed
    bool isEnabled = true;
};

/// The entry to hard block subsystems. All operations are static; the order for one design is
///
///     const HABMBlock* definition =
///         HBSAddressing::createSubsystemDefinition("kestrom:hardblock:sorrel_ps:1.0", "design");
///     auto instance = HBSAddressing::createSubsystemInstance(*definition, config);
///     rapidjson::Document report;
///     HBSAddressing::generateSurfaceLevelAddressing(*instance, report);
///
/// - A definition is the static description of a subsystem: the ".bmj" file of a hard block NAME,
///   read from NAME/NAME".bmj" below the data area's "mirrel/hardblocks", with every sub-block stub
///   replaced by the definition that it names.
/// - A config is a block of the caller's: parameters on the block itself, and under its sub-block
///   "inst" one sub-block per configured instance, with that instance's parameters and register
///   values.
/// - An instance is a clone of a definition with the config applied and without what the config
///   disables. Interfaces and sub-blocks carry enablement expressions for this: texts in the syntax
///   of the Tcl command `expr`, decided in an interpreter that holds the register values.
///
/// With the tool parameter "vorn.writeAddressingJson" on, the definition, config, instance and
/// report are also written to the working directory, as MODULE"_hbs_definition.bmj",
/// MODULE"_hbs_config.bmj", MODULE"_hbs_instance.bmj" (both with the config's module name) and
/// MODULE"_addressing.json", and the user's "helper.tcl" there is run after all expressions were
/// decided. Its parameter is read at each use; no failure of these files is reported, but for a Tcl
/// error in helper.tcl.
///
/// No operation throws on bad data: what can't be used is left out. Expressions and scripts of hard
/// blocks are the data's own code and run with all that Tcl can do, but names and values never
/// become commands: a name that isn't one word of a script is reported as a Tcl error.
///
/// Scripts can't end the process or keep it: `exit` is a Tcl error, and so are files whose
/// substitutions are nested deeper than 1,000. All scripts of one instance share a time limit, the
/// tool parameter "vorn.addressingTclTimeLimitMs" (60,000 by default; 0 or less is no limit); later
/// scripts still get 0.1 s each. Working directory, environment, standard channels, SIGPIPE and
/// locale are afterwards as they were. Not stopped are: one long command in C, such as a
/// `string match` with a dozen stars; a command that waits in the system, such as `exec`; what a
/// script makes up itself and nests by the ten thousand, "[" in a text, groups in a regular
/// expression or lists in lists, on which Tcl overruns the stack; running out of memory, or of the
/// 2 GiB that Tcl has for a value, on which Tcl ends the process; signals sent and libraries
/// loaded; the end of the run where scripts left hundreds of thousands of `upvar` links, objects or
/// `after` scripts, which Tcl deletes in quadratic time.
///
/// Where memory runs out elsewhere, `std::bad_alloc` is raised, with no definition cached and the
/// document of the report unchanged. Not guarded: one thread at a time.
class TQ_EXPORT HBSAddressing {
public:
    HBSAddressing() = delete;

    /// The definition of the hard block `vlnv`, or null if either text is empty or the definition
    /// can't be read. It is cached under both texts for the life of the process, is never changed,
    /// and has no owner; a failed build leaves no entry, so that a later call tries again.
    /// `context` only selects a cache.
    ///
    /// A VLNV that isn't "vendor:library:name:version" sends "@91-45@%s". A stub stays a stub, with
    /// no message, if its definition can't be read or is being expanded around it: a ring of
    /// definitions ends there. A stub that can't be merged sends "@91-44@%s%s" with its VLNV and
    /// path: one whose content would be nested deeper than `HABMBlock::kMostLevels`, and, once per
    /// call, the first that follows 65,536 definitions.
    [[nodiscard]] static const HABMBlock* createSubsystemDefinition(const std::string& vlnv,
                                                                    const std::string& context);

    /// The same, but a file that is there and can't be used is reported to the sink, with the place
    /// in it, and so is a stub that can't be merged, as "beyond-bound"; neither sends a message. A
    /// definition that is cached already has no findings.
    [[nodiscard]] static const HABMBlock* createSubsystemDefinition(const std::string& vlnv,
                                                                    const std::string& context,
                                                                    const tq::DiagnosticSink& sink);

    /// A new instance, which the caller owns, with the config applied. Parameters and register
    /// values that the definition has no place for are dropped. Expressions are decided on the
    /// first two levels of sub-blocks; deeper blocks keep all they have. Then invalid connections
    /// go, and top-level interfaces that have none.
    ///
    /// An expression that can't be computed sends "Caught unexpected Tcl error: %s\n" in the scope
    /// "HBS.TCL" and counts as true. Without a Tcl interpreter the instance is a plain clone. Empty
    /// only if the definition can't be cloned.
    [[nodiscard]] static std::unique_ptr<HABMBlock>
    createSubsystemInstance(const HABMBlock& definition, const HABMBlock& config);

    /// The same, and adds how each expression that isn't empty was decided to `decisions`, in the
    /// order of deciding. Objects inside a block that is switched off have none.
    [[nodiscard]] static std::unique_ptr<HABMBlock>
    createSubsystemInstance(const HABMBlock& definition, const HABMBlock& config,
                            std::vector<HBSDecision>& decisions);

    /// A clone of `block`, which the caller owns. `file` isn't looked at.
    [[nodiscard]] static std::unique_ptr<HABMBlock>
    decorateSubsystemInstance(const HABMBlock& block, const HUTFile& file);

    /// Does nothing and returns false: the handoff document has a service of its own.
    static bool generateHardwareHandoff(const HABMBlock& block, const HUTFile& file);

    /// Reports the addressing of `block` as seen from its surface: its interfaces with the address
    /// spaces and memory maps that they reach, and the maps and spaces of all blocks below it.
    /// `document` is overwritten with an object, whose form schemas/addressing_report.schema.json
    /// describes. Members are in the order of insertion.
    static void generateSurfaceLevelAddressing(const HABMBlock& block,
                                               rapidjson::Document& document);
};
