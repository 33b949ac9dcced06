#include "workbench/text/DiagnosticJson.h"

#include "workbench/text/DiagnosticText.h"

namespace tq {

namespace {

void writePlace(JsonWriter& json, const Place& place) {
    json.member("file", place.file);
    json.member("line", place.line);
    json.member("column", place.column);
}

void write(JsonWriter& json, const Diagnostic& diagnostic) {
    json.beginObject();
    json.member("severity", severityName(diagnostic.severity));
    json.member("id", diagnostic.id);
    writePlace(json, diagnostic.place);
    json.member("text", diagnostic.text);
    json.member("expected", diagnostic.expected);
    json.beginArray("notes");
    for (const DiagnosticNote& note : diagnostic.notes) {
        json.beginObject();
        writePlace(json, note.place);
        json.member("text", note.text);
        json.endObject();
    }
    json.endArray();
    json.endObject();
}

} // namespace

void writeDiagnostics(JsonWriter& json, const std::vector<Diagnostic>& diagnostics) {
    json.beginArray();
    for (const Diagnostic& diagnostic : diagnostics)
        write(json, diagnostic);
    json.endArray();
}

} // namespace tq
