#include "workbench/text/DiagnosticText.h"

#include <algorithm>
#include <string_view>

#include "workbench/text/DiagnosticJson.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/Text.h"

namespace tq {

namespace {

[[nodiscard]] std::string placeText(const Place& place) {
    std::string text = printable(place.file);
    if (place.line != 0) {
        text += ":" + std::to_string(place.line);
        if (place.column != 0)
            text += ":" + std::to_string(place.column);
    }
    return text.empty() ? text : text + ": ";
}

/// A tab has no width of its own in a picture of one line.
[[nodiscard]] std::string shownLine(std::string_view line) {
    std::string text(line);
    std::replace(text.begin(), text.end(), '\t', ' ');
    return printable(text);
}

/// The line and a caret under the column; empty where the line is unknown.
[[nodiscard]] std::string picture(const Place& place) {
    if (place.lineText.empty() || place.column == 0)
        return {};
    const std::string cut = place.lineTextOffset == 0 ? "" : "...";
    const std::size_t at = place.column - 1 - std::min(place.column - 1, place.lineTextOffset);
    const std::string before = cut + shownLine(std::string_view(place.lineText).substr(0, at));
    return cut + shownLine(place.lineText) + "\n" + std::string(displayWidth(before), ' ') + "^\n";
}

} // namespace

const char* severityName(Severity severity) {
    switch (severity) {
    case Severity::Remark:
        return "remark";
    case Severity::Warning:
        return "warning";
    case Severity::Error:
        break;
    }
    return "error";
}

std::string countsText(const DiagnosticList& findings) {
    const auto counted = [&](Severity severity) {
        const std::size_t count = findings.count(severity);
        return std::to_string(count) + " " + severityName(severity) + (count == 1 ? "" : "s");
    };
    return counted(Severity::Error) + ", " + counted(Severity::Warning) + ", " +
           counted(Severity::Remark);
}

std::string headline(const Diagnostic& diagnostic) {
    std::string text = placeText(diagnostic.place) + severityName(diagnostic.severity) + ": " +
                       printable(diagnostic.text);
    if (!diagnostic.expected.empty())
        text += ", expected " + printable(diagnostic.expected);
    if (!diagnostic.id.empty())
        text += " [" + printable(diagnostic.id) + "]";
    return text;
}

std::string describe(const Diagnostic& diagnostic) {
    std::string text = headline(diagnostic) + "\n" + picture(diagnostic.place);
    for (const DiagnosticNote& note : diagnostic.notes)
        text +=
            placeText(note.place) + "note: " + printable(note.text) + "\n" + picture(note.place);
    return text;
}

std::string diagnosticsJson(const std::vector<Diagnostic>& diagnostics) {
    JsonWriter json;
    writeDiagnostics(json, diagnostics);
    return json.text();
}

std::string errorJson(const Diagnostic& error) {
    JsonWriter json;
    json.beginObject();
    json.writeKey("diagnostics");
    writeDiagnostics(json, {error});
    json.endObject();
    return json.text();
}

} // namespace tq
