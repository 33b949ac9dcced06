// Helpers of the block model that belong to no object.
#pragma once

#include <string>

#include "tq_export.h"

/// Texts of the block model.
class TQ_EXPORT HABMUtils {
public:
    HABMUtils() = delete;

    /// Splits "vendor:library:name:version" at its colons. False, with the outputs unchanged, if
    /// the text hasn't exactly four fields; a field may be empty.
    static bool splitVLNV(const std::string& vlnv, std::string& vendor, std::string& library,
                          std::string& name, std::string& version);
};
