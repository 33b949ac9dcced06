// Names from files as text of an XML document.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tq_workbench_export.h"

namespace tq {

/// The text with what XML can't hold made visible: control characters and bytes that aren't
/// UTF-8 as "\xNN", U+FFFE and U+FFFF as one U+FFFD per byte. Escaping is left to the writer.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string xmlText(std::string_view text);

/// The text, or its first characters and "…" where it has more than `most`. Takes UTF-8.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string shortened(const std::string& text, std::size_t most);

} // namespace tq
