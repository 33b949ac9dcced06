#include "workbench/files/JsonFile.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/JsonAccess.h"
#include "base/JsonDocument.h"
#include "diagnostics/NearestName.h"
#include "diagnostics/SourceText.h"
#include "workbench/files/InputText.h"

namespace tq {

namespace {

const char* kindName(JsonNode::Kind kind) {
    switch (kind) {
    case JsonNode::Kind::Null:
        return "null";
    case JsonNode::Kind::Boolean:
        return "true or false";
    case JsonNode::Kind::Number:
        return "a number";
    case JsonNode::Kind::String:
        return "a text";
    case JsonNode::Kind::Array:
        return "an array";
    case JsonNode::Kind::Object:
        return "an object";
    }
    return "a value";
}

/// A value with all below it, as far down as the document has levels.
class TreeBuilder {
public:
    TreeBuilder(std::string_view content, const JsonDocument& document)
        : m_content(content), m_nextOffset(document.offsets().begin()) {}

    void build(const JsonValue& value, JsonNode& node) {
        node.offset = *m_nextOffset++;
        if (value.IsObject())
            buildMembers(value, node);
        else if (value.IsArray())
            buildItems(value, node);
        else if (value.IsNumber())
            setNumber(value.GetDouble(), node);
        else if (value.IsString())
            set(node, JsonNode::Kind::String, base::textOf(value));
        else if (value.IsBool())
            setBoolean(value.GetBool(), node);
    }

private:
    static void set(JsonNode& node, JsonNode::Kind kind, std::string_view text) {
        node.kind = kind;
        node.text = text;
    }
    static void setBoolean(bool value, JsonNode& node) {
        node.kind = JsonNode::Kind::Boolean;
        node.boolean = value;
    }
    void setNumber(double value, JsonNode& node) const {
        const std::string_view rest = m_content.substr(node.offset);
        set(node, JsonNode::Kind::Number, rest.substr(0, rest.find_first_not_of(kNumberBytes)));
        node.number = value;
    }
    void buildMembers(const JsonValue& object, JsonNode& node) {
        node.kind = JsonNode::Kind::Object;
        node.members.reserve(object.MemberCount());
        for (const auto& member : object.GetObject()) {
            auto& built = node.members.emplace_back();
            built.name = base::textOf(member.name);
            built.offset = *m_nextOffset++;
            build(member.value, built.value);
        }
    }
    void buildItems(const JsonValue& array, JsonNode& node) {
        node.kind = JsonNode::Kind::Array;
        node.items.reserve(array.Size());
        for (const JsonValue& element : array.GetArray())
            build(element, node.items.emplace_back());
    }

    static constexpr const char* kNumberBytes = "+-.0123456789Ee";

    std::string_view m_content;
    std::vector<std::uint32_t>::const_iterator m_nextOffset; ///< values and names come in order
};

} // namespace

const JsonNode* JsonNode::find(std::string_view name) const {
    const auto member = std::find_if(members.begin(), members.end(),
                                     [&](const Member& m) { return m.name == name; });
    return member == members.end() ? nullptr : &member->value;
}

struct JsonFile::Content {
    Content(std::string path, std::string content)
        : text(std::move(content)), source(std::move(path), text) {}

    std::string text;
    SourceText source;
    JsonNode root;
};

JsonFile::JsonFile(std::shared_ptr<const Content> content) : m_content(std::move(content)) {}

JsonFile JsonFile::read(const std::string& path) {
    std::string text = readInput(path);
    // Some editors begin files with a byte order mark.
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (text.compare(0, mark.size(), mark) == 0)
        text.erase(0, mark.size());
    return parse(path, std::move(text));
}

JsonFile JsonFile::parse(std::string path, std::string text) {
    const auto content = std::make_shared<Content>(std::move(path), std::move(text));
    JsonFile file(content);
    JsonDocument document;
    document.Parse(content->text, {.mostLevels = kMostLevels,
                                   .mostValues = kMostValues,
                                   .validatesEncoding = true,
                                   .keepsPlaces = true});
    if (document.hasTooManyValues())
        file.fail(document.GetErrorOffset(),
                  "more than " + std::to_string(kMostValues) + " values and names");
    if (document.GetParseError() == rapidjson::kParseErrorTermination)
        file.fail(document.GetErrorOffset(),
                  "nested deeper than " + std::to_string(kMostLevels) + " levels");
    if (document.HasParseError())
        file.fail(document.GetErrorOffset(), rapidjson::GetParseError_En(document.GetParseError()));
    TreeBuilder(content->text, document).build(document, content->root);
    return file;
}

const std::string& JsonFile::path() const {
    return m_content->source.file();
}

const JsonNode& JsonFile::root() const {
    return m_content->root;
}

Place JsonFile::placeOf(std::size_t offset) const {
    return m_content->source.placeOf(offset);
}

void JsonFile::fail(std::size_t offset, const std::string& what) const {
    throw InputError(makeDiagnostic(Severity::Error, "", placeOf(offset), what));
}

Diagnostic JsonFile::unknownKey(const JsonNode::Member& member,
                                std::initializer_list<std::string_view> known,
                                Severity severity) const {
    return makeDiagnostic(severity, "unknown-key", placeOf(member.offset),
                          "unknown key \"" + member.name + "\"", oneOfNames(member.name, known));
}

void JsonFile::expectKeys(const JsonNode& object,
                          std::initializer_list<std::string_view> known) const {
    const auto& members = this->object(object);
    for (auto member = members.begin(); member != members.end(); ++member) {
        // All before it are known and different, so they are few.
        const auto first = std::find_if(members.begin(), member,
                                        [&](const auto& m) { return m.name == member->name; });
        if (first != member) {
            Diagnostic finding =
                makeDiagnostic(Severity::Error, "duplicate-key", placeOf(member->offset),
                               "a second key \"" + member->name + "\"");
            finding.notes.push_back({placeOf(first->offset), "first defined here"});
            throw InputError(std::move(finding));
        }
        // Editors complete keys by the schema that a file names.
        const bool namesSchema = &object == &root() && member->name == "$schema";
        if (!namesSchema && std::find(known.begin(), known.end(), member->name) == known.end())
            throw InputError(unknownKey(*member, known, Severity::Error));
    }
}

const JsonNode& JsonFile::require(const JsonNode& object, std::string_view name) const {
    expect(object, JsonNode::Kind::Object);
    const JsonNode* node = object.find(name);
    if (node == nullptr)
        fail(object.offset, "the key \"" + std::string(name) + "\" is missing");
    return *node;
}

void JsonFile::expect(const JsonNode& node, JsonNode::Kind kind) const {
    if (node.kind != kind)
        fail(node.offset,
             std::string("expected ") + kindName(kind) + ", found " + kindName(node.kind));
}

double JsonFile::number(const JsonNode& node) const {
    expect(node, JsonNode::Kind::Number);
    return node.number;
}

bool JsonFile::boolean(const JsonNode& node) const {
    expect(node, JsonNode::Kind::Boolean);
    return node.boolean;
}

const std::string& JsonFile::string(const JsonNode& node) const {
    expect(node, JsonNode::Kind::String);
    return node.text;
}

const std::vector<JsonNode>& JsonFile::array(const JsonNode& node) const {
    expect(node, JsonNode::Kind::Array);
    return node.items;
}

const std::vector<JsonNode::Member>& JsonFile::object(const JsonNode& node) const {
    expect(node, JsonNode::Kind::Object);
    return node.members;
}

} // namespace tq
