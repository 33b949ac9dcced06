// The eight tables of a hard block as rows of text, as they stand in the files.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "addressing/HBSAddrParseUtil.h"
#include "blockmodel/HABMAddrAperture.h"
#include "blockmodel/HABMAddrValue.h"

/// Where a row stands in its file.
struct HBSTableRow {
    std::size_t line = 0;
};

struct HBSAddrBlockRow : HBSTableRow {
    std::string addrblock;
    std::string memorymap; ///< empty for the block's module name
    std::set<std::string> interfaces;
    std::string type;
    HABMAddrAperture aperture{""};
    std::string group;
};

struct HBSRegisterRow : HBSTableRow {
    std::string registerName;
    std::string addrblock;
    HABMAddrValue offset;
    std::string width;
    HABMAddrValue reset;
    std::string access;
};

struct HBSAddrSegmentRow : HBSTableRow {
    std::string addrsegment;
    std::string addrspace; ///< empty for the block's module name
    std::set<std::string> interfaces;
    std::string type;
    HABMAddrAperture aperture{""};
};

struct HBSPortRow : HBSTableRow {
    std::string port;
    std::string type;
    std::string direction;
    std::string left;
    std::string right;
};

struct HBSInterfaceRow : HBSTableRow {
    std::string interface;
    std::string style;
    std::string vlnv;
    std::string mode;
    std::string enable;
    std::map<std::string, std::string> portmaps;
};

struct HBSParameterRow : HBSTableRow {
    std::string name;
    std::string type;
    std::string value;
};

struct HBSInstanceRow : HBSTableRow {
    std::string instance;
    std::string vlnv;
    std::string enable;
    std::string baseAddress;
};

struct HBSConnectionRow : HBSTableRow {
    std::string type;
    std::string style;
    std::string source;
    std::set<std::string> targets;
};

/// Takes note of what became of the tables, if anybody wants to know.
class HBSTableNotes {
public:
    explicit HBSTableNotes(std::vector<HBSTableReport>* report) : m_report(report) {}

    void begin(const std::string& table, bool isThere, bool isRead);
    void row();
    /// A whole row.
    void drop(const char* table, std::size_t line, std::string_view reason,
              std::string_view name = {});
    /// A part of a row that is used without it.
    void dropPart(const char* table, std::size_t line, std::string_view reason,
                  std::string_view text);
    /// Puts the drops of each table in the order of their lines, each once: a row of registers is
    /// used for every address block of its name.
    void end();

private:
    void add(const char* table, std::size_t line, std::string_view reason, std::string_view name,
             bool isWhole);

    std::vector<HBSTableReport>* m_report; ///< null if nobody does
};

namespace hbs_tables {

constexpr const char* kAddrBlocks = "data/addrblocks.txt";
constexpr const char* kRegisters = "data/registers.txt";
constexpr const char* kAddrSegments = "data/addrsegments.txt";
constexpr const char* kPorts = "data/ports.txt";
constexpr const char* kInterfaces = "data/interfaces.txt";
constexpr const char* kParameters = "data/parameters.txt";
constexpr const char* kInstances = "data/instances.txt";
constexpr const char* kConnections = "data/connections.txt";

using Record = std::map<std::string, std::string, std::less<>>;
using Keys = std::set<std::string, std::less<>>;

/// The pairs of one line. A comment or an empty line gives none. A key that isn't known sends a
/// message, if `known` names any, and is kept all the same; of a key that comes twice the later
/// value stays. Blanks are what the global locale takes for space.
[[nodiscard]] Record readRecord(std::string_view line, const Keys& known);

// Each reads the table at `table` below the hard block's `directory` into `rows`, which it clears
// first. A file that can't be opened is an empty table. A row without what it must have is dropped.

void parseAddrBlocks(const std::string& directory, const char* table,
                     std::vector<HBSAddrBlockRow>& rows, HBSTableNotes& notes);
void parseRegisters(const std::string& directory, const char* table,
                    std::vector<HBSRegisterRow>& rows, HBSTableNotes& notes);
void parseAddrSegments(const std::string& directory, const char* table,
                       std::vector<HBSAddrSegmentRow>& rows, HBSTableNotes& notes);
void parsePorts(const std::string& directory, const char* table, std::vector<HBSPortRow>& rows,
                HBSTableNotes& notes);
void parseInterfaces(const std::string& directory, const char* table,
                     std::vector<HBSInterfaceRow>& rows, HBSTableNotes& notes);
void parseParameters(const std::string& directory, const char* table,
                     std::vector<HBSParameterRow>& rows, HBSTableNotes& notes);
void parseInstances(const std::string& directory, const char* table,
                    std::vector<HBSInstanceRow>& rows, HBSTableNotes& notes);
void parseConnections(const std::string& directory, const char* table,
                      std::vector<HBSConnectionRow>& rows, HBSTableNotes& notes);

} // namespace hbs_tables
