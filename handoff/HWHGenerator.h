// One handoff: from the connectivity file to the written document.
#pragma once

#include <string>

#include "handoff/HWHTables.h"

/// Reads the file, builds the model of the document and writes it.
class HWHGenerator {
public:
    /// Both maps have to outlive the object.
    HWHGenerator(const HWHTextMap& designParams, HWHTextMap& systemInfo);

    /// Runs all steps; to be called once. After an exception `systemInfo` is as it was.
    void generate(const std::string& connectivityFile, const std::string& outputFile);

private:
    const HWHTextMap& m_designParams;
    HWHTextMap& m_systemInfo;
    HWHTextMap m_systemInfoCopy; ///< as it was at the start
};
