#include "workbench/text/XmlText.h"

#include "base/RapidJson.h"
#include "workbench/text/Text.h"

namespace tq {

namespace {

bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// The length of the character that the text starts with; 0 for none that XML can hold.
std::size_t characterLength(std::string_view text) {
    rapidjson::MemoryStream stream(text.data(), text.size());
    unsigned character = 0;
    const bool isValid = rapidjson::UTF8<>::Decode(stream, &character);
    return isValid && character != 0xFFFE && character != 0xFFFF ? stream.Tell() : 0;
}

} // namespace

std::string xmlText(std::string_view text) {
    const std::string shown = printable(text);
    std::string result;
    for (std::string_view rest = shown; !rest.empty();) {
        const std::size_t length = characterLength(rest);
        result += length == 0 ? "\uFFFD" : rest.substr(0, length);
        rest.remove_prefix(length == 0 ? 1 : length);
    }
    return result;
}

std::string shortened(const std::string& text, std::size_t most) {
    std::size_t characters = 0;
    std::size_t cut = 0; ///< where the last character that stays ends
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (continuesCharacter(text[i]))
            continue;
        if (++characters == most)
            cut = i;
    }
    return characters <= most ? text : text.substr(0, cut) + "\u2026";
}

} // namespace tq
