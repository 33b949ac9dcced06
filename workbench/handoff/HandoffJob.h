// Job files of a hardware handoff: what to write and for which design.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "diagnostics/Diagnostic.h"
#include "handoff/HBSHandoff.h"
#include "tq_workbench_export.h"
#include "workbench/handoff/HandoffReport.h"

namespace tq {

/// What a job file says. In JSON; all keys but "connectivity" are optional:
///
///     {
///       "connectivity": "connectivity.json", // relative to the job's folder
///       "system": { "NAME": "text" },        // facts of the tool and the device
///       "design": { "NAME": "text" },        // the design's parameters
///       "split_by_cells": false              // whether the metadata is split by cells
///     }
struct HandoffJob {
    std::string connectivity; ///< path of the connectivity metadata
    std::map<std::string, std::string> system;
    std::map<std::string, std::string> design;
    bool split = false;
};

/// Raises `InputError` with the place of what can't be used. A sink receives what is accepted but
/// is probably a mistake: names given twice, facts of the system that are misspelt, composites of
/// the design with a word too many.
[[nodiscard]] TQ_WORKBENCH_EXPORT HandoffJob readHandoffJob(const std::string& path,
                                                            const DiagnosticSink& sink = {});

/// Reads the job's connectivity metadata and decides the document; the sink gets the findings of
/// `HBSHandoff`. Sets the parameter "project.allowPSSubCoreSplit" of the process. Raises
/// `InputError` for metadata that can't be read, with the place where it isn't JSON.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::unique_ptr<HBSHandoff>
decideHandoff(const HandoffJob& job, const DiagnosticSink& sink = {});

/// Writes the document to `output` and reports on it. With `timeStamp` false equal jobs give equal
/// documents. Sets the parameters "project.allowPSSubCoreSplit" and "project.NoTimeStamp" of the
/// process. Raises `InputError` for metadata that can't be read and a document that can't be
/// written.
[[nodiscard]] TQ_WORKBENCH_EXPORT HandoffReport runHandoff(const HandoffJob& job,
                                                           const std::string& output,
                                                           bool timeStamp);

} // namespace tq
