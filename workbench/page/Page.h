// Self-contained pages for browsers.
#pragma once

#include <string>
#include <string_view>

#include "tq_workbench_export.h"

namespace tq {

/// The parts of a page. `style` and `script` are the library's own text; `data` is a JSON text
/// that the script finds as `DATA`, and may hold any names.
struct TQ_WORKBENCH_EXPORT PageParts {
    std::string title;
    std::string_view style;
    std::string_view body; ///< markup
    std::string_view data;
    std::string_view script;
};

/// The page as HTML. Its content policy forbids it to load anything.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string makePage(const PageParts& parts);

} // namespace tq
