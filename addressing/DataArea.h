// Where the subsystem finds its data and settings and leaves its debug files.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace hbs_addressing {

/// The folder of the hard blocks in the tool's data area, looked up now.
[[nodiscard]] std::string findHardblockDirectory();

/// The file DIRECTORY/NAME/NAME.EXTENSION of a hard block; `extension` holds its dot.
[[nodiscard]] std::string hardblockFile(const std::string& directory, const std::string& name,
                                        std::string_view extension);

/// The debug switch, read now: the tool parameter "vorn.writeAddressingJson", false if it can't be
/// read.
[[nodiscard]] bool isDebugOn();

/// The time that all scripts of one instance may take together, read now: the tool parameter
/// "vorn.addressingTclTimeLimitMs" in milliseconds, a minute if it can't be read. Absent if it
/// isn't positive.
[[nodiscard]] std::optional<std::chrono::milliseconds> findScriptTimeLimit();

/// A file in the working directory.
[[nodiscard]] std::string workingFile(const std::string& name);

} // namespace hbs_addressing
