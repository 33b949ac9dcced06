#include "ComMsgMgr.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <iostream>
#include <limits>

namespace {

struct CatalogueEntry {
    std::string_view id;
    std::string_view sentence;
};

constexpr std::array<CatalogueEntry, 9> kCatalogue{{
    {"90-2", "The JSON text is malformed: %s"},
    {"90-4", "The hard block metadata file '%s' couldn't be read whole"},
    {"90-8", "A JSON value of type %s is unsuitable for the key '%s'"},
    {"90-9", "The required key '%s' is missing"},
    {"91-42", "Clock tree solved: reference %f MHz, %d enabled peripherals, sum of relative errors "
              "%f at tolerance %f, %d ms"},
    {"91-44", "The definition '%s' couldn't be merged into the sub-block '%s'"},
    {"91-45", "'%s' isn't of the form vendor:library:name:version"},
    {"91-48", "Unknown key '%s'; the known keys are: %s"},
    {"92-1", "The block model file '%s' can't be used: %s"},
}};

std::string_view sentenceOf(std::string_view id) {
    for (const auto& entry : kCatalogue)
        if (entry.id == id)
            return entry.sentence;
    return {};
}

/// Puts the arguments in place of %s, %d and %f, in order. A place without an argument, and any
/// other text, is kept.
std::string filled(std::string_view sentence, const std::vector<std::string>& arguments) {
    std::string text;
    std::size_t next = 0;
    for (std::size_t i = 0; i < sentence.size(); ++i) {
        const bool place = sentence[i] == '%' && i + 1 < sentence.size() &&
                           std::string_view("sdf").find(sentence[i + 1]) != std::string_view::npos;
        if (place && next < arguments.size()) {
            text += arguments[next++];
            ++i;
        } else {
            text += sentence[i];
        }
    }
    return text;
}

std::string withoutSentence(std::string_view id, const std::vector<std::string>& arguments) {
    std::string text(id);
    const char* separator = ": ";
    for (const auto& argument : arguments) {
        text += separator + argument;
        separator = ", ";
    }
    return text;
}

void writeToStandardError(const ComMsg& message) {
    if (message.scope == "cdo.gen")
        return;
    const std::string text = message.text();
    std::cerr << text;
    if (text.empty() || text.back() != '\n')
        std::cerr << '\n';
}

ComMsgMgr::Sink& currentSink() {
    static ComMsgMgr::Sink sink = writeToStandardError;
    return sink;
}

} // namespace

std::string ComMsg::text() const {
    if (format.empty() || format.front() != '@')
        return filled(format, arguments);
    const std::size_t end = format.find('@', 1);
    const std::string_view id =
        std::string_view(format).substr(1, end == std::string::npos ? end : end - 1);
    const std::string_view sentence = sentenceOf(id);
    return sentence.empty() ? withoutSentence(id, arguments) : filled(sentence, arguments);
}

ComMsgMgr::Sink ComMsgMgr::setSink(Sink sink) {
    return std::exchange(currentSink(), sink ? std::move(sink) : Sink(writeToStandardError));
}

void ComMsgMgr::deliver(const ComMsg& message) {
    currentSink()(message);
}

std::string ComMsgMgr::toText(double value) {
    // The longest fixed form of a double: a sign, 309 digits, the point and six decimals.
    std::array<char, std::numeric_limits<double>::max_exponent10 + 16> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::fixed, 6);
    return {buffer.data(), result.ptr};
}
