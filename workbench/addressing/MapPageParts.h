// The fixed parts of the page of address maps.
#pragma once

#include <string_view>

namespace tq::map_page {

extern const std::string_view kStyle;
extern const std::string_view kBody;
extern const std::string_view kScript;

} // namespace tq::map_page
