// Scripts of sequence commands: a text of one command a line, run against the sequence manager.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"

namespace tq {

/// A script of the commands
///
///     create SEQUENCE         open SEQUENCE MARKER      address TEXT
///     check SEQUENCE          close SEQUENCE MARKER     value TEXT
///     delete SEQUENCE
///
/// Words are separated by white space; a word that holds some, or an empty one, is put in double
/// quotes. A word that begins with "#" starts a comment. `check` tests that all markers are closed;
/// `address` and `value` read a typed number.
class TQ_WORKBENCH_EXPORT SequenceScript {
public:
    /// A command and what came of it.
    struct Step {
        std::size_t line = 0; ///< from 1
        std::string text;     ///< the command as written, without the comment
        std::vector<std::string> words;
        std::size_t verb = 0;                ///< position in the table of commands
        std::optional<std::uint64_t> number; ///< of `address` and `value`
        std::optional<std::string> failure;  ///< the library's text
    };

    /// Raises `InputError` for a file that can't be read, and with the place of the first line that
    /// isn't a command: an unknown one, one with too few or too many words, a quote without its
    /// end, text that isn't UTF-8 or holds control characters.
    static SequenceScript read(const std::string& path);
    /// The same for a text; `name` is the file's in errors.
    static SequenceScript parse(const std::string& name, std::string_view content);

    /// Runs all steps in order; one that fails doesn't stop the others. Sequences that are left are
    /// deleted, so that a second run starts anew.
    void run();

    /// The commands in the order of the script, with their results after `run`.
    [[nodiscard]] const std::vector<Step>& steps() const { return m_steps; }
    /// How many steps failed in the last run.
    [[nodiscard]] std::size_t failures() const;

    /// A table with the result of each step, and a line of counts.
    [[nodiscard]] std::string table() const;
    /// A JSON array of objects with "line", "command", "ok", and "number" or "failure".
    [[nodiscard]] std::string json() const;

private:
    void addLine(const std::string& file, std::size_t lineNumber, std::string line);

    std::vector<Step> m_steps;
};

} // namespace tq
