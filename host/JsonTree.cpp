#include "host/JsonTree.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <set>
#include <utility>

#include "HSTStringUtils.h"
#include "rapidjson_headers.h"

namespace host {

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

/// Receives the parser's events and hangs the values into the tree. The iterative parser stands on
/// a bracket when it reports it, but just behind any other token, so the start of those is found by
/// looking back.
class TreeBuilder {
public:
    using Stream = rapidjson::MemoryStream;

    TreeBuilder(std::string_view content, const Stream& stream, JsonNode& root)
        : m_content(content), m_stream(stream), m_root(root) {}

    [[nodiscard]] bool tooDeep() const { return m_tooDeep; }

    bool Null() { return scalar(JsonNode::Kind::Null, m_stream.Tell() - 4); }
    bool Bool(bool value) {
        const bool stored = scalar(JsonNode::Kind::Boolean, m_stream.Tell() - (value ? 4U : 5U));
        m_last->boolean = value;
        return stored;
    }
    // Numbers come as text (kParseNumbersAsStringsFlag), so these are never called.
    bool Int(int) { return false; }
    bool Uint(unsigned) { return false; }
    bool Int64(std::int64_t) { return false; }
    bool Uint64(std::uint64_t) { return false; }
    bool Double(double) { return false; }
    bool RawNumber(const char* text, rapidjson::SizeType length, bool) {
        scalar(JsonNode::Kind::Number, m_stream.Tell() - length);
        m_last->text.assign(text, length);
        m_last->number = HSTStringUtils::to_double(m_last->text);
        return true;
    }
    bool String(const char* text, rapidjson::SizeType length, bool) {
        scalar(JsonNode::Kind::String, stringStart());
        m_last->text.assign(text, length);
        return true;
    }
    bool Key(const char* text, rapidjson::SizeType length, bool) {
        m_open.back()->members.push_back({{text, length}, stringStart(), {}});
        return true;
    }
    bool StartObject() { return open(JsonNode::Kind::Object); }
    bool EndObject(rapidjson::SizeType) { return close(); }
    bool StartArray() { return open(JsonNode::Kind::Array); }
    bool EndArray(rapidjson::SizeType) { return close(); }

private:
    JsonNode& place() {
        if (m_open.empty())
            return m_root;
        JsonNode& parent = *m_open.back();
        return parent.kind == JsonNode::Kind::Array ? parent.items.emplace_back()
                                                    : parent.members.back().value;
    }
    bool scalar(JsonNode::Kind kind, std::size_t offset) {
        m_last = &place();
        m_last->kind = kind;
        m_last->offset = offset;
        return true;
    }
    bool open(JsonNode::Kind kind) {
        m_tooDeep = m_open.size() >= static_cast<std::size_t>(JsonFile::kMostLevels);
        if (m_tooDeep)
            return false;
        scalar(kind, m_stream.Tell());
        m_open.push_back(m_last);
        return true;
    }
    bool close() {
        m_open.pop_back();
        return true;
    }
    /// Inside a text every quote is escaped, so the first unescaped one before the end opens it.
    [[nodiscard]] std::size_t stringStart() const {
        std::size_t quote = m_stream.Tell() - 1;
        do
            quote = m_content.rfind('"', quote - 1);
        while (isEscaped(quote));
        return quote;
    }
    [[nodiscard]] bool isEscaped(std::size_t position) const {
        std::size_t backslashes = 0;
        while (backslashes < position && m_content[position - 1 - backslashes] == '\\')
            ++backslashes;
        return backslashes % 2 == 1;
    }
    std::string_view m_content;
    const Stream& m_stream;
    JsonNode& m_root;
    JsonNode* m_last = nullptr;
    std::vector<JsonNode*> m_open;
    bool m_tooDeep = false;
};

} // namespace

const JsonNode* JsonNode::find(std::string_view name) const {
    const auto member = std::find_if(members.begin(), members.end(),
                                     [&](const Member& m) { return m.name == name; });
    return member == members.end() ? nullptr : &member->value;
}

JsonFile JsonFile::read(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    std::string content;
    std::array<char, 1 << 16> chunk;
    while (stream.read(chunk.data(), chunk.size()) || stream.gcount() > 0) {
        content.append(chunk.data(), static_cast<std::size_t>(stream.gcount()));
        if (content.size() > kMostBytes)
            throw BadInput(path + ": the file is larger than " + std::to_string(kMostBytes) +
                           " bytes");
    }
    if (!stream.is_open() || stream.bad())
        throw BadInput("'" + path + "': the file can't be read");
    return parse(path, std::move(content));
}

JsonFile JsonFile::parse(std::string path, std::string content) {
    JsonFile file;
    file.m_path = std::move(path);
    file.m_content = std::move(content);

    rapidjson::MemoryStream stream(file.m_content.data(), file.m_content.size());
    TreeBuilder builder(file.m_content, stream, file.m_root);
    rapidjson::Reader reader;
    constexpr unsigned kFlags = rapidjson::kParseIterativeFlag |
                                rapidjson::kParseValidateEncodingFlag |
                                rapidjson::kParseNumbersAsStringsFlag;
    const rapidjson::ParseResult result = reader.Parse<kFlags>(stream, builder);
    if (builder.tooDeep())
        file.fail(result.Offset(), "nested deeper than " + std::to_string(kMostLevels) + " levels");
    if (result.IsError())
        file.fail(result.Offset(), rapidjson::GetParseError_En(result.Code()));
    return file;
}

std::string JsonFile::place(std::size_t offset) const {
    const std::string_view before =
        std::string_view(m_content).substr(0, std::min(offset, m_content.size()));
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t lineStart = before.rfind('\n') + 1; // npos + 1 is 0
    return m_path + ":" + std::to_string(line) + ":" +
           std::to_string(before.size() - lineStart + 1);
}

void JsonFile::fail(std::size_t offset, const std::string& what) const {
    throw BadInput(place(offset) + ": " + what);
}

void JsonFile::expectKeys(const JsonNode& object,
                          std::initializer_list<std::string_view> known) const {
    std::set<std::string_view> seen;
    for (const auto& member : this->object(object)) {
        if (!seen.insert(member.name).second)
            fail(member.offset, "the key \"" + member.name + "\" stands here a second time");
        if (std::find(known.begin(), known.end(), member.name) != known.end())
            continue;
        std::string list;
        for (const auto& name : known)
            list.append(list.empty() ? "" : ", ").append(name);
        fail(member.offset, "unknown key \"" + member.name + "\", expected one of: " + list);
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

} // namespace host
