// The elements of a register description file: for each level those that the reader knows.
#pragma once

#include <array>
#include <string_view>

/// An element that its level's list doesn't name ends that level: it and everything after it among
/// its siblings are left out, without a word. So these lists are part of the format.
namespace hbs::regfile {

/// The document's own element.
inline constexpr std::array<std::string_view, 1> kDocument{"spirit:component"};

/// In spirit:component. Only the last is looked into.
inline constexpr std::array<std::string_view, 6> kComponent{
    "spirit:vendor",  "spirit:library",     "spirit:name",
    "spirit:version", "spirit:description", "spirit:memoryMaps"};

/// In spirit:memoryMaps.
inline constexpr std::array<std::string_view, 1> kMemoryMaps{"spirit:memoryMap"};

/// In spirit:memoryMap.
inline constexpr std::array<std::string_view, 2> kMemoryMap{"spirit:name", "spirit:addressBlock"};

/// In spirit:addressBlock.
inline constexpr std::array<std::string_view, 5> kAddressBlock{
    "spirit:name", "spirit:baseAddress", "spirit:register", "spirit:range", "spirit:width"};

/// In spirit:register. Nothing inside these is looked at but their text.
inline constexpr std::array<std::string_view, 8> kRegister{
    "spirit:name",  "spirit:description", "spirit:addressOffset", "spirit:access",
    "spirit:field", "spirit:size",        "spirit:reset",         "spirit:dim"};

} // namespace hbs::regfile
