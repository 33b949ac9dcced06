// The files of a design by vendor, library, name and version.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "workbench/ipxact/ElementTree.h"
#include "workbench/ipxact/RegisterModel.h"

namespace tq::ipxact {

/// Searches folders once for the standard's files and reads each that is asked for once. Of two
/// files with one identification the first counts, by path in the order of the folders. Files of
/// other kinds are passed over; those that can't be read are findings.
class Library {
public:
    static constexpr std::size_t kMostFiles = 20'000;

    /// Raises `InputError` for a folder that can't be listed.
    Library(const std::vector<std::string>& folders, DiagnosticSink sink);

    /// The tree of a component, a design and so on; null where there is none. Raises `InputError`
    /// for a file that can't be read any more.
    [[nodiscard]] std::shared_ptr<const ElementTree> find(const Vlnv& vlnv);
    /// The versions in which a file is there under the same vendor, library and name: "1.2, 1.4".
    [[nodiscard]] std::string versionsOf(const Vlnv& vlnv) const;
    [[nodiscard]] std::size_t size() const { return m_entries.size(); }

private:
    struct Entry {
        std::string path;
        std::shared_ptr<const ElementTree> tree;
    };

    void addFolder(const std::string& folder);
    void addFile(const std::string& path);

    DiagnosticSink m_sink;
    std::map<Vlnv, Entry> m_entries;
    std::size_t m_files = 0;
};

} // namespace tq::ipxact
