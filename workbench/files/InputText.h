// A whole input file as text.
#pragma once

#include <string>

#include "input/InputFile.h"
#include "workbench/files/InputError.h"

namespace tq {

/// The content of a file, stored plain or protected. Raises `InputError` with the reason where it
/// can't be read whole.
[[nodiscard]] inline std::string readInput(const std::string& path) {
    base::FileContent content = input::readFile(path);
    if (!content.isWhole())
        throw fileError(path, "can't be read: " + content.reason);
    return std::move(content.text);
}

} // namespace tq
