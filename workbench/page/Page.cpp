#include "workbench/page/Page.h"

#include "workbench/text/XmlText.h"

namespace tq {

namespace {

/// No "<" of the data can end the script that holds it.
std::string escapedData(std::string_view data) {
    std::string text;
    text.reserve(data.size());
    for (const char c : data) {
        if (c == '<')
            text += "\\u003c";
        else
            text += c;
    }
    return text;
}

std::string escapedText(const std::string& text) {
    std::string escaped;
    for (const char c : xmlText(text)) {
        if (c == '<')
            escaped += "&lt;";
        else if (c == '&')
            escaped += "&amp;";
        else
            escaped += c;
    }
    return escaped;
}

} // namespace

std::string makePage(const PageParts& parts) {
    std::string page = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                       "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                       "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                       "style-src 'unsafe-inline'; script-src 'unsafe-inline'; img-src data:\">\n"
                       "<link rel=\"icon\" href=\"data:,\">\n<title>" +
                       escapedText(parts.title) + "</title>\n<style>";
    page.append(parts.style).append("</style>\n</head>\n<body>\n").append(parts.body);
    page += "<script type=\"application/json\" id=\"data\">" + escapedData(parts.data);
    page += "</script>\n<script>\n'use strict';\n"
            "const DATA = JSON.parse(document.getElementById('data').textContent);\n";
    return page.append(parts.script).append("</script>\n</body>\n</html>\n");
}

} // namespace tq
