// Replaces a file in one step.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace habm {

/// Takes the next piece of a content. False if it can't; what comes after it is of no use then.
using Sink = std::function<bool(std::string_view)>;

/// Writes the content, which `produce` gives piece by piece, to a new file beside `path`, brings it
/// to the disk and renames it into place, so that at any moment, and after any failure, either the
/// old or the new file stands there whole. A link is followed, also to where nothing stands yet.
/// False if it can't be done, if `produce` gives false, if something other than a regular file
/// stands there, or if a file does and `replaces` is false.
[[nodiscard]] bool writeWholeFile(const std::string& path, bool replaces,
                                  const std::function<bool(const Sink&)>& produce);

} // namespace habm
