// A connectivity file in memory, and the scalar properties of its instances.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/JsonTape.h"
#include "diagnostics/Diagnostic.h"
#include "diagnostics/SourceText.h"
#include "handoff/HWHTables.h"

namespace hwh {

/// The text of a file as it was before it was parsed, for the places of findings.
struct KeptText {
    KeptText(const std::string& fileName, std::string content)
        : text(std::move(content)), source(fileName, text) {}
    KeptText(const KeptText&) = delete;
    KeptText& operator=(const KeptText&) = delete;

    const std::string text;
    const tq::SourceText source;
};

/// Reads `fileName`, stored plain or protected, or raises `HEXError`, naming the file. With a sink
/// it says why too, `kept` gets the text, and the sink first the place where the text isn't JSON.
[[nodiscard]] base::JsonTape readJsonFile(const std::string& fileName,
                                          const tq::DiagnosticSink& sink = {},
                                          std::unique_ptr<KeptText>* kept = nullptr);

/// The value of the first member of that name.
[[nodiscard]] std::optional<base::JsonNode> findMember(const base::JsonNode& object,
                                                       std::string_view name);
/// The same if it is an object, respectively an array.
[[nodiscard]] std::optional<base::JsonNode> findObject(const base::JsonNode& object,
                                                       std::string_view name);
[[nodiscard]] std::optional<base::JsonNode> findArray(const base::JsonNode& object,
                                                      std::string_view name);

/// A text, or the empty one for a value of another type.
[[nodiscard]] inline std::string_view textOf(const base::JsonNode& value) {
    return value.isString() ? value.text() : std::string_view();
}

/// The text of the first member of that name; empty if there is none, or none that is a text.
[[nodiscard]] inline std::string_view findText(const base::JsonNode& object,
                                               std::string_view name) {
    const auto value = findMember(object, name);
    return value ? textOf(*value) : std::string_view();
}

/// The file of one handoff. Must outlive everything that refers to its texts.
class ConnectivityFile {
public:
    /// Both forms send the entry line and read the file, or raise `HEXError`. A sink is told only
    /// why; it makes the file keep its text for places.
    explicit ConnectivityFile(const std::string& fileName, const tq::DiagnosticSink& sink = {});
    /// For metadata that may be split by cells. Keys of `systemInfo` that are looked up and missing
    /// stay as empty entries.
    ConnectivityFile(const std::string& fileName, bool isAddressing, HWHTextMap& systemInfo,
                     const tq::DiagnosticSink& sink = {});

    /// The lists of the working object as far as they are read: without slaves there are no
    /// masters, and without masters no external addressing.
    [[nodiscard]] const std::optional<base::JsonNode>& slaves() const { return m_slaves; }
    [[nodiscard]] const std::optional<base::JsonNode>& masters() const { return m_masters; }
    [[nodiscard]] const std::optional<base::JsonNode>& externalAddressing() const {
        return m_externalAddressing;
    }
    [[nodiscard]] const base::JsonTape& tape() const { return m_tape; }

    /// The cell whose metadata is read; none where the metadata isn't split.
    [[nodiscard]] const std::optional<std::string>& cell() const { return m_cell; }
    /// What holds the lists: "metadata", or its cell.
    [[nodiscard]] const std::optional<base::JsonNode>& working() const { return m_working; }
    /// Of a value or a name, if the file was read with a sink.
    [[nodiscard]] tq::Place placeOf(const base::JsonNode& node) const {
        return m_kept ? m_kept->source.placeOf(node.offset()) : tq::Place();
    }

    /// Sends the exit line, which comes only where the last list has been read.
    void reportEnd() const;

private:
    void findLists();

    std::unique_ptr<KeptText> m_kept; ///< null without a sink
    base::JsonTape m_tape;
    std::optional<std::string> m_cell;
    std::optional<base::JsonNode> m_working;
    std::optional<base::JsonNode> m_slaves;
    std::optional<base::JsonNode> m_masters;
    std::optional<base::JsonNode> m_externalAddressing;
};

/// Calls `visit(name, object)` for each object among the members of a list's elements.
template <class Visitor>
void forEachObject(const std::optional<base::JsonNode>& list, Visitor&& visit) {
    if (list)
        list->forEachMemberOfElements([&](const base::JsonNode& name, const base::JsonNode& value) {
            if (value.isObject())
                visit(name, value);
        });
}

/// The scalar properties of an instance that a handoff uses. One that the file lacks is empty; of
/// two the later counts.
struct InstanceFacts {
    std::string_view sdkName;
    std::string_view enableParam;
    std::string_view classification;
    std::string_view ipType;
    std::string_view modType;
    std::string_view modClass;
    std::string_view multiSocketSmp;
    std::string_view slrNumber;
    std::string_view baseAddress;
    std::string_view highAddress;
    std::string_view memType;
    std::string_view isData;
    std::string_view isInstruction;
};

/// `instance` is its object; its members are visited once.
[[nodiscard]] InstanceFacts readFacts(const base::JsonNode& instance);

/// A text of the file, by the number of its value on the tape: small, and with its place at hand.
/// What isn't a string reads as the empty text, and so does what isn't there.
struct Text {
    static constexpr std::uint32_t kMissing = 0xFFFFFFFF;

    std::uint32_t node = kMissing;
};

/// A far end of a port.
struct Connection {
    Text instance;
    Text port;
};

/// `connection` is its object; of two members of one name the first counts.
[[nodiscard]] Connection readConnection(const base::JsonNode& connection);

} // namespace hwh
