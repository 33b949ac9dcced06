#include "workbench/ipxact/WideText.h"

#include <cstdint>

namespace tq::ipxact {

namespace {

std::uint32_t codePoint(WideView text, std::size_t& at) {
    const std::uint32_t first = text[at++];
    const bool isLead = first >= 0xD800U && first < 0xDC00U;
    if (!isLead || at == text.size())
        return first;
    return 0x10000U + ((first - 0xD800U) << 10U) + (text[at++] - 0xDC00U);
}

void appendCodePoint(std::string& out, std::uint32_t code) {
    const auto tail = [&out](std::uint32_t bits) {
        out += static_cast<char>(0x80U | (bits & 0x3FU));
    };
    if (code < 0x800U) {
        out += static_cast<char>(0xC0U | (code >> 6U));
    } else if (code < 0x10000U) {
        out += static_cast<char>(0xE0U | (code >> 12U));
        tail(code >> 6U);
    } else {
        out += static_cast<char>(0xF0U | (code >> 18U));
        tail(code >> 12U);
        tail(code >> 6U);
    }
    tail(code);
}

} // namespace

void appendText(std::string& out, WideView text) {
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] < 0x80)
            out += static_cast<char>(text[at++]);
        else
            appendCodePoint(out, codePoint(text, at));
    }
}

std::string toUtf8(const XMLCh* text) {
    std::string out;
    appendText(out, text == nullptr ? WideView() : WideView(text));
    return out;
}

} // namespace tq::ipxact
