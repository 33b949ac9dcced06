// Writes the hardware handoff: the XML document from which software tools learn what a hard block
// subsystem holds.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tq_export.h"

/// One call makes one handoff file out of a connectivity metadata file and the caller's maps:
///
///     std::map<std::string, std::string> design{{"PS_CLK_FREQMHZ", "400"}};
///     std::map<std::string, std::string> system{{"family", "mirrel"}, {"ps_core_name", "sorrel"}};
///     HBSGenerateService::generateHWH(design, system, "connectivity.json", "sorrel.hwh");
///
/// `designParams` holds the design's parameters by name. A value is plain, or a composite
/// "{key value key value …}" of which each pair is the parameter NAME_key. A parameter of
/// the metadata whose value names one of them gets its value; names with "_FREQMHZ" are scaled from
/// MHz to Hz, in 32 bits, those inside a composite only with "CTRL_ACT_FREQMHZ". The map isn't
/// changed.
///
/// `systemInfo` holds the system's facts: "family", "device", "package", "speedgrade",
/// "ps_core_name" and, where the metadata is split by cells, "cell_name". Keys that are looked up
/// and missing read as empty and stay in the map as empty entries.
///
/// `outputFile` is used as given; if it is empty the file is "ksb.hwh" in the working
/// directory. It is written whole or not at all.
///
/// The tool parameter "project.allowPSSubCoreSplit" lets the metadata be split by cells (see
/// `HBSJsonReader`), "project.NoTimeStamp" leaves out the time stamp.
///
/// Metadata that lacks whole sections is no error, the document then holds what could be written.
/// Raises `HEXError` for a connectivity file that can't be read or parsed, and for an output file
/// that can't be written; both maps are then as they were.
///
/// Runs on the caller's thread and keeps nothing between calls. Time grows with the text read and
/// written, as the candidates for a name's composite are found by the name's own prefixes.
class TQ_EXPORT HBSGenerateService {
public:
    static void generateHWH(std::map<std::string, std::string>& designParams,
                            std::map<std::string, std::string>& systemInfo,
                            const std::string& connectivityFile, const std::string& outputFile);

    /// The same; `extraPairs` is ignored.
    static void generateHWH(std::map<std::string, std::string>& designParams,
                            std::vector<std::pair<std::string, std::string>>& extraPairs,
                            std::map<std::string, std::string>& systemInfo,
                            const std::string& connectivityFile, const std::string& outputFile);
};
