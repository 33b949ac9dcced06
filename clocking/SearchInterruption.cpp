#include "clocking/SearchInterruption.h"

namespace hbs_clocking {

constinit std::atomic<bool> SearchInterruption::s_isRequested = false;

SearchInterrupted::~SearchInterrupted() = default;

const char* SearchInterrupted::what() const noexcept {
    return "the search was interrupted";
}

} // namespace hbs_clocking
