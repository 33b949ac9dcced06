// What the files about the block model share.
#pragma once

#include <string>

#include "bindings/core/ScriptError.h"
#include "blockmodel/HABM.h"

namespace tq::bindings {

class Interface;

void describeBlockPorts(Interface& interface);
void describeBlockMaps(Interface& interface);

// --- words for messages ---

[[nodiscard]] inline std::string pathIn(const HABMBlock* block, const std::string& name) {
    return block->getInstancePath() + "/" + name;
}
template <class T>
[[nodiscard]] std::string pathOf(const T& object) {
    return object.getPath();
}
template <class T>
[[nodiscard]] std::string nameBelow(const T& object) {
    return pathIn(object.getParent(), object.getName());
}

/// What the model made of a name that a script gave.
template <class T>
T& expectMade(T* made, const std::string& name) {
    if (made == nullptr)
        throw ScriptError(Failure::Kind::Command,
                          "the block model refuses the name \"" + name +
                              "\": it is taken, empty or holds a \"/\", or the tree is too deep");
    return *made;
}

} // namespace tq::bindings
