// How paths are taken apart and looked up.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

class HABMAddrBlock;
class HABMAddrSegment;
class HABMBlock;
class HABMInterface;
class HABMPort;

namespace habm {

/// See HABMPath.
[[nodiscard]] bool isName(std::string_view name);

/// A path whose last names are split off. If it has too few, every name is empty, which no object
/// is called.
struct SplitPath {
    std::string_view block;
    std::array<std::string_view, 3> names;
};

/// Splits `count` names, at most 3, off the end of "/block/…/name".
[[nodiscard]] SplitPath splitOff(std::string_view path, std::size_t count);

/// The object at a path from the top block, or null. The empty path leads to the top block.
[[nodiscard]] const HABMBlock* blockAt(const HABMBlock* top, std::string_view path);
[[nodiscard]] HABMInterface* interfaceAt(const HABMBlock* top, std::string_view path);
[[nodiscard]] HABMPort* portAt(const HABMBlock* top, std::string_view path);
[[nodiscard]] HABMAddrBlock* addrBlockAt(const HABMBlock* top, std::string_view path);
[[nodiscard]] HABMAddrSegment* addrSegmentAt(const HABMBlock* top, std::string_view path);

/// A path as a connection of `owner` keeps it, as seen from the top block: one that begins with "/"
/// is that already, any other starts at the owner.
[[nodiscard]] std::string fromTop(const HABMBlock& owner, const std::string& path);

/// Updates a path after the block at `before` has moved to `after`. A path that leads elsewhere
/// stays, as does one that doesn't begin with "/", which moves with its owner. Allocates only if
/// the path grows.
void move(std::string& path, std::string_view before, std::string_view after);

} // namespace habm
