// The register references of an enablement expression, found and replaced in one forward pass.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace hbs_addressing {

/// Walks the references "register_value(NAME)" of an expression, whose texts the caller may replace
/// as it goes:
///
///     RegisterReferences references(expression);
///     while (references.next())
///         references.replace(valueOf(references.name()));
///     use(references.text());
///
/// A reference is what the regular expression "register_value\(\s*([^\)]*)\s*\)" matches
/// (ECMAScript, classic locale), leftmost first; its name is the capture group, so blanks in front
/// are skipped and blanks after it belong to the name. The match is written out by hand, as the
/// library's own matcher recurses once per character and a long name would take the stack down.
///
/// The pass is made over the same buffer that the replacements change, and isn't restarted. Hard
/// blocks rely on what follows from that, so it is modelled exactly:
/// - The buffer starts as the expression with a NUL after it. A replacement moves the text after
///   the reference (to the left for a shorter value), puts a NUL at the new end, and leaves the
///   characters after that unchanged.
/// - The next search starts at the index at which the last match ended before its replacement. A
///   reference that moved to the left over that index isn't seen.
/// - The search ends at the length that the text had at the start, not at its present end. An old
///   copy after the present end is matched like any other; replacing it replaces the first
///   occurrence of the same text in the present text, if there is one.
class RegisterReferences {
public:
    explicit RegisterReferences(std::string_view expression);

    /// Steps to the next reference; false when there is none.
    bool next();
    /// The name in the present reference.
    [[nodiscard]] const std::string& name() const { return m_name; }
    /// Replaces the first occurrence of the present reference's whole text by `value`.
    void replace(std::string_view value);
    /// The expression with the replacements so far.
    [[nodiscard]] std::string text() const { return m_buffer.substr(0, m_length); }

private:
    std::string m_buffer; ///< at least the text at the start and the NUL after it
    std::size_t m_length; ///< length of the present text
    std::size_t m_end;    ///< where the search ends: the length at the start
    std::size_t m_position = 0;
    std::string m_match; ///< whole text of the present reference
    std::string m_name;
};

} // namespace hbs_addressing
