// Compiles the definition of a hard block: eight text tables become a block of the block model.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "tq_export.h"

class HABMBlock;
class HUTFile;

/// A row, or a part of one, that went into nothing.
struct TQ_EXPORT HBSDroppedRow {
    std::size_t line = 0; ///< counted from 1
    std::string reason;
    bool isWhole = true; ///< false for a part of a row
};

/// What became of one table.
struct TQ_EXPORT HBSTableReport {
    std::string table; ///< path below the hard block's directory: "data/ports.txt"
    bool isThere = false;
    bool isRead = false;  ///< false also if it is there and can't be opened, or is no file
    std::size_t rows = 0; ///< lines that hold a row, whether it was used or not
    std::vector<HBSDroppedRow> dropped;
};

/// The tables live in DIRECTORY/NAME/data: addrblocks.txt, registers.txt, addrsegments.txt,
/// ports.txt, interfaces.txt, parameters.txt, instances.txt and connections.txt. Each is optional.
/// A line is one row of KEY=VALUE pairs with ";" between them, in any order; "#" begins a comment
/// line:
///
///     register=CTRL; addrblock=regs; offset=0x0; reset=0x3; access=read_write
///
/// Address texts are those of HABMAddrValue. Blanks around keys and values don't count, a value
/// can't hold a ";", and an empty value isn't the same as a key left out, which takes its default.
///
/// What can't be used is dropped without a word, be it a row that lacks its name, a name that is
/// taken or a connection of an unknown type, or a part of a row: a pair without "=", an address
/// that can't be read, a number without digits (which counts as 0), a port map item without a
/// blank. The report tells of it, once for the same thing in a line. Only an unknown key in
/// ports.txt, interfaces.txt or parameters.txt sends a message, "@91-48@%s%s" (the key, the known
/// keys). Nothing here throws for bad data.
class TQ_EXPORT HBSAddrParseUtil {
public:
    HBSAddrParseUtil() = delete;

    /// Reads the tables of the hard block `name` below `directory` and builds its block, whose
    /// VLNV is "kestrom:hardblock:NAME:1.0". With `write` the block is also written to
    /// NAME/NAME.bmj below the directory; whether that succeeds doesn't show here. Empty, with
    /// nothing read, if `directory` isn't a directory or `name` is empty.
    [[nodiscard]] static std::unique_ptr<HABMBlock>
    buildHardblockDefinition(const HUTFile& directory, const std::string& name, const bool& write);

    /// The same, and tells in `report` what became of each table, in the order of their reading.
    [[nodiscard]] static std::unique_ptr<HABMBlock>
    buildHardblockDefinition(const HUTFile& directory, const std::string& name, const bool& write,
                             std::vector<HBSTableReport>& report);
};
