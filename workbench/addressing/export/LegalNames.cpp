#include "workbench/addressing/export/LegalNames.h"

#include <algorithm>

namespace tq {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isOfIdentifier(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isDigit(c) || c == '_';
}

} // namespace

std::string identifier(std::string_view text) {
    std::string name(text);
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !isOfIdentifier(c); }, '_');
    return name.empty() || isDigit(name.front()) ? "_" + name : name;
}

std::string capital(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return text;
}

bool LegalNames::isFree(const std::string& name) const {
    return !m_taken.contains(name) && m_reserved.find(" " + name + " ") == std::string_view::npos;
}

std::string LegalNames::take(std::string wanted, std::string_view original) {
    if (isFree(wanted)) {
        m_taken.insert(wanted);
        return wanted;
    }
    unsigned& suffix = m_suffixes[wanted];
    std::string name;
    do
        name = wanted + "_" + std::to_string(suffix++ + 2);
    while (!isFree(name));
    m_taken.insert(name);
    if (m_sink)
        m_sink(makeDiagnostic(Severity::Remark, "name-clash", {},
                              "\"" + std::string(original) + "\" is called \"" + name +
                                  "\" in the exported file: the name \"" + wanted + "\" is taken"));
    return name;
}

} // namespace tq
