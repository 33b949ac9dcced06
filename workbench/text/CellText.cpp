#include "workbench/text/CellText.h"

#include "workbench/text/Text.h"

namespace tq {

std::string csvCell(std::string_view text) {
    std::string content = validUtf8(text);
    if (!content.empty() &&
        std::string_view("=+-@\t\r").find(content.front()) != std::string_view::npos)
        content.insert(0, "'");
    if (content.find_first_of(",\"\r\n") == std::string::npos)
        return content;
    std::string quoted = "\"";
    for (const char c : content)
        quoted.append(c == '"' ? "\"" : "").push_back(c);
    return quoted + "\"";
}

std::string markdownText(std::string_view text) {
    std::string result;
    for (const char c : printable(validUtf8(text))) {
        if (std::string_view("\\`*_{}[]<>()#|~&!").find(c) != std::string_view::npos)
            result += '\\';
        result += c;
    }
    return result;
}

std::string markdownRow(std::initializer_list<std::string> cells) {
    std::string text = "|";
    for (const std::string& cell : cells)
        text += " " + cell + " |";
    return text + "\n";
}

} // namespace tq
