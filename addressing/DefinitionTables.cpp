#include "addressing/DefinitionTables.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <locale>
#include <tuple>

#include "ComMsgMgr.h"
#include "HUTFile.h"

void HBSTableNotes::begin(const std::string& table, bool isThere, bool isRead) {
    if (m_report != nullptr)
        m_report->push_back({table, isThere, isRead, 0, {}});
}

void HBSTableNotes::row() {
    if (m_report != nullptr)
        ++m_report->back().rows;
}

void HBSTableNotes::drop(const char* table, std::size_t line, std::string_view reason,
                         std::string_view name) {
    add(table, line, reason, name, true);
}

void HBSTableNotes::dropPart(const char* table, std::size_t line, std::string_view reason,
                             std::string_view text) {
    add(table, line, reason, text, false);
}

void HBSTableNotes::add(const char* table, std::size_t line, std::string_view reason,
                        std::string_view name, bool isWhole) {
    if (m_report == nullptr)
        return;
    std::string text(reason);
    if (!name.empty())
        text.append(" '").append(name).append("'");
    const auto report =
        std::find_if(m_report->begin(), m_report->end(),
                     [&](const HBSTableReport& candidate) { return candidate.table == table; });
    report->dropped.push_back({line, std::move(text), isWhole});
}

void HBSTableNotes::end() {
    if (m_report == nullptr)
        return;
    const auto parts = [](const HBSDroppedRow& row) { return std::tie(row.line, row.reason); };
    for (HBSTableReport& report : *m_report) {
        std::vector<HBSDroppedRow>& rows = report.dropped;
        std::sort(rows.begin(), rows.end(),
                  [&](const auto& a, const auto& b) { return parts(a) < parts(b); });
        rows.erase(std::unique(rows.begin(), rows.end(),
                               [&](const auto& a, const auto& b) { return parts(a) == parts(b); }),
                   rows.end());
    }
}

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

void sendUnknownKey(const std::string& key, const Keys& known) {
    std::string list;
    for (const std::string& name : known)
        list.append(list.empty() ? "" : " ").append(name);
    ComMsgMgr::sendMsg::eval(2, __FILE__, __LINE__, "hbs", 0x20000000, "@91-48@%s%s", key, list);
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

/// Gives what isn't a pair to `drop`.
template <class Drop>
Record recordOf(std::string_view line, const Keys& known, const std::ctype<char>& classes,
                Drop drop) {
    Record record;
    line = trimmed(line, classes);
    if (line.starts_with('#'))
        return record;
    forEachItem(line, ';', classes, [&](std::string_view token) {
        const std::size_t equals = token.find('=');
        if (equals == std::string_view::npos) {
            drop(token);
            return;
        }
        std::string key(trimmed(token.substr(0, equals), classes));
        if (!known.empty() && !known.contains(key))
            sendUnknownKey(key, known);
        record.insert_or_assign(std::move(key), trimmed(token.substr(equals + 1), classes));
    });
    return record;
}

/// Takes note of a part of a row that can't be used: the reason and the part's text.
using DropPart = std::function<void(std::string_view, std::string_view)>;

/// One line's pairs, asked for by key.
class Row {
public:
    Row(const Record& record, const std::ctype<char>& classes, const DropPart& dropPart)
        : m_record(record), m_classes(classes), m_dropPart(dropPart) {}

    [[nodiscard]] std::string text(std::string_view key, const char* absent = "") const {
        const auto found = m_record.find(key);
        return found == m_record.end() ? absent : found->second;
    }
    [[nodiscard]] HABMAddrValue address(std::string_view key) const {
        const std::string given = text(key, "0x0");
        const HABMAddrValue address(given);
        if (!address.isValid())
            m_dropPart(std::string(key) + " that can't be read", given);
        return address;
    }
    [[nodiscard]] HABMAddrAperture aperture() const { return {address("offset"), address("size")}; }
    /// A comma list. The file's order is lost.
    [[nodiscard]] std::set<std::string> list(std::string_view key) const {
        std::set<std::string> items;
        forEachItem(text(key), ',', m_classes, [&](std::string_view item) { items.emplace(item); });
        return items;
    }
    /// A comma list of pairs with a blank between them. An item without a blank is none.
    [[nodiscard]] std::map<std::string, std::string> pairs(std::string_view key) const {
        std::map<std::string, std::string> pairs;
        forEachItem(text(key), ',', m_classes, [&](std::string_view item) {
            const std::size_t blank = item.find(' ');
            if (blank == std::string_view::npos)
                m_dropPart(std::string(key) + " item without a blank", item);
            else
                pairs.insert_or_assign(std::string(trimmed(item.substr(0, blank), m_classes)),
                                       std::string(trimmed(item.substr(blank), m_classes)));
        });
        return pairs;
    }

private:
    const Record& m_record;
    const std::ctype<char>& m_classes;
    const DropPart& m_dropPart;
};

/// Reads a table, of which `rowOf` makes rows. `lacking` names what a row must have and hasn't, or
/// is empty.
template <class TableRow, class RowOf, class Lacking>
void parseTable(const std::string& directory, const char* table, const Keys& known,
                std::vector<TableRow>& rows, HBSTableNotes& notes, RowOf rowOf, Lacking lacking) {
    rows.clear();
    const std::string path = directory + "/" + table;
    std::ifstream stream;
    // Opening something else, such as a FIFO, could wait for ever.
    const HUTFile file(path);
    if (file.isFile())
        stream.open(path, std::ios::binary);
    notes.begin(table, file.exists(), stream.is_open());
    const Classes classes;
    std::string line;
    std::size_t number = 1;
    const DropPart dropPart = [&](std::string_view reason, std::string_view text) {
        notes.dropPart(table, number, reason, text);
    };
    for (; std::getline(stream, line); ++number) {
        const Record record = recordOf(line, known, classes.get(), [&](std::string_view token) {
            dropPart("no '=' in", token);
        });
        if (record.empty())
            continue;
        notes.row();
        TableRow row = rowOf(Row(record, classes.get(), dropPart));
        row.line = number;
        const std::string_view lack = lacking(row);
        if (lack.empty())
            rows.push_back(std::move(row));
        else
            notes.drop(table, number, lack);
    }
}

} // namespace

