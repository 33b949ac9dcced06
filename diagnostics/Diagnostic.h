// One way to say what is wrong with an input and where: the type that every reader of the library
// reports through. Header-only, so that it crosses the borders of the shared libraries.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tq {

/// How much a finding matters.
enum class Severity : std::uint8_t {
    Remark,  ///< worth a look, probably as intended
    Warning, ///< something was left out or is probably not as intended
    Error,   ///< the input can't be used, or the result would be wrong
};

/// A place in an input.
struct Place {
    std::string file;       ///< as the caller named it; empty where there is none
    std::size_t line = 0;   ///< from 1; 0 where unknown
    std::size_t column = 0; ///< in bytes, from 1; 0 where unknown
    /// The text of that line, for a picture of the place; empty where unknown. Long lines are cut
    /// to the part around the column, `lineTextOffset` bytes into the line.
    std::string lineText;
    std::size_t lineTextOffset = 0;
};

/// A second place that explains the first: "first defined here".
struct DiagnosticNote {
    Place place;      ///< unknown for a plain explanation
    std::string text; ///< as in `Diagnostic`
};

/// One finding of a reader or a check.
///
/// `text` says what is wrong and `expected` what was expected (either a list or a description, may
/// be empty): "unknown key \"acess\"" and "one of: register, offset, access". Both may hold bytes
/// of the input as they were; `DiagnosticText.h` makes them fit for a terminal and for JSON.
struct Diagnostic {
    Severity severity = Severity::Error;
    /// Stable name of the kind of finding, in lower case with "-", such as "unknown-key"; findings
    /// can be switched off by it.
    std::string id;
    Place place;
    std::string text;
    std::string expected;
    std::vector<DiagnosticNote> notes;
};

/// A finding without notes.
[[nodiscard]] inline Diagnostic makeDiagnostic(Severity severity, std::string id, Place place,
                                               std::string text, std::string expected = {}) {
    Diagnostic diagnostic;
    diagnostic.severity = severity;
    diagnostic.id = std::move(id);
    diagnostic.place = std::move(place);
    diagnostic.text = std::move(text);
    diagnostic.expected = std::move(expected);
    return diagnostic;
}

/// A file as a whole.
[[nodiscard]] inline Place placeOfFile(std::string file) {
    Place place;
    place.file = std::move(file);
    return place;
}

/// Receives findings in the order in which they are found. An empty function receives nothing; a
/// reader then doesn't compute places either. What it throws leaves the reader.
using DiagnosticSink = std::function<void(Diagnostic)>;

/// Collects findings. Beyond `most` it only counts, so that a hostile file can't fill the memory.
///
///     DiagnosticList findings;
///     read(path, findings.sink());
///     if (findings.hasErrors()) ...
class DiagnosticList {
public:
    /// How many findings are kept unless asked otherwise.
    static constexpr std::size_t kMost = 1000;

    /// `most`: how many findings are kept.
    explicit DiagnosticList(std::size_t most = kMost) : m_most(most) {}

    /// Keeps the finding, or counts it where the list is full.
    void add(Diagnostic diagnostic) {
        ++m_counts[static_cast<std::size_t>(diagnostic.severity)];
        if (m_all.size() < m_most)
            m_all.push_back(std::move(diagnostic));
    }
    /// Adds to this list, which must outlive it.
    [[nodiscard]] DiagnosticSink sink() {
        return [this](Diagnostic diagnostic) { add(std::move(diagnostic)); };
    }

    /// In the order of adding; at most `most`.
    [[nodiscard]] const std::vector<Diagnostic>& all() const { return m_all; }
    /// Of one severity, those beyond `most` included.
    [[nodiscard]] std::size_t count(Severity severity) const {
        return m_counts[static_cast<std::size_t>(severity)];
    }
    [[nodiscard]] std::size_t count() const {
        return count(Severity::Remark) + count(Severity::Warning) + count(Severity::Error);
    }
    [[nodiscard]] bool hasErrors() const { return count(Severity::Error) != 0; }

private:
    std::size_t m_most;
    std::vector<Diagnostic> m_all;
    std::size_t m_counts[3] = {};
};

} // namespace tq
