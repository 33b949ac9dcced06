// A parameter of a block, as its name and value.
#pragma once

#include <string>
#include <utility>

#include "tq_export.h"

/// Owned by its block; see HABMParameter.
class TQ_EXPORT HABMGeneric {
public:
    HABMGeneric(const HABMGeneric&) = delete;
    HABMGeneric& operator=(const HABMGeneric&) = delete;

    /// Unique within the block, never empty.
    [[nodiscard]] const std::string& getName() const { return m_name; }
    [[nodiscard]] const std::string& getValue() const { return m_value; }

protected:
    /// For the derived classes, as is `assign`.
    HABMGeneric(std::string name, std::string value)
        : m_name(std::move(name)), m_value(std::move(value)) {}
    ~HABMGeneric() = default;

    void assign(std::string value) { m_value = std::move(value); }

private:
    const std::string m_name;
    std::string m_value;
};
