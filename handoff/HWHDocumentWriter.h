// Writes the handoff document of a model.
#pragma once

#include <optional>
#include <string>

#include "handoff/HWHModel.h"
#include "handoff/HWHTables.h"

namespace hwh {

/// The facts in the document's header.
struct DocumentFacts {
    std::string productVersion;
    std::optional<std::string> timeStamp; ///< none where the tool's parameters leave it out
    std::string arch;
    std::string device;
    std::string name; ///< of the top
    std::string package;
    std::string speedGrade;

    /// From the system's facts and the tool. Missing keys stay in `systemInfo` as empty entries.
    /// Raises `HEXError` if "project.NoTimeStamp" isn't a boolean.
    [[nodiscard]] static DocumentFacts collect(HWHTextMap& systemInfo);
};

/// Writes element by element, so that the memory doesn't grow with the document. Raises `HEXError`
/// where the file can't be written; what was there before then stays. An empty `path` is "ksb.hwh"
/// in the working directory.
void writeDocument(const Model& model, const DocumentFacts& facts, const std::string& path);

} // namespace hwh
