// How paths are taken apart and looked up.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

class HABMBlock;
class HABMInterface;
class HABMPort;

namespace habm {

/// True for what an object that has a path may be called: not empty, no "/".
[[nodiscard]] bool isName(std::string_view name);

/// A path whose last names are split off. If it has too few, every name is empty, which is the name
/// of nothing.
struct SplitPath {
    std::string_view block;
    std::array<std::string_view, 3> names;
};

/// Splits `count` names, at most 3, off the end of "/block/…/name".
[[nodiscard]] SplitPath splitOff(std::string_view path, std::size_t count);

/// What stands at a path below the top block, or null. The empty path leads to the top block.
[[nodiscard]] const HABMBlock* blockAt(const HABMBlock* top, std::string_view path);
[[nodiscard]] HABMInterface* interfaceAt(const HABMBlock* top, std::string_view path);
[[nodiscard]] HABMPort* portAt(const HABMBlock* top, std::string_view path);

/// A path as a connection of `owner` keeps it, as seen from the top block: one that begins with "/"
/// is that already, any other starts at the owner.
[[nodiscard]] std::string fromTop(const HABMBlock& owner, const std::string& path);

/// Lets the path lead to the same object after the block at `before` has become the one at `after`.
/// A path that doesn't begin with "/" moves with its owner, and one that leads elsewhere stays. It
/// needs memory only if the path grows.
void move(std::string& path, std::string_view before, std::string_view after);

} // namespace habm
