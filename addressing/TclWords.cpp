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

/// Whether a "}" of `text` is the partner of the brace that was opened in front of it.
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
    if (isPlainBracketedWord(path) && path.find_first_of("{}") == std::string::npos)
        return path;
    const char* const word = path.c_str();
    char* const list = Tcl_Merge(1, &word);
    std::string quoted = list;
    Tcl_Free(list);
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
