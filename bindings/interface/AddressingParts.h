// What the files about addressing share.
#pragma once

#include "bindings/core/Convert.h"
#include "blockmodel/HABM.h"
#include "workbench/addressing/ConfiguredMap.h"
#include "workbench/addressing/MapComparison.h"

namespace tq::bindings {

void describeAddressMaps(Interface& interface);

/// A definition: the process shares it, and it never changes.
struct Definition {
    const HABMBlock* block;
};
template <>
struct Convert<Definition> {
    static const Type& type() { return Convert<HABMBlock>::type(); }
    static Value to(const Definition& definition, Call&) {
        ObjectRef object = Registry::get().wrap(infoOf<HABMBlock>(),
                                                const_cast<HABMBlock*>(definition.block), nullptr);
        object->part->isConst = true;
        return {std::move(object)};
    }
};

template <>
struct RecordOf<MapDifference> {
    using D = MapDifference;
    static constexpr const char* name = "MapDifference";
    static constexpr auto fields =
        std::tuple{field("kind", &D::kind), field("path", &D::path), field("before", &D::before),
                   field("after", &D::after), field("reason", &D::reason)};
};

} // namespace tq::bindings
