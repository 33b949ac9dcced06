#include "addressing/DefinitionTables.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <locale>
#include <utility>

#include "ComMsgMgr.h"
#include "diagnostics/NearestName.h"
#include "input/InputFile.h"

namespace hbs_tables {

namespace {

std::string_view trimmed(std::string_view text, const std::ctype<char>& classes) {
    const char* const end = text.data() + text.size();
    const char* const first = classes.scan_not(std::ctype_base::space, text.data(), end);
    const char* last = end;
    while (last != first && classes.is(std::ctype_base::space, last[-1]))
        --last;
    return {first, static_cast<std::size_t>(last - first)};
}

/// Calls `visit` for each trimmed item between the separators that isn't empty.
template <class Visit>
void forEachItem(std::string_view text, char separator, const std::ctype<char>& classes,
                 Visit visit) {
    while (true) {
        const std::size_t end = text.find(separator);
        const std::string_view item = trimmed(text.substr(0, end), classes);
        if (!item.empty())
            visit(item);
        if (end == std::string_view::npos)
            return;
        text.remove_prefix(end + 1);
    }
}

std::string joined(Keys names, const char* separator) {
    std::string list;
    for (const std::string_view name : names)
        list.append(list.empty() ? "" : separator).append(name);
    return list;
}

void sendUnknownKey(std::string_view key, Keys known) {
    ComMsgMgr::sendMsg::eval(2, __FILE__, __LINE__, "hbs", 0x20000000, "@91-48@%s%s",
                             std::string(key), joined(known, " "));
}

bool contains(Keys names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// What the classes of characters are taken from.
class Classes {
public:
    [[nodiscard]] const std::ctype<char>& get() const {
        return std::use_facet<std::ctype<char>>(m_locale);
    }

private:
    std::locale m_locale;
};

/// Sees the tokens of a line on their way into a record, and sends the messages for unknown keys.
class TokenWatch {
public:
    explicit TokenWatch(Keys known) : m_known(known) {}
    void seeWord(std::string_view /*token*/) const {}
    void seeKey(std::string_view key) const {
        if (!m_known.empty() && !contains(m_known, key))
            sendUnknownKey(key, m_known);
    }
    void seeRepeated(std::string_view /*key*/, std::string_view /*earlier*/) const {}

private:
    Keys m_known;
};

template <class Watch>
Record recordOf(std::string_view line, const std::ctype<char>& classes, const Watch& watch) {
    Record record;
    line = trimmed(line, classes);
    if (line.starts_with('#'))
        return record;
    forEachItem(line, ';', classes, [&](std::string_view token) {
        const std::size_t equals = token.find('=');
        if (equals == std::string_view::npos) {
            watch.seeWord(token);
            return;
        }
        const std::string_view key = trimmed(token.substr(0, equals), classes);
        watch.seeKey(key);
        const std::string_view value = trimmed(token.substr(equals + 1), classes);
        const auto [pair, isNew] = record.try_emplace(key, value);
        if (!isNew)
            watch.seeRepeated(key, std::exchange(pair->second, value));
    });
    return record;
}

/// The readable part of a table. A line cut short by a read error is dropped.
base::FileContent readTable(const std::string& path) {
    base::FileContent content = input::readPlainFile(path);
    if (content.outcome == base::ReadOutcome::Failed)
        content.text.resize(content.text.rfind('\n') + 1); // npos + 1 is 0
    return content;
}

/// What the rows of a table hold.
struct TableForm {
    const char* table;
    Keys keys;
    bool sendsUnknownKeys;
};

/// The reading of one table: what its findings need to know.
struct TableReading {
    const TableForm& form;
    const HBSTableText& text;
    HBSTableFindings& findings;
    const std::ctype<char>& classes;

    void warn(std::string_view part, const char* id, const std::string& what,
              std::string expected = {}) const {
        findings.tell(text, part, tq::Severity::Warning, id, what, std::move(expected));
    }
};

/// Sees the tokens of a table's lines.
class TableWatch {
public:
    explicit TableWatch(const TableReading& reading)
        : m_reading(reading),
          m_messages(reading.form.sendsUnknownKeys ? reading.form.keys : Keys{}) {}
    void seeWord(std::string_view token) const {
        m_reading.warn(token, "not-a-pair", quoted(token) + " isn't used", "KEY=VALUE");
    }
    void seeKey(std::string_view key) const {
        m_messages.seeKey(key);
        if (m_reading.findings.isOn() && !contains(m_reading.form.keys, key))
            m_reading.warn(key, "unknown-key", "unknown key " + quoted(key),
                           tq::oneOfNames(key, m_reading.form.keys));
    }
    void seeRepeated(std::string_view key, std::string_view earlier) const {
        m_reading.warn(earlier, "repeated-key",
                       "this value isn't used: the row has a later " + quoted(key));
    }

private:
    const TableReading& m_reading;
    TokenWatch m_messages;
};

/// One line's pairs, by key. The `read…` operations report values that can't be taken as written.
class Row {
public:
    Row(const Record& record, const TableReading& reading) : m_record(record), m_reading(reading) {}

    [[nodiscard]] bool has(std::string_view key) const { return m_record.contains(key); }
    [[nodiscard]] std::string text(std::string_view key, const char* absent = "") const {
        return std::string(view(key, absent));
    }
    /// A text of which the block model knows some; any other is kept, and counts as `other`.
    [[nodiscard]] std::string readChoice(std::string_view key, const char* absent, Keys known,
                                         std::string_view other) const {
        const std::string_view given = view(key, absent);
        if (m_reading.findings.isOn() && has(key) && !contains(known, given))
            m_reading.warn(given, "unknown-value",
                           "unknown " + std::string(key) + " " + quoted(given) + ", taken for " +
                               quoted(other),
                           tq::oneOfNames(given, known));
        return std::string(given);
    }
    /// A decimal number, still as a text.
    [[nodiscard]] std::string readNumber(std::string_view key, const char* absent) const {
        const std::string_view given = view(key, absent);
        unsigned value = 0;
        const auto [end, error] = std::from_chars(given.data(), given.data() + given.size(), value);
        if (error != std::errc() || end != given.data() + given.size())
            m_reading.warn(given, "bad-number",
                           std::string(key) + " " + quoted(given) + " is taken for " +
                               std::to_string(decimal(std::string(given))),
                           "a decimal number");
        return std::string(given);
    }
    [[nodiscard]] HABMAddrValue readAddress(std::string_view key) const {
        return HABMAddrValue(readAddressText(key));
    }
    [[nodiscard]] std::string readAddressText(std::string_view key) const {
        const std::string_view given = view(key, "0x0");
        if (!HABMAddrValue(std::string(given)).isValid())
            m_reading.warn(given, "bad-address",
                           std::string(key) + " " + quoted(given) + " can't be read",
                           "an address or a size such as 0x1000 or 64K");
        return std::string(given);
    }
    [[nodiscard]] HABMAddrAperture readAperture() const {
        return {readAddress("offset"), readAddress("size")};
    }
    /// A comma list. The file's order is lost.
    [[nodiscard]] std::set<std::string> readList(std::string_view key) const {
        std::set<std::string> items;
        forEachItem(view(key), ',', m_reading.classes,
                    [&](std::string_view item) { items.emplace(item); });
        return items;
    }
    /// A comma list of pairs with a blank between them. An item without a blank is none.
    [[nodiscard]] std::map<std::string, std::string> readPairs(std::string_view key) const {
        std::map<std::string, std::string> pairs;
        forEachItem(view(key), ',', m_reading.classes,
                    [&](std::string_view item) { addPair(pairs, item); });
        return pairs;
    }

private:
    /// Part of the line, or `absent`.
    [[nodiscard]] std::string_view view(std::string_view key, const char* absent = "") const {
        const auto found = m_record.find(key);
        return found == m_record.end() ? absent : found->second;
    }
    void addPair(std::map<std::string, std::string>& pairs, std::string_view item) const {
        const std::size_t blank = item.find(' ');
        if (blank == std::string_view::npos) {
            m_reading.warn(item, "bad-portmap", "port map " + quoted(item) + " isn't used",
                           "LOGICAL PHYSICAL, with a blank between them");
            return;
        }
        const std::string_view logical = trimmed(item.substr(0, blank), m_reading.classes);
        const bool isNew =
            pairs
                .insert_or_assign(std::string(logical),
                                  std::string(trimmed(item.substr(blank), m_reading.classes)))
                .second;
        if (!isNew)
            m_reading.warn(item, "repeated-portmap",
                           "replaces an earlier port map of " + quoted(logical));
    }

    const Record& m_record;
    const TableReading& m_reading;
};

/// Reads a table, of which `rowOf` makes rows. `lacking` names the key that a row must have and
/// hasn't, or is empty.
template <class TableRow, class RowOf, class Lacking>
void parseTable(const std::string& directory, const TableForm& form, std::vector<TableRow>& rows,
                HBSTableFindings& findings, RowOf rowOf, Lacking lacking) {
    rows.clear();
    const std::string path = directory + "/" + form.table;
    const HBSTableText& text = findings.open(form.table, path, readTable(path));
    const Classes classes;
    const TableReading reading{form, text, findings, classes.get()};
    const TableWatch watch(reading);
    for (std::string_view rest = text.content(); !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        const Record record = recordOf(line, classes.get(), watch);
        if (record.empty())
            continue;
        findings.countRow();
        TableRow row = rowOf(Row(record, reading));
        row.table = &text;
        row.rowStart = text.offsetOf(line);
        const std::string_view lack = lacking(row);
        if (lack.empty()) {
            rows.push_back(std::move(row));
            continue;
        }
        findings.countDropped(row);
        reading.warn(trimmed(line, classes.get()), "missing-key",
                     "the row isn't used: it has no " + std::string(lack));
    }
    findings.close();
}

// In ascending order, as the message for an unknown key lists them.
constexpr std::array<std::string_view, 7> kAddrBlockKeys{
    "addrblock", "group", "interfaces", "memorymap", "offset", "size", "type"};
constexpr std::array<std::string_view, 6> kRegisterKeys{"access",   "addrblock", "offset",
                                                        "register", "reset",     "width"};
constexpr std::array<std::string_view, 6> kAddrSegmentKeys{"addrsegment", "addrspace", "interfaces",
                                                           "offset",      "size",      "type"};
constexpr std::array<std::string_view, 5> kPortKeys{"direction", "left", "port", "right", "type"};
constexpr std::array<std::string_view, 6> kInterfaceKeys{"enable",   "interface", "mode",
                                                         "portmaps", "style",     "vlnv"};
constexpr std::array<std::string_view, 3> kParameterKeys{"name", "type", "value"};
constexpr std::array<std::string_view, 4> kInstanceKeys{"base_address", "enable", "instance",
                                                        "vlnv"};
constexpr std::array<std::string_view, 4> kConnectionKeys{"source", "style", "targets", "type"};

// The texts that the block model knows; an unknown one counts as the first.
constexpr std::array<std::string_view, 3> kBlockTypes{"register", "memory", "reserved"};
constexpr std::array<std::string_view, 3> kAccesses{"read_write", "read_only", "write_only"};
constexpr std::array<std::string_view, 3> kSegmentTypes{"both", "data", "instruction"};
constexpr std::array<std::string_view, 2> kPortTypes{"wire", "vector"};
constexpr std::array<std::string_view, 3> kDirections{"in", "out", "inout"};
constexpr std::array<std::string_view, 9> kModes{"unknown",         "master",         "slave",
                                                 "mirrored_master", "mirrored_slave", "system",
                                                 "monitor",         "initiator",      "target"};
constexpr std::array<std::string_view, 2> kStyles{"soft", "hard"};

} // namespace

unsigned decimal(const std::string& text) {
    return static_cast<unsigned>(static_cast<int>(std::strtol(text.c_str(), nullptr, 10)));
}

Record readRecord(std::string_view line, Keys known) {
    return recordOf(line, Classes().get(), TokenWatch(known));
}

void parseAddrBlocks(const std::string& directory, std::vector<HBSAddrBlockRow>& rows,
                     HBSTableFindings& findings) {
    parseTable(
        directory, {kAddrBlocks, kAddrBlockKeys, false}, rows, findings,
        [](const Row& in) {
            return HBSAddrBlockRow{{},
                                   in.text("addrblock"),
                                   in.text("memorymap"),
                                   in.readList("interfaces"),
                                   in.readChoice("type", "register", kBlockTypes, "register"),
                                   in.readAperture(),
                                   in.text("group")};
        },
        [](const HBSAddrBlockRow& row) { return row.addrblock.empty() ? "addrblock" : ""; });
}

void parseRegisters(const std::string& directory, std::vector<HBSRegisterRow>& rows,
                    HBSTableFindings& findings) {
    parseTable(
        directory, {kRegisters, kRegisterKeys, false}, rows, findings,
        [](const Row& in) {
            return HBSRegisterRow{{},
                                  in.text("register"),
                                  in.text("addrblock"),
                                  in.readAddress("offset"),
                                  in.readNumber("width", "32"),
                                  in.readAddress("reset"),
                                  in.readChoice("access", "read_write", kAccesses, "read_write")};
        },
        [](const HBSRegisterRow& row) {
            if (row.registerName.empty())
                return "register";
            return row.addrblock.empty() ? "addrblock" : "";
        });
}

void parseAddrSegments(const std::string& directory, std::vector<HBSAddrSegmentRow>& rows,
                       HBSTableFindings& findings) {
    parseTable(
        directory, {kAddrSegments, kAddrSegmentKeys, false}, rows, findings,
        [](const Row& in) {
            return HBSAddrSegmentRow{{},
                                     in.text("addrsegment"),
                                     in.text("addrspace"),
                                     in.readList("interfaces"),
                                     in.readChoice("type", "both", kSegmentTypes, "both"),
                                     in.readAperture()};
        },
        [](const HBSAddrSegmentRow& row) { return row.addrsegment.empty() ? "addrsegment" : ""; });
}

void parsePorts(const std::string& directory, std::vector<HBSPortRow>& rows,
                HBSTableFindings& findings) {
    parseTable(
        directory, {kPorts, kPortKeys, true}, rows, findings,
        [](const Row& in) {
            return HBSPortRow{{},
                              in.text("port"),
                              in.readChoice("type", "wire", kPortTypes, "wire"),
                              in.readChoice("direction", "in", kDirections, "in"),
                              in.readNumber("left", "0"),
                              in.readNumber("right", "0")};
        },
        [](const HBSPortRow& row) { return row.port.empty() ? "port" : ""; });
}

void parseInterfaces(const std::string& directory, std::vector<HBSInterfaceRow>& rows,
                     HBSTableFindings& findings) {
    parseTable(
        directory, {kInterfaces, kInterfaceKeys, true}, rows, findings,
        [](const Row& in) {
            return HBSInterfaceRow{{},
                                   in.text("interface"),
                                   in.text("style", "soft"),
                                   in.text("vlnv"),
                                   in.readChoice("mode", "", kModes, "unknown"),
                                   in.text("enable"),
                                   in.readPairs("portmaps")};
        },
        [](const HBSInterfaceRow& row) { return row.interface.empty() ? "interface" : ""; });
}

void parseParameters(const std::string& directory, std::vector<HBSParameterRow>& rows,
                     HBSTableFindings& findings) {
    parseTable(
        directory, {kParameters, kParameterKeys, true}, rows, findings,
        [](const Row& in) {
            return HBSParameterRow{{}, in.text("name"), in.text("type"), in.text("value")};
        },
        [](const HBSParameterRow& row) { return row.name.empty() ? "name" : ""; });
}

void parseInstances(const std::string& directory, std::vector<HBSInstanceRow>& rows,
                    HBSTableFindings& findings) {
    parseTable(
        directory, {kInstances, kInstanceKeys, false}, rows, findings,
        [](const Row& in) {
            return HBSInstanceRow{{},
                                  in.text("instance"),
                                  in.text("vlnv"),
                                  in.text("enable"),
                                  in.readAddressText("base_address")};
        },
        [](const HBSInstanceRow& row) { return row.instance.empty() ? "instance" : ""; });
}

void parseConnections(const std::string& directory, std::vector<HBSConnectionRow>& rows,
                      HBSTableFindings& findings) {
    parseTable(
        directory, {kConnections, kConnectionKeys, false}, rows, findings,
        [](const Row& in) {
            return HBSConnectionRow{{},
                                    in.text("type", kNoConnectionType),
                                    in.readChoice("style", "soft", kStyles, "soft"),
                                    in.text("source"),
                                    in.readList("targets")};
        },
        [](const HBSConnectionRow& row) {
            if (row.source.empty())
                return "source";
            return row.targets.empty() ? "targets" : "";
        });
}

} // namespace hbs_tables
