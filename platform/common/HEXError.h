// The root of the tool's exceptions.
#pragma once

#include <exception>
#include <string>

#include "tq_export.h"

/// Every exception of the tool. `what()` is the full text for the user, without a line end;
/// a NUL byte in the text ends what a reader of `what()` sees.
class TQ_EXPORT HEXAll : public std::exception {
public:
    /// `text` is for a person.
    explicit HEXAll(std::string text);
    ~HEXAll() override;

    /// The text as given.
    [[nodiscard]] const char* what() const noexcept override;

private:
    std::string m_text;
};

/// A failure that ends an operation.
class TQ_EXPORT HEXError : public HEXAll {
public:
    /// `text` is for a person.
    explicit HEXError(std::string text);
    ~HEXError() override;
};
