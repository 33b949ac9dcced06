// Where a request prints its result, and how it ended.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"

namespace tq {

/// How a request ended. Input that can't be used at all is an `InputError` instead.
enum class Outcome {
    Found,    ///< a result was found and printed
    Nothing,  ///< the input is good, but there is no result, or a check found something
    BadInput, ///< of several inputs some can't be used, as the results say
};

/// A person reads the first findings; the rest is counted.
inline constexpr std::size_t kMostFindings = 20;

/// The streams of a program that runs requests.
struct TQ_WORKBENCH_EXPORT Console {
    std::ostream& out;          ///< one document: tables or JSON
    std::ostream& err;          ///< findings and remarks, for people
    bool showsProgress = false; ///< whether a person waits at `err`
    std::string program = "hbs";

    /// One line of the program. Text from files is escaped.
    void note(const std::string& text) const;
    /// Findings as compilers write them, and the count of those left out.
    void print(const DiagnosticList& findings) const;
};

/// The console of a request that writes files. Where one of them is the standard output, that holds
/// the file alone: what is printed to `out` is dropped.
class TQ_WORKBENCH_EXPORT FileConsole {
public:
    /// Raises `InputError` if several files are the standard output.
    FileConsole(const Console& console, const std::vector<std::string>& outputs);

    [[nodiscard]] const Console& get() const { return m_console; }

private:
    std::ostream m_nowhere{nullptr};
    Console m_console;
};

} // namespace tq
