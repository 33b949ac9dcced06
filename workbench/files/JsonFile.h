// JSON files written by people, kept with the places of their values, so that an error can name
// file, line and column.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"
#include "workbench/files/InputError.h"

namespace tq {

/// One value of a JSON file.
struct TQ_WORKBENCH_EXPORT JsonNode {
    /// The kinds of JSON values.
    enum class Kind { Null, Boolean, Number, String, Array, Object };

    struct Member;

    Kind kind = Kind::Null;      ///< which of the members below count
    std::size_t offset = 0;      ///< byte at which the value starts
    bool boolean = false;        ///< of a Boolean
    double number = 0;           ///< of a Number
    std::string text;            ///< of a String; of a Number, as written
    std::vector<JsonNode> items; ///< of an Array
    std::vector<Member> members; ///< of an Object, in file order

    /// The first member of that name, or null.
    [[nodiscard]] const JsonNode* find(std::string_view name) const;
};

/// A name with its value.
struct JsonNode::Member {
    std::string name;
    std::size_t offset = 0; ///< byte at which the name starts
    JsonNode value;
};

/// A JSON file held whole. Reads UTF-8, stored plain or protected, within the limit of all readers
/// with at most `kMostLevels` levels of nesting and `kMostValues` values and names, which take up
/// to 200 bytes each.
///
///     JsonFile file = JsonFile::read("tree.json");
///     file.expectKeys(file.root(), {"reference_mhz", "domains"});
///     double reference = file.number(file.require(file.root(), "reference_mhz"));
///
/// Every operation raises `InputError` with the place where the file isn't as asked. Copies share
/// the content.
class TQ_WORKBENCH_EXPORT JsonFile {
public:
    /// Deeper nesting is an error.
    static constexpr std::size_t kMostLevels = 200;
    static constexpr std::size_t kMostValues = 8'388'608;

    /// Reads a whole file, or a text as if it were that of the file `path`.
    static JsonFile read(const std::string& path);
    static JsonFile parse(std::string path, std::string content);

    /// As given to `read` or `parse`.
    [[nodiscard]] const std::string& path() const;
    /// The outermost value. Lives as long as any copy of the file.
    [[nodiscard]] const JsonNode& root() const;

    /// Raises the error "FILE:LINE:COLUMN: error: <what>".
    [[noreturn]] void fail(std::size_t offset, const std::string& what) const;
    /// The place of a byte.
    [[nodiscard]] Place placeOf(std::size_t offset) const;
    /// The finding "unknown-key" for a member, with the nearest of the known names.
    [[nodiscard]] Diagnostic unknownKey(const JsonNode::Member& member,
                                        std::initializer_list<std::string_view> known,
                                        Severity severity) const;

    /// Raises the error for the first member that isn't among `known`, or that comes twice.
    void expectKeys(const JsonNode& object, std::initializer_list<std::string_view> known) const;
    /// The member, or an error that it is missing.
    [[nodiscard]] const JsonNode& require(const JsonNode& object, std::string_view name) const;

    // The value as the wanted type, or an error that says what was expected.
    [[nodiscard]] double number(const JsonNode& node) const;
    [[nodiscard]] bool boolean(const JsonNode& node) const;
    [[nodiscard]] const std::string& string(const JsonNode& node) const;
    [[nodiscard]] const std::vector<JsonNode>& array(const JsonNode& node) const;
    [[nodiscard]] const std::vector<JsonNode::Member>& object(const JsonNode& node) const;

private:
    struct Content;

    explicit JsonFile(std::shared_ptr<const Content> content);
    void expect(const JsonNode& node, JsonNode::Kind kind) const;

    std::shared_ptr<const Content> m_content;
};

} // namespace tq
