// Where the contents of an interface lie in a metadata text that has been parsed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "base/JsonTape.h"
#include "hardblock/HardBlockData.h"

namespace hardblock {

/// The members of an access point that an interface reads when it is first asked for what they
/// hold. Most interfaces of an installation never are, and a port map takes ten times the memory
/// of its text.
struct MetadataSource {
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    std::shared_ptr<const base::JsonTape> tape;
    std::uint32_t parameters = kNone; ///< an object on the tape
    std::uint32_t portMaps = kNone;   ///< likewise

    /// Adds the contents after those that the interface has. Values of unsuitable types are passed
    /// over without a message.
    static void add(Interface& interface, MetadataSource source) {
        interface.addSource(std::move(source));
    }
    /// Makes room for so many interfaces in all.
    static void reserveInterfaces(HardBlockData& hardBlock, std::size_t count) {
        hardBlock.m_interfaces.reserve(count);
    }
};

} // namespace hardblock
