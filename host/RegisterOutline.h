// The host's own look at a register description file: what stands where.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// The names to ask the library for, and the places where its reader turned back.
struct RegisterOutline {
    /// An element that its level's list doesn't name.
    struct Stop {
        std::string element;
        std::string level;    ///< "<spirit:register>", or "the document"
        std::size_t line = 0; ///< from 1; 0 where the file's encoding hides it
    };

    std::vector<std::string> names; ///< of registers, each once, in file order
    std::vector<Stop> stops;        ///< in file order

    /// Reads a file, protected or plain, that the library has read before.
    static RegisterOutline read(const std::string& path);
};

} // namespace host
