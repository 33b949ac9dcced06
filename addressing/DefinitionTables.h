// The eight tables of a hard block as rows of text, as the files have them.
#pragma once

#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "addressing/DefinitionFindings.h"
#include "blockmodel/HABMAddrAperture.h"
#include "blockmodel/HABMAddrValue.h"

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

namespace hbs_tables {

constexpr const char* kAddrBlocks = "data/addrblocks.txt";
constexpr const char* kRegisters = "data/registers.txt";
constexpr const char* kAddrSegments = "data/addrsegments.txt";
constexpr const char* kPorts = "data/ports.txt";
constexpr const char* kInterfaces = "data/interfaces.txt";
constexpr const char* kParameters = "data/parameters.txt";
constexpr const char* kInstances = "data/instances.txt";
constexpr const char* kConnections = "data/connections.txt";

/// The type of a connection row that names none. The leading blank is intended: the text is neither
/// of the two kinds, and no value of a table begins with a blank.
constexpr const char* kNoConnectionType = " interface";

using Record = std::map<std::string_view, std::string_view>;
using Keys = std::span<const std::string_view>;

/// The pairs of one line, as parts of it. A comment or an empty line gives none. A key that isn't
/// known sends a message, if `known` names any, and is kept all the same; of a key that comes twice
/// the later value stays. Blanks are what the global locale takes for space.
[[nodiscard]] Record readRecord(std::string_view line, Keys known);

/// What atoi gives, also for numbers beyond an int, where atoi itself may do anything.
[[nodiscard]] unsigned decimal(const std::string& text);

// Each reads its table below the hard block's `directory` into `rows`, which it clears first. A
// file that can't be opened is an empty table, and so is one beyond the limit of all readers; where
// reading fails on the way, the lines before count. A row without what it must have is dropped.

void parseAddrBlocks(const std::string& directory, std::vector<HBSAddrBlockRow>& rows,
                     HBSTableFindings& findings);
void parseRegisters(const std::string& directory, std::vector<HBSRegisterRow>& rows,
                    HBSTableFindings& findings);
void parseAddrSegments(const std::string& directory, std::vector<HBSAddrSegmentRow>& rows,
                       HBSTableFindings& findings);
void parsePorts(const std::string& directory, std::vector<HBSPortRow>& rows,
                HBSTableFindings& findings);
void parseInterfaces(const std::string& directory, std::vector<HBSInterfaceRow>& rows,
                     HBSTableFindings& findings);
void parseParameters(const std::string& directory, std::vector<HBSParameterRow>& rows,
                     HBSTableFindings& findings);
void parseInstances(const std::string& directory, std::vector<HBSInstanceRow>& rows,
                    HBSTableFindings& findings);
void parseConnections(const std::string& directory, std::vector<HBSConnectionRow>& rows,
                      HBSTableFindings& findings);

} // namespace hbs_tables
