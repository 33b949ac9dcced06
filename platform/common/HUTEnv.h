// The process's surroundings: data directories, working directory, clock, product version.
#pragma once

#include <string>

#include "tq_export.h"

/// Asks anew at each call. Data directories come from the environment variable TQ_DATA_PATH,
/// separated by ":"; empty ones are skipped.
class TQ_EXPORT HUTEnv {
public:
    /// The first data directory below which `relative` exists, or the empty text.
    static std::string getOBLDataDir(const std::string& relative);

    /// The absolute working directory; "." where it is gone.
    static std::string getPWD();

    /// The local time as "2026-11-22 18:05:09", in every locale.
    static void getTimeStamp(std::string& stamp);

    /// The version of the tool, such as "1.0.0".
    static std::string getProductVersion();
};
