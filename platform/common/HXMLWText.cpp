#include "HXMLWText.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

#include "HXMLWDocument.h"

namespace {

/// Bytes of a value that need no escape.
constexpr std::array<bool, 256> kVerbatim = [] {
    std::array<bool, 256> verbatim{};
    for (std::size_t byte = 0x20; byte < 0x80; ++byte)
        verbatim[byte] = byte != '&' && byte != '<' && byte != '"';
    return verbatim;
}();

std::string escaped(std::string_view value) {
    std::string fitted;
    HXMLWDocument::appendFitted(fitted, value);
    std::string result;
    for (const char c : fitted) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '"')
            result += "&quot;";
        else if (code < 0x20)
            result.append("&#").append(
                {static_cast<char>('0' + code / 10), static_cast<char>('0' + code % 10), ';'});
        else
            result += c;
    }
    return result;
}

/// The end of the piece in its new place.
char* appendTo(char* to, std::string_view piece) {
    // An empty view may have no place at all.
    if (!piece.empty())
        std::memcpy(to, piece.data(), piece.size());
    return to + piece.size();
}

} // namespace

void HXMLWText::start(std::string_view element) {
    endTag();
    const std::size_t levels = m_depth + m_open.size();
    char* end = std::fill_n(makeRoom(levels + 1 + element.size()), levels, '\t');
    *end++ = '<';
    appendTo(end, element);
    m_open.push_back(element);
    m_inTag = true;
}

void HXMLWText::attribute(std::string_view name, std::string_view value) {
    const bool isVerbatim = std::all_of(value.begin(), value.end(), [](char c) {
        return kVerbatim[static_cast<unsigned char>(c)];
    });
    const std::string other = isVerbatim ? std::string() : escaped(value);
    if (!isVerbatim)
        value = other;
    char* end = makeRoom(name.size() + value.size() + 4);
    *end++ = ' ';
    end = appendTo(end, name);
    *end++ = '=';
    *end++ = '"';
    end = appendTo(end, value);
    *end = '"';
}

void HXMLWText::end() {
    const std::string_view element = m_open.back();
    m_open.pop_back();
    if (m_inTag) {
        put(" />\n");
        m_inTag = false;
        return;
    }
    const std::size_t levels = m_depth + m_open.size();
    char* end = std::fill_n(makeRoom(levels + element.size() + 4), levels, '\t');
    appendTo(appendTo(appendTo(end, "</"), element), ">\n");
}

void HXMLWText::append(std::string_view elements) {
    if (elements.empty())
        return;
    endTag();
    put(elements);
}

void HXMLWText::endTag() {
    if (m_inTag)
        put(">\n");
    m_inTag = false;
}

void HXMLWText::put(std::string_view piece) {
    appendTo(makeRoom(piece.size()), piece);
}

/// Where so many more bytes go; they count already.
char* HXMLWText::makeRoom(std::size_t bytes) {
    if (m_bytes.size() - m_length < bytes)
        m_bytes.resize(std::max(m_bytes.size() * 2, m_length + bytes));
    char* room = m_bytes.data() + m_length;
    m_length += bytes;
    return room;
}
