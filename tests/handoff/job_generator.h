// Random handoff jobs: small alphabets, so that names meet, repeat and miss each other often.
#pragma once

#include <map>
#include <string>

namespace handoff_support {

/// The arguments of one handoff, with the text of the connectivity file instead of its path.
struct GeneratedJob {
    std::string connectivity; ///< may be malformed
    std::map<std::string, std::string> design;
    std::map<std::string, std::string> system;
    bool splitByCells = false;
};

/// The same job for the same seed and compiler.
[[nodiscard]] GeneratedJob generateJob(unsigned seed);

} // namespace handoff_support
