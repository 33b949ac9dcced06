#include "HEXError.h"

#include <utility>

#include "HTCErrors.h"

HEXAll::HEXAll(std::string text) : m_text(std::move(text)) {}
HEXAll::~HEXAll() = default;

const char* HEXAll::what() const noexcept {
    return m_text.c_str();
}

HEXError::HEXError(std::string text) : HEXAll(std::move(text)) {}
HEXError::~HEXError() = default;

namespace HTCErrors {

command_failed::command_failed(std::string text) : HEXError(std::move(text)) {}
command_failed::~command_failed() = default;

} // namespace HTCErrors
