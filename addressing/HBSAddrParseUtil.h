// Compiles the definition of a hard block: eight text tables become a block of the block model.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "tq_export.h"

class HABMBlock;
class HUTFile;

/// How much of one table was read and used.
struct TQ_EXPORT HBSTableReport {
    std::string table; ///< path below the hard block's directory: "data/ports.txt"
    bool isThere = false;
    bool isRead = false;  ///< to its end
    std::string fault;    ///< why one that is there wasn't: "it is a folder"
    std::size_t rows = 0; ///< lines that hold a row, whether it was used or not
    std::size_t used = 0; ///< rows that went into the block, if only in part
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
/// A table that is there and can't be read counts as far as it was read, without a word; a caller
/// that replaces a file by the result asks the report whether each `isRead` that `isThere`. What
/// can't be used is dropped without a word, whether a row that lacks its name, a name that is
/// taken or a connection of an unknown type, or a part of a row: a pair without "=", an address
/// that can't be read, a number without digits (which counts as 0), a port map item without a
/// blank. Texts that a key doesn't know (access=rw) count as its default. Only an unknown key in
/// ports.txt, interfaces.txt or parameters.txt sends a message, "@91-48@%s%s" (the key, the known
/// keys). Nothing here throws for bad data.
///
/// A sink receives all that, with the place in the table. Warnings: what is dropped or counts as
/// something else than written, names given twice, bounds of a port that isn't a vector, an
/// `interfaces` list that names no interface of its kind, address blocks without a size, registers
/// outside their address block, address blocks or registers that overlap. Remarks: registers whose
/// offset isn't a multiple of their size. Errors: tables that can't be read. The findings of the
/// reading come first, then those of the building, then those of the addresses. What the sink
/// throws leaves the builder.
class TQ_EXPORT HBSAddrParseUtil {
public:
    HBSAddrParseUtil() = delete;

    /// Reads the tables of the hard block `name` below `directory` and builds its block, whose
    /// VLNV is "kestrom:hardblock:NAME:1.0". With `write` the block is also written to
    /// NAME/NAME.bmj below the directory; whether that succeeds doesn't show here. Empty, with
    /// nothing read, if `directory` isn't a directory or `name` is empty.
    [[nodiscard]] static std::unique_ptr<HABMBlock>
    buildHardblockDefinition(const HUTFile& directory, const std::string& name, const bool& write);

    /// The same with findings; `report`, which may be null, gets an entry for each table, in the
    /// order of their reading.
    [[nodiscard]] static std::unique_ptr<HABMBlock>
    buildHardblockDefinition(const HUTFile& directory, const std::string& name, const bool& write,
                             const tq::DiagnosticSink& sink,
                             std::vector<HBSTableReport>* report = nullptr);
};
