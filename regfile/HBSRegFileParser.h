// Reads register description files: IP-XACT components whose elements carry the prefix "spirit:".
#pragma once

#include <memory>
#include <string>

#include "regfile/HBSRegistersMap.h"
#include "tq_export.h"

namespace hbs {

namespace regfile {
class ElementCursor;
} // namespace regfile

/// Turns a file into a table of its registers:
///
///     std::unique_ptr<hbs::HBSRegistersMap> map = hbs::HBSRegFileParser::parseFile(path);
///     if (map != nullptr)
///         if (const hbs::HBSRegister* control = map->getRegister("Ctrl"))
///             use(control->getOffset());
///
/// The reader walks the document in order and knows only the elements of `RegFileFormat.h`. To be
/// read whole, a file has to keep to this:
///
/// - Elements carry the prefix "spirit:", whatever namespace it stands for.
/// - Nothing but the listed elements stands anywhere on the way to a register or among a register's
///   own elements. The first other element ends its level: it and what follows it there is left
///   out, and the walk goes on one level up. A spirit:displayName ends its register; one in front
///   of the registers loses the whole block.
/// - In a spirit:memoryMap the name comes before the address blocks, in a spirit:addressBlock the
///   base address before the registers, in a spirit:register the name before all else. A later
///   one counts only for what follows it; what comes in a register before its name is ignored. A
///   second name in a register starts another register.
/// - Register names are unique in the file: the first of a name wins.
/// - Addresses are hexadecimal, with or without "0x"; digits in front of an "x" don't count. Of
///   a sum ("0x100 + 4") only the first term counts. Anything else counts as the all-ones value;
///   of more than 16 digits the last 16 count. The sum of base and offset keeps its low 32 bits.
/// - spirit:access is "read-write", "read-only" or "write-only".
///
/// Texts are taken in the local code page, with white space trimmed and folded to one blank.
///
/// Files may come from outside: external entities and DTDs are never fetched (a reference to an
/// external entity makes the file unreadable, and so do attribute lists, parameter entities and
/// entities of more than 65,536 characters), expansion of entities is bounded, what isn't a regular
/// file is never opened, and a protected file may unpack to at most 1 GiB.
///
/// Not guarded: the first call in a process must not run beside another.
class HBSRegFileParser {
public:
    /// The table, empty where the file holds nothing known. Null for an empty path, and null with
    /// one line "Error parsing file: …" on the standard error stream for a file that is missing,
    /// can't be read or isn't well-formed XML.
    ///
    /// Raises `std::invalid_argument` ("invalid stoi argument") for a spirit:dim that doesn't begin
    /// with a decimal number, `std::out_of_range` ("stoi argument out of range") for one that
    /// doesn't fit an `int`.
    [[nodiscard]] TQ_EXPORT static std::unique_ptr<HBSRegistersMap>
    parseFile(const std::string& path);

private:
    using Cursor = regfile::ElementCursor;

    /// What a register takes from around it.
    struct Block {
        std::string mapName;
        std::string baseAddress;
    };

    explicit HBSRegFileParser(HBSRegistersMap* registers) : m_registers(registers) {}

    // One walk for each level; each starts at the element's first child.
    void readDocument(Cursor cursor);
    void readComponent(Cursor cursor);
    void readMemoryMaps(Cursor cursor);
    void readMemoryMap(Cursor cursor);
    void readAddressBlock(Cursor cursor, const std::string& mapName);
    void readRegister(Cursor cursor, const Block& block);

    HBSRegister* addRegister(std::string name, const std::string& mapName);
    static void readProperty(HBSRegister& target, int position, const Cursor& cursor,
                             const std::string& baseAddress);

    HBSRegistersMap* m_registers;
};

} // namespace hbs
