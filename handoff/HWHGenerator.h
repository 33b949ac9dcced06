// One handoff: from the connectivity file to the written document.
#pragma once

#include <string>

#include "handoff/HWHConnectivity.h"
#include "handoff/HWHTables.h"

/// The road: read the file, build the model of the document, write it.
class HWHGenerator {
public:
    /// Both maps have to outlive the object.
    HWHGenerator(const HWHTextMap& designParams, HWHTextMap& systemInfo);

    /// Does the whole work, once. After an exception `systemInfo` is as it was.
    void generate(const std::string& connectivityFile, const std::string& outputFile);

private:
    [[nodiscard]] hwh::ConnectivityFile read(const std::string& connectivityFile);
    void write(const hwh::ConnectivityFile& file, const std::string& outputFile);

    const HWHTextMap& m_designParams;
    HWHTextMap& m_systemInfo;
    HWHTextMap m_systemInfoCopy; ///< as it was at the start
};
