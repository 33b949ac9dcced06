// A free attribute of a block: a name and a value.
#pragma once

#include <string>
#include <utility>

#include "tq_export.h"

/// Made by `HABMBlock::setAttribute`, owned by its block.
class TQ_EXPORT HABMAttribute {
public:
    /// Made by `HABMBlock::setAttribute`.
    HABMAttribute(std::string name, std::string value)
        : m_name(std::move(name)), m_value(std::move(value)) {}
    HABMAttribute(const HABMAttribute&) = delete;
    HABMAttribute& operator=(const HABMAttribute&) = delete;

    /// Unique within the block, never empty.
    [[nodiscard]] const std::string& getName() const { return m_name; }
    [[nodiscard]] const std::string& getValue() const { return m_value; }
    void setValue(std::string value) { m_value = std::move(value); }

private:
    const std::string m_name;
    std::string m_value;
};