Record readRecord(std::string_view line, const Keys& known) {
    return recordOf(line, known, Classes().get(), [](std::string_view) {});
}

void parseAddrBlocks(const std::string& directory, const char* table,
                     std::vector<HBSAddrBlockRow>& rows, HBSTableNotes& notes) {
    parseTable(
        directory, table, {}, rows, notes,
        [](const Row& in) {
            return HBSAddrBlockRow{{},
                                   in.text("addrblock"),
                                   in.text("memorymap"),
                                   in.list("interfaces"),
                                   in.text("type", "register"),
                                   in.aperture(),
                                   in.text("group")};
        },
        [](const HBSAddrBlockRow& row) { return row.addrblock.empty() ? "no addrblock" : ""; });
}

void parseRegisters(const std::string& directory, const char* table,
                    std::vector<HBSRegisterRow>& rows, HBSTableNotes& notes) {
    parseTable(
        directory, table, {}, rows, notes,
        [](const Row& in) {
            return HBSRegisterRow{{},
                                  in.text("register"),
                                  in.text("addrblock"),
                                  in.address("offset"),
                                  in.text("width", "32"),
                                  in.address("reset"),
                                  in.text("access", "read_write")};
        },
        [](const HBSRegisterRow& row) {
            if (row.registerName.empty())
                return "no register";
            return row.addrblock.empty() ? "no addrblock" : "";
        });
}

void parseAddrSegments(const std::string& directory, const char* table,
                       std::vector<HBSAddrSegmentRow>& rows, HBSTableNotes& notes) {
    parseTable(
        directory, table, {}, rows, notes,
        [](const Row& in) {
            return HBSAddrSegmentRow{{},
                                     in.text("addrsegment"),
                                     in.text("addrspace"),
                                     in.list("interfaces"),
                                     in.text("type", "both"),
                                     in.aperture()};
        },
        [](const HBSAddrSegmentRow& row) {
            return row.addrsegment.empty() ? "no addrsegment" : "";
        });
}

void parsePorts(const std::string& directory, const char* table, std::vector<HBSPortRow>& rows,
                HBSTableNotes& notes) {
    parseTable(
        directory, table, {"direction", "left", "port", "right", "type"}, rows, notes,
        [](const Row& in) {
            return HBSPortRow{{},
                              in.text("port"),
                              in.text("type", "wire"),
                              in.text("direction", "in"),
                              in.text("left", "0"),
                              in.text("right", "0")};
        },
        [](const HBSPortRow& row) { return row.port.empty() ? "no port" : ""; });
}

void parseInterfaces(const std::string& directory, const char* table,
                     std::vector<HBSInterfaceRow>& rows, HBSTableNotes& notes) {
    parseTable(
        directory, table, {"enable", "interface", "mode", "portmaps", "style", "vlnv"}, rows, notes,
        [](const Row& in) {
            return HBSInterfaceRow{{},
                                   in.text("interface"),
                                   in.text("style", "soft"),
                                   in.text("vlnv"),
                                   in.text("mode"),
                                   in.text("enable"),
                                   in.pairs("portmaps")};
        },
        [](const HBSInterfaceRow& row) { return row.interface.empty() ? "no interface" : ""; });
}

void parseParameters(const std::string& directory, const char* table,
                     std::vector<HBSParameterRow>& rows, HBSTableNotes& notes) {
    parseTable(
        directory, table, {"name", "type", "value"}, rows, notes,
        [](const Row& in) {
            return HBSParameterRow{{}, in.text("name"), in.text("type"), in.text("value")};
        },
        [](const HBSParameterRow& row) { return row.name.empty() ? "no name" : ""; });
}

void parseInstances(const std::string& directory, const char* table,
                    std::vector<HBSInstanceRow>& rows, HBSTableNotes& notes) {
    parseTable(
        directory, table, {}, rows, notes,
        [](const Row& in) {
            return HBSInstanceRow{{},
                                  in.text("instance"),
                                  in.text("vlnv"),
                                  in.text("enable"),
                                  in.text("base_address", "0x0")};
        },
        [](const HBSInstanceRow& row) { return row.instance.empty() ? "no instance" : ""; });
}

void parseConnections(const std::string& directory, const char* table,
                      std::vector<HBSConnectionRow>& rows, HBSTableNotes& notes) {
    // The blank in front is meant: a row that doesn't name its type is neither of the two kinds,
    // and makes no connection.
    constexpr const char* kNoType = " interface";
    parseTable(
        directory, table, {}, rows, notes,
        [&](const Row& in) {
            return HBSConnectionRow{{},
                                    in.text("type", kNoType),
                                    in.text("style", "soft"),
                                    in.text("source"),
                                    in.list("targets")};
        },
        [](const HBSConnectionRow& row) {
            if (row.source.empty())
                return "no source";
            return row.targets.empty() ? "no targets" : "";
        });
}

} // namespace hbs_tables
