// Texts of the XML parser as UTF-8.
#pragma once

#include <xercesc/util/XercesDefs.hpp>

#include <string>
#include <string_view>

namespace tq::ipxact {

using WideView = std::basic_string_view<XMLCh>;

/// Appends as UTF-8. The text is UTF-16 as the parser checked it.
void appendText(std::string& out, WideView text);
/// Empty for null.
[[nodiscard]] std::string toUtf8(const XMLCh* text);

} // namespace tq::ipxact
