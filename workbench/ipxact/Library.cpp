#include "workbench/ipxact/Library.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "workbench/files/InputError.h"
#include "workbench/ipxact/ComponentReader.h"

namespace tq::ipxact {

namespace fs = std::filesystem;

Library::Library(const std::vector<std::string>& folders, DiagnosticSink sink)
    : m_sink(std::move(sink)) {
    for (const std::string& folder : folders)
        addFolder(folder);
}

void Library::addFolder(const std::string& folder) {
    std::error_code error;
    std::vector<std::string> paths;
    fs::recursive_directory_iterator entry(folder, error);
    if (error)
        throw fileError(folder, "the folder can't be listed: " + error.message());
    for (const fs::recursive_directory_iterator end; entry != end; entry.increment(error)) {
        if (error || m_files == kMostFiles)
            break;
        if (entry->path().extension() == ".xml" && entry->is_regular_file(error)) {
            paths.push_back(entry->path().string());
            ++m_files;
        }
    }
    std::sort(paths.begin(), paths.end());
    for (const std::string& path : paths)
        addFile(path);
}

void Library::addFile(const std::string& path) {
    try {
        const auto head = ElementTree::readHead(path);
        if (!editionOf(head->rootNamespace()))
            return;
        const Vlnv vlnv = vlnvOf(head->root());
        const auto [place, isNew] = m_entries.try_emplace(vlnv, Entry{path, nullptr});
        if (!isNew && m_sink)
            m_sink(makeDiagnostic(Severity::Remark, "duplicate-file", placeOfFile(path),
                                  vlnv.text() + " is found in " + place->second.path +
                                      " already, which counts"));
    } catch (const InputError& error) {
        if (!m_sink)
            return;
        Diagnostic diagnostic = error.diagnostic();
        diagnostic.severity = Severity::Warning;
        m_sink(std::move(diagnostic));
    }
}

std::shared_ptr<const ElementTree> Library::find(const Vlnv& vlnv) {
    const auto found = m_entries.find(vlnv);
    if (found == m_entries.end())
        return nullptr;
    if (found->second.tree == nullptr)
        found->second.tree = ElementTree::read(found->second.path);
    return found->second.tree;
}

std::string Library::versionsOf(const Vlnv& vlnv) const {
    std::string versions;
    Vlnv first = vlnv;
    first.version.clear();
    for (auto entry = m_entries.lower_bound(first); entry != m_entries.end(); ++entry) {
        first.version = entry->first.version;
        if (!(entry->first == first))
            break;
        versions += (versions.empty() ? "" : ", ") + first.version;
    }
    return versions;
}

} // namespace tq::ipxact
