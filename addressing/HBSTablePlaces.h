// Finds the rows of hard blocks' tables again, for findings about what was compiled from them.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "tq_export.h"

/// Reads each table once, when it is first asked for, and keeps it. The tables may be missing, or
/// have changed since they were compiled, so the places are hints for people.
///
///     HBSTablePlaces places("device/mirrel/hardblocks");
///     sink(makeDiagnostic(..., places.find("ps", "data/instances.txt",
///                                          {{"instance", "uart0"}}, "base_address"), ...));
class TQ_EXPORT HBSTablePlaces {
public:
    using Row = std::vector<std::pair<std::string, std::string>>;

    /// `directory` is the one that holds the hard blocks' folders.
    explicit HBSTablePlaces(std::string directory);
    ~HBSTablePlaces();
    HBSTablePlaces(const HBSTablePlaces&) = delete;
    HBSTablePlaces& operator=(const HBSTablePlaces&) = delete;

    /// The value of `key` in the first row of DIRECTORY/NAME/TABLE that has the pairs of `row`; the
    /// first pair must be there, of the others those that the row leaves out count as equal. The
    /// start of the row if it doesn't have the key; the file NAME/NAME.bmj, without a line, if
    /// there is no such row.
    [[nodiscard]] tq::Place find(const std::string& name, const std::string& table, const Row& row,
                                 const std::string& key);
    /// The file NAME/NAME.bmj as a whole.
    [[nodiscard]] tq::Place ofFile(const std::string& name) const;

private:
    class Table;
    struct Tables;

    std::string m_directory;
    std::unique_ptr<Tables> m_tables;
};
