// JSON files written by people, kept with the places of their values, so that a complaint can name
// file, line and column.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "host/Command.h"

namespace host {

/// One value of a JSON file.
struct JsonNode {
    enum class Kind { Null, Boolean, Number, String, Array, Object };

    struct Member;

    Kind kind = Kind::Null;
    std::size_t offset = 0;      ///< byte at which the value starts
    bool boolean = false;        ///< of a Boolean
    double number = 0;           ///< of a Number
    std::string text;            ///< of a String; of a Number, as written
    std::vector<JsonNode> items; ///< of an Array
    std::vector<Member> members; ///< of an Object, in file order

    /// The first member of that name, or null.
    [[nodiscard]] const JsonNode* find(std::string_view name) const;
};

struct JsonNode::Member {
    std::string name;
    std::size_t offset = 0; ///< byte at which the name starts
    JsonNode value;
};

/// A JSON file held whole. Reads UTF-8 of at most `kMostBytes` with at most `kMostLevels` levels
/// of nesting.
///
///     JsonFile file = JsonFile::read("tree.json");
///     file.expectKeys(file.root(), {"reference_mhz", "domains"});
///     double reference = file.number(file.require(file.root(), "reference_mhz"));
///
/// Every operation raises `BadInput` with "FILE:LINE:COLUMN: …" where the file isn't as asked.
class JsonFile {
public:
    static constexpr int kMostLevels = 200;
    static constexpr std::size_t kMostBytes = std::size_t{256} << 20U;

    static JsonFile read(const std::string& path);
    static JsonFile parse(std::string path, std::string content);

    [[nodiscard]] const std::string& path() const { return m_path; }
    [[nodiscard]] const JsonNode& root() const { return m_root; }

    /// Raises the complaint "FILE:LINE:COLUMN: <what>".
    [[noreturn]] void fail(std::size_t offset, const std::string& what) const;
    /// "FILE:LINE:COLUMN" of a byte; both count from 1, columns in bytes.
    [[nodiscard]] std::string place(std::size_t offset) const;

    /// Complains of the first member that isn't among `known`, naming those that are, or that
    /// stands twice.
    void expectKeys(const JsonNode& object, std::initializer_list<std::string_view> known) const;
    /// The member, or a complaint that it is missing.
    [[nodiscard]] const JsonNode& require(const JsonNode& object, std::string_view name) const;

    // The value as the wanted type, or a complaint that says what was expected.
    [[nodiscard]] double number(const JsonNode& node) const;
    [[nodiscard]] bool boolean(const JsonNode& node) const;
    [[nodiscard]] const std::string& string(const JsonNode& node) const;
    [[nodiscard]] const std::vector<JsonNode>& array(const JsonNode& node) const;
    [[nodiscard]] const std::vector<JsonNode::Member>& object(const JsonNode& node) const;

private:
    JsonFile() = default;
    void expect(const JsonNode& node, JsonNode::Kind kind) const;

    std::string m_path;
    std::string m_content;
    JsonNode m_root;
};

} // namespace host
