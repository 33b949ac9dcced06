#include "addressing/TclWords.h"

#include <tcl.h>

#include <algorithm>

namespace hbs_addressing {

namespace {

using namespace std::string_view_literals;

/// Ends a word, starts a substitution or escapes at any place in a word.
constexpr std::string_view kBreaksWord = " \t\n\v\f\r;$[\\\0"sv;
/// Quotes a word that starts with it; elsewhere it is a plain character.
constexpr std::string_view kQuotesWord = "\"{"sv;

/// Whether a "}" in `text` closes the brace that the script opens before it.
bool closesEarly(std::string_view text) {
    int depth = 1;
    for (std::size_t i = 0; i < text.size() && depth > 0; ++i) {
        if (text[i] == '\\')
            ++i;
        else if (text[i] == '{')
            ++depth;
        else if (text[i] == '}')
            --depth;
    }
    return depth == 0;
}

/// At most so many substitutions can be nested: a command needs a "[", an array element "$" and
/// "(".
std::ptrdiff_t countSubstitutions(std::string_view text) {
    const auto count = [&](char wanted) { return std::count(text.begin(), text.end(), wanted); };
    return count('[') + std::min(count('$'), count('('));
}

} // namespace

bool isPlainWord(std::string_view text) {
    return !text.empty() && kQuotesWord.find(text.front()) == std::string_view::npos &&
           text.find_first_of(kBreaksWord) == std::string_view::npos;
}

bool isPlainBracketedWord(std::string_view text) {
    return isPlainWord(text) && text.find(']') == std::string_view::npos;
}

std::string quotePath(const std::string& path) {
    if (isPlainBracketedWord(path) && path.find_first_of("{}") == std::string::npos &&
        std::all_of(path.begin(), path.end(), [](char c) { return c > 0; }))
        return path;
    // Tcl turns its text into the system's encoding to open the file, which is the locale's: in the
    // locale "C" the bytes of a name in UTF-8 would become others.
    Tcl_DString text;
    const char* const word = Tcl_ExternalToUtfDString(nullptr, path.c_str(), -1, &text);
    char* const list = Tcl_Merge(1, &word);
    std::string quoted = list;
    Tcl_Free(list);
    Tcl_DStringFree(&text);
    return quoted;
}

std::string findExpressionFault(std::string_view text) {
    if (closesEarly(text))
        return "unbalanced close-brace in the expression \"" + std::string(text) + "\"";
    if (countSubstitutions(text) > kMostSubstitutions)
        return "more than " + std::to_string(kMostSubstitutions) +
               " substitutions in one expression";
    return {};
}

} // namespace hbs_addressing
