// Reads register description files: IP-XACT components whose elements carry the prefix "spirit:".
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "regfile/HBSRegistersMap.h"
#include "tq_export.h"

namespace hbs {

namespace regfile {
class ElementCursor;
class RegFileDocument;
} // namespace regfile

/// A place where the reader left out the rest of a level.
struct HBSRegFileStop {
    std::size_t line = 0;   ///< of the element, from 1
    std::size_t column = 0; ///< from 1, in UTF-16 code units
    std::string element;    ///< the one that its level doesn't know: "spirit:alias"
    std::string level;      ///< what it lies in: "<spirit:register>", or "the document"
    std::string expected;   ///< the elements that the level knows, a comma list
};

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
/// - Elements carry the prefix "spirit:", for any namespace.
/// - Only the listed elements occur on the way to a register or among a register's
///   own elements. The first other element ends its level: it and what follows it there is left
///   out, and the walk goes on one level up. A spirit:displayName ends its register; one
///   before the registers loses the whole block.
/// - In a spirit:memoryMap the name comes before the address blocks, in a spirit:addressBlock the
///   base address before the registers, in a spirit:register the name before all else. A later
///   one counts only for what follows it; what comes in a register before its name is ignored. A
///   second name in a register starts another register.
/// - Register names are unique in the file: the first of a name wins.
/// - Addresses are hexadecimal, with or without "0x"; digits before an "x" don't count. Of
///   a sum ("0x100 + 4") only the first term counts. Anything else counts as the all-ones value;
///   of more than 16 digits the last 16 count. The sum of base and offset keeps its low 32 bits.
/// - spirit:access is "read-write", "read-only" or "write-only".
///
/// Texts are taken in the local code page, with white space trimmed and folded to one blank.
///
/// Files may come from outside: external entities and DTDs are never fetched (a reference to an
/// external entity makes the file unreadable, and so do attribute lists and parameter entities),
/// what isn't a regular file is never opened, and a file may hold, when unpacked, as much as the
/// parameter "general.maxInputMiB" allows. Unreadable is also a file with more than 262,144 levels,
/// 8,388,608 elements, 1,024 attributes of one element, 2,048 different names, 4,096 declarations
/// or 131,072 bytes in its document type, 65,536 characters in one entity, 1,000 expansions of
/// entities or 4,194,304 characters out of them.
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

    /// Likewise, and adds to `stops` every place where an element ended its level, in file order.
    /// A sink gets each of them as a warning, and as an error why the file can't be parsed, which
    /// isn't written to the standard error stream then, or where a spirit:dim can't be read.
    [[nodiscard]] TQ_EXPORT static std::unique_ptr<HBSRegistersMap>
    parseFile(const std::string& path, std::vector<HBSRegFileStop>& stops,
              const tq::DiagnosticSink& sink = {});

private:
    using Cursor = regfile::ElementCursor;

    /// What a register takes from around it.
    struct Block {
        std::string mapName;
        std::string baseAddress;
    };

    using Names = std::span<const std::string_view>;
    using Stops = std::vector<HBSRegFileStop>;

    HBSRegFileParser(HBSRegistersMap* registers, const regfile::RegFileDocument& document,
                     Stops* stops, const tq::DiagnosticSink& sink)
        : m_registers(registers), m_document(document), m_stops(stops), m_sink(sink) {}

    static std::unique_ptr<HBSRegistersMap> read(const std::string& path, Stops* stops,
                                                 const tq::DiagnosticSink& sink);
    /// Steps the cursor; where an element outside `names` ends the level, the stop is kept.
    int nextField(Cursor& cursor, Names names);
    void addStop(const Cursor& cursor, Names names);

    // One walk for each level; each starts at the element's first child.
    void readDocument(Cursor cursor);
    void readComponent(Cursor cursor);
    void readMemoryMaps(Cursor cursor);
    void readMemoryMap(Cursor cursor);
    void readAddressBlock(Cursor cursor, const std::string& mapName);
    void readRegister(Cursor cursor, const Block& block);

    void keepRegisters();
    HBSRegister* addRegister(std::string name, const std::string& mapName);
    void readProperty(HBSRegister& target, int position, const Cursor& cursor,
                      const std::string& baseAddress) const;
    [[nodiscard]] int readDim(const Cursor& cursor) const;

    HBSRegistersMap* m_registers;
    const regfile::RegFileDocument& m_document;
    Stops* m_stops; ///< may be null
    const tq::DiagnosticSink& m_sink;
    std::vector<std::unique_ptr<HBSRegister>> m_made; ///< until the whole file is read
};

} // namespace hbs
