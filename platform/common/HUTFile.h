// Paths of files and folders: their kinds, full names, the entries of a folder.
#pragma once

#include <string>

#include "HSTFwdIter.h"
#include "tq_export.h"

/// A path, which may name nothing. Every question is asked of the file system anew; links are
/// followed. No operation opens a file, so a FIFO or a device behind the path does no harm.
///
///     const HUTFile folder(path);
///     std::unique_ptr<HSTFwdIter<std::string>> it(folder.createFileIter());
///     while (it->isValid())
///         read(HUTFile(it->next()));
class TQ_EXPORT HUTFile {
public:
    /// Any path; nothing is opened.
    explicit HUTFile(const std::string& path);

    /// True if the path leads to something, a file or not.
    [[nodiscard]] bool exists() const;
    /// True for a regular file alone.
    [[nodiscard]] bool isFile() const;
    [[nodiscard]] bool isDir() const;

    /// The absolute path; links and ".." stay in it. The path as given where the working directory
    /// is unknown; empty for an empty path.
    void getFullPath(std::string& path) const;
    [[nodiscard]] std::string getFullPath() const;
    /// The absolute path without links, "." and "..", as far as it exists. The full path where
    /// that can't be found out.
    [[nodiscard]] std::string getCanonicalName() const;

    /// "/".
    static std::string getDirSeparator();

    /// The paths of all entries of the folder, hidden ones too, sorted bytewise by name, each with
    /// this path in front. Empty for what isn't a folder or can't be read. The caller owns it.
    [[nodiscard]] HSTFwdIter<std::string>* createFileIter() const;

private:
    std::string m_path;
};
