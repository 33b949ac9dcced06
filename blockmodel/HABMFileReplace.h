// Replaces a file in one step.
#pragma once

#include <string>
#include <string_view>

namespace habm {

/// Writes the content to a new file beside `path`, brings it to the disk and renames it into place,
/// so that at any moment, and after any failure, either the old or the new file stands there whole.
/// A link is followed. False if it can't be done, if something other than a regular file stands
/// there, or if a file does and `replaces` is false.
[[nodiscard]] bool writeWholeFile(const std::string& path, std::string_view content, bool replaces);

} // namespace habm
