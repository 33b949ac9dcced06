#include "addressing/HBSTablePlaces.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <unordered_map>

#include "addressing/DataArea.h"
#include "addressing/DefinitionTables.h"
#include "diagnostics/SourceText.h"
#include "input/InputFile.h"

/// One table, with its rows by the value of one key.
class HBSTablePlaces::Table {
public:
    Table(const std::string& path, const std::string& key)
        : m_content(input::readFile(path).text), m_source(path, m_content) {
        const std::string_view content = m_content;
        for (std::size_t start = 0; start < content.size();) {
            const std::size_t end = std::min(content.find('\n', start), content.size());
            const auto record = hbs_tables::readRecord(content.substr(start, end - start), {});
            if (const auto found = record.find(key); found != record.end())
                m_rows[found->second].push_back(start);
            start = end + 1;
        }
    }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    /// A place without a line if there is no such row.
    [[nodiscard]] tq::Place find(const Row& row, const std::string& key) const {
        const auto rows = m_rows.find(row.front().second);
        if (rows == m_rows.end())
            return {};
        for (const std::size_t start : rows->second) {
            const std::string_view rest = std::string_view(m_content).substr(start);
            const auto record = hbs_tables::readRecord(rest.substr(0, rest.find('\n')), {});
            if (!isMeant(record, row))
                continue;
            const auto value = record.find(key);
            return m_source.placeOf(
                value == record.end()
                    ? start
                    : static_cast<std::size_t>(value->second.data() - m_content.data()));
        }
        return {};
    }

private:
    static bool isMeant(const hbs_tables::Record& record, const Row& row) {
        return std::all_of(row.begin(), row.end(), [&](const auto& pair) {
            const auto found = record.find(pair.first);
            return found == record.end() || found->second == pair.second;
        });
    }

    std::string m_content;
    tq::SourceText m_source;
    std::unordered_map<std::string_view, std::vector<std::size_t>> m_rows;
};

struct HBSTablePlaces::Tables {
    std::map<std::string, Table> byPath;
};

HBSTablePlaces::HBSTablePlaces(std::string directory)
    : m_directory(std::move(directory)), m_tables(std::make_unique<Tables>()) {}

HBSTablePlaces::~HBSTablePlaces() = default;

tq::Place HBSTablePlaces::find(const std::string& name, const std::string& table, const Row& row,
                               const std::string& key) {
    const std::string path = m_directory + "/" + name + "/" + table;
    const Table& rows = m_tables->byPath.try_emplace(path, path, row.front().first).first->second;
    tq::Place place = rows.find(row, key);
    return place.line != 0 ? place : ofFile(name);
}

tq::Place HBSTablePlaces::ofFile(const std::string& name) const {
    return tq::placeOfFile(hbs_addressing::hardblockFile(m_directory, name, ".bmj"));
}
