// A parameter of a block, as it is set.
#pragma once

#include <string>
#include <utility>

#include "blockmodel/HABMGeneric.h"
#include "tq_export.h"

/// Made by `HABMBlock::setParameter`. A parameter and the generic that `HABMBlock::getGenerics`
/// shows are one object.
class TQ_EXPORT HABMParameter : public HABMGeneric {
public:
    /// Made by `HABMBlock::setParameter`.
    HABMParameter(std::string name, std::string value)
        : HABMGeneric(std::move(name), std::move(value)) {}

    /// Any text.
    void setValue(std::string value) { assign(std::move(value)); }
};
