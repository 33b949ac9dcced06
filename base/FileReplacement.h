// Replaces a file in one step: the one way in which this project writes files.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

namespace base {

/// Writes a new file beside the one at a path, and puts it in its place once it is whole and on the
/// disk. At any moment, and after any failure, either the old or the new file is there, whole.
///
///     FileReplacement file(path);
///     file.write(text);
///     if (!file.commit())
///         complain(path + ": " + file.reason());
///
/// A link is followed, also to where there is nothing yet. The new file takes the access rights of
/// the old one, and its owner where that is allowed. A file that the process may not write is
/// refused, and so is a folder.
///
/// The new file's name is ".NAME.tq-N" with a small N. It is locked (`flock`) while it is written
/// and removed unless it is put in place; only the death of the process leaves it. The next
/// replacement of the same path removes those that no process holds.
///
/// Failures are kept for `commit` to report. Only `std::bad_alloc` is raised.
class FileReplacement {
public:
    /// What to do with a path that leads to something other than a file or a folder.
    enum class Special {
        Refuse,
        /// Write to it directly. Opening a FIFO waits for a reader. This includes the files that
        /// the process's own standard output and error go to, files too.
        WriteThrough
    };
    /// What to do with a file that is there.
    enum class Existing { Replace, Keep };

    explicit FileReplacement(std::string path, Special special = Special::Refuse,
                             Existing existing = Existing::Replace);
    /// Removes the new file unless it was put in place.
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// False if this or an earlier operation failed; nothing is written then.
    bool write(std::string_view piece);
    /// Puts the file in place, once. False, with the old file untouched, if any operation failed.
    [[nodiscard]] bool commit();

    [[nodiscard]] bool isGood() const { return m_reason.empty(); }
    /// What failed first, without the path: "No space left on device". Empty if nothing did.
    [[nodiscard]] const std::string& reason() const { return m_reason; }

private:
    bool fail(int error);
    bool fail(const char* reason);
    void open(Special special, Existing existing);
    void openDirectly(int standardStream);
    void followLinks();
    void openBeside();
    bool create();
    bool writeOut(std::string_view bytes);
    bool takeRights();

    std::string m_path;
    std::string m_newPath; ///< empty if the path itself is written to, or nothing is open
    std::string m_buffer;
    std::string m_reason;
    int m_descriptor = -1;
    bool m_replaces = false; ///< there is a file, which has:
    mode_t m_mode = 0;
    uid_t m_owner = 0;
    gid_t m_group = 0;
};

/// Writes a whole text, directly to what isn't a file. The reason if that fails, else the empty
/// text.
[[nodiscard]] std::string writeOutputFile(const std::string& path, std::string_view text);

} // namespace base
