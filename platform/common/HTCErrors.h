// Exceptions that a script command reports to its user.
#pragma once

#include "HEXError.h"

namespace HTCErrors {

/// A failed command. Constructed from the full message text; can be caught as `HEXError`,
/// `HEXAll` or `std::exception`.
class TQ_EXPORT command_failed : public HEXError {
public:
    /// `text` is for a person.
    explicit command_failed(std::string text);
    ~command_failed() override;
};

} // namespace HTCErrors
