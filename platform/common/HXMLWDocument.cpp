#include "HXMLWDocument.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>

namespace {

constexpr const char* kReplacement = "\xEF\xBF\xBD"; // U+FFFD

constexpr bool isLetter(int byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte == '_' ||
           byte == ':';
}

constexpr bool isDigitLike(int byte) {
    return (byte >= '0' && byte <= '9') || byte == '-' || byte == '.';
}

/// Where a byte needs no escape. A table, as every byte of a document is looked at.
struct ByteUse {
    bool name = false;
    bool value = false; ///< ASCII, if need be as a character reference
};

constexpr std::array<ByteUse, 256> kByteUses = [] {
    std::array<ByteUse, 256> uses{};
    for (int byte = 0; byte < 0x80; ++byte)
        uses[static_cast<std::size_t>(byte)] = {isLetter(byte) || isDigitLike(byte),
                                                byte >= 0x20 || byte == '\t' || byte == '\n' ||
                                                    byte == '\r'};
    return uses;
}();

bool isNameStart(char c) {
    return isLetter(static_cast<unsigned char>(c));
}

bool isPlain(char c) {
    return kByteUses[static_cast<unsigned char>(c)].value;
}

std::string fittedName(std::string_view name) {
    std::string fitted(name);
    for (char& c : fitted)
        if (!kByteUses[static_cast<unsigned char>(c)].name)
            c = '_';
    if (fitted.empty() || !isNameStart(fitted.front()))
        fitted.insert(0, 1, '_');
    return fitted;
}

struct Character {
    std::size_t bytes = 0; ///< 0 where the text doesn't start with UTF-8
    bool allowed = false;  ///< by XML 1.0
};

/// The character beyond ASCII that `text` starts with.
Character wideCharacter(std::string_view text) {
    struct Form {
        unsigned lead, mask, least;
    };
    // Lead byte, its marking bits, and the least character: below it a shorter form exists.
    static constexpr std::array<Form, 3> kForms{
        {{0xC0, 0xE0, 0x80}, {0xE0, 0xF0, 0x800}, {0xF0, 0xF8, 0x10000}}};
    const auto byte = [&](std::size_t i) -> unsigned {
        return static_cast<unsigned char>(text[i]);
    };

    for (std::size_t tail = 1; tail <= kForms.size() && tail < text.size(); ++tail) {
        const Form& form = kForms[tail - 1];
        if ((byte(0) & form.mask) != form.lead)
            continue;
        unsigned code = byte(0) & ~form.mask;
        for (std::size_t i = 1; i <= tail; ++i) {
            if ((byte(i) & 0xC0U) != 0x80U)
                return {};
            code = code << 6U | (byte(i) & 0x3FU);
        }
        const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
        if (code < form.least || surrogate || code > 0x10FFFF)
            return {};
        return {tail + 1, code != 0xFFFE && code != 0xFFFF};
    }
    return {};
}

} // namespace

HXMLWElement* HXMLWDocument::appendTo(pugi::xml_node parent, const char* name) {
    if (*name == '\0')
        return nullptr;
    const pugi::xml_node node = parent.append_child(fitName(name).c_str());
    // A node whose name found no memory has none.
    if (*node.name() == '\0')
        throw std::bad_alloc();
    return &m_elements.emplace_back(*this, node.internal_object());
}

const std::string& HXMLWDocument::fitName(std::string_view name) {
    // Cheap, and tells the names of one element apart well enough.
    const std::size_t hash =
        name.empty() ? 0
                     : name.size() * 7 + std::size_t{static_cast<unsigned char>(name.front())} * 5 +
                           std::size_t{static_cast<unsigned char>(name.back())} * 3;
    auto& [given, fitted] = m_names[hash % m_names.size()];
    if (name != given) {
        fitted = fittedName(name);
        given = name;
    }
    return fitted;
}

void HXMLWDocument::appendFitted(std::string& fitted, std::string_view value) {
    for (std::string_view rest = value; !rest.empty();) {
        const Character character =
            isPlain(rest.front()) ? Character{1, true} : wideCharacter(rest);
        const std::size_t bytes = std::max<std::size_t>(character.bytes, 1);
        if (character.allowed)
            fitted.append(rest.substr(0, bytes));
        else
            fitted += kReplacement;
        rest.remove_prefix(bytes);
    }
}

const char* HXMLWDocument::fitValue(const char* value, std::size_t length) {
    if (std::all_of(value, value + length, isPlain))
        return value;
    m_value.clear();
    appendFitted(m_value, {value, length});
    return m_value.c_str();
}
