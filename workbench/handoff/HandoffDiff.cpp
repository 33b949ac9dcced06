#include "workbench/handoff/HandoffDiff.h"

#include <pugixml.hpp>

#include <algorithm>
#include <cstddef>
#include <deque>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/Address.h"
#include "base/Text.h"
#include "diagnostics/SourceText.h"
#include "workbench/files/InputText.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/Table.h"
#include "workbench/text/TextStream.h"

namespace tq {

namespace {

constexpr const char* kRoot = "LOMSYSTEM";
/// Facts of the writing, not of the handoff.
constexpr std::string_view kIgnored[] = {"TIMESTAMP", "ORVENAVERSION"};
constexpr std::string_view kAddresses[] = {"BASEVALUE", "HIGHVALUE"};

/// An element's attributes in an order of their own.
using Attributes = std::map<std::string_view, std::string_view>;
using Meaning = std::map<std::string_view, std::string>;

class Document {
public:
    explicit Document(const std::string& path) {
        m_text = readInput(path);
        refuseManyParts(path);
        const auto result = m_xml.load_buffer(m_text.data(), m_text.size());
        if (!result)
            throw InputError(makeDiagnostic(Severity::Error, "",
                                            SourceText(path, m_text).placeOf(offsetOf(result)),
                                            result.description()));
        if (!root())
            throw fileError(path, "isn't a handoff document: it has no root element LOMSYSTEM");
    }

    [[nodiscard]] pugi::xml_node root() const { return m_xml.child(kRoot); }

private:
    /// Each takes some 50 bytes, whatever little room it has in the file.
    void refuseManyParts(const std::string& path) const {
        constexpr std::ptrdiff_t kMostParts = 16'000'000;
        if (std::count(m_text.begin(), m_text.end(), '<') / 2 +
                std::count(m_text.begin(), m_text.end(), '=') >
            kMostParts)
            throw fileError(path, "has more elements and attributes than can be compared");
    }
    static std::size_t offsetOf(const pugi::xml_parse_result& result) {
        return result.offset < 0 ? 0 : static_cast<std::size_t>(result.offset);
    }

    std::string m_text;
    pugi::xml_document m_xml;
};

bool isIgnored(std::string_view name) {
    return std::find(std::begin(kIgnored), std::end(kIgnored), name) != std::end(kIgnored);
}

Attributes attributesOf(const pugi::xml_node& element) {
    Attributes attributes;
    for (const auto& attribute : element.attributes())
        if (!isIgnored(attribute.name()))
            attributes[attribute.name()] = attribute.value();
    return attributes;
}

bool isAddress(std::string_view name) {
    return std::find(std::begin(kAddresses), std::end(kAddresses), name) != std::end(kAddresses);
}

/// Attributes with their addresses spelt in one way.
Meaning meaningOf(const pugi::xml_node& element) {
    Meaning meaning;
    for (const auto& [name, value] : attributesOf(element)) {
        const auto address = isAddress(name) ? base::readAddress(value) : std::nullopt;
        meaning.emplace(name, address ? std::to_string(*address) : std::string(value));
    }
    return meaning;
}

bool isSame(std::string_view name, std::string_view a, std::string_view b) {
    if (a == b)
        return true;
    if (!isAddress(name))
        return false;
    const auto number = base::readAddress(a);
    return number && number == base::readAddress(b);
}

/// "port irq"; a connection by both its ends, what has no name by its element.
std::string nameOf(const pugi::xml_node& element) {
    std::string name = base::lowered(element.name());
    const pugi::xml_attribute own = element.attribute("NAME");
    const pugi::xml_attribute instance = element.attribute("INSTANCE");
    const pugi::xml_attribute port = element.attribute("PORT");
    // The top's name is one of its facts.
    if (name == "ststeminfo")
        return name;
    if (own)
        return name.append(" ").append(own.value());
    if (instance)
        name.append(" ").append(instance.value());
    return port ? name.append(".").append(port.value()) : name;
}

/// Elements that only hold a list have no name of their own in what is printed.
bool isList(const pugi::xml_node& element) {
    return !element.first_attribute() && std::string_view(element.name()) != kRoot;
}

class Comparison {
public:
    std::vector<HandoffDifference> run(const Document& a, const Document& b) {
        compare(a.root(), b.root(), "", 0);
        return std::move(m_differences);
    }

private:
    using Kind = HandoffDifference::Kind;
    using ByName = std::map<std::string, std::vector<pugi::xml_node>>;

    static constexpr int kMostLevels = 100;

    static ByName childrenOf(const pugi::xml_node& element) {
        ByName children;
        for (const auto& child : element.children())
            if (child.type() == pugi::node_element)
                children[nameOf(child)].push_back(child);
        return children;
    }

    void compare(const pugi::xml_node& a, const pugi::xml_node& b, const std::string& where,
                 int level) {
        if (level > kMostLevels)
            throw InputError("the documents are nested deeper than 100 levels");
        compareAttributes(attributesOf(a), attributesOf(b), where.empty() ? "document" : where);
        const ByName left = childrenOf(a);
        const ByName right = childrenOf(b);
        for (const auto& [name, elements] : left) {
            const auto same = right.find(name);
            compareLists(elements,
                         same == right.end() ? std::vector<pugi::xml_node>() : same->second, name,
                         where, level);
        }
        for (const auto& [name, elements] : right)
            if (!left.contains(name))
                compareLists({}, elements, name, where, level);
    }

    /// Elements whose attributes say the same belong together, in their order; those that are left,
    /// in theirs.
    static void matchEqual(std::vector<pugi::xml_node>& a, std::vector<pugi::xml_node>& b) {
        std::vector<pugi::xml_node> equal;
        std::vector<pugi::xml_node> rest;
        std::vector<pugi::xml_node> equalInB;
        std::map<Meaning, std::deque<pugi::xml_node>> byMeaning;
        for (const auto& element : b)
            byMeaning[meaningOf(element)].push_back(element);
        for (const auto& element : a) {
            auto& same = byMeaning[meaningOf(element)];
            (same.empty() ? rest : equal).push_back(element);
            if (same.empty())
                continue;
            equalInB.push_back(same.front());
            same.pop_front();
        }
        a = std::move(equal);
        b = std::move(equalInB);
        a.insert(a.end(), rest.begin(), rest.end());
        for (const auto& [meaning, elements] : byMeaning)
            b.insert(b.end(), elements.begin(), elements.end());
    }

    void compareLists(std::vector<pugi::xml_node> a, std::vector<pugi::xml_node> b,
                      const std::string& name, const std::string& parent, int level) {
        if (a.size() > 1 || b.size() > 1)
            matchEqual(a, b);
        for (std::size_t i = 0; i < std::max(a.size(), b.size()); ++i) {
            const bool isEmptyName = isList(i < a.size() ? a[i] : b[i]);
            std::string where = parent;
            if (!isEmptyName || i >= a.size() || i >= b.size())
                where += (parent.empty() ? "" : " / ") + name +
                         (i == 0 ? "" : " (" + std::to_string(i + 1) + ")");
            if (i >= b.size())
                m_differences.push_back({Kind::OnlyInA, where, "", "", ""});
            else if (i >= a.size())
                m_differences.push_back({Kind::OnlyInB, where, "", "", ""});
            else
                compare(a[i], b[i], where, level + 1);
        }
    }

    void compareAttributes(const Attributes& a, const Attributes& b, const std::string& where) {
        Attributes all = a;
        all.insert(b.begin(), b.end());
        for (const auto& [name, value] : all) {
            const auto left = a.find(name);
            const auto right = b.find(name);
            const std::string_view inA = left == a.end() ? std::string_view() : left->second;
            const std::string_view inB = right == b.end() ? std::string_view() : right->second;
            if ((left == a.end()) != (right == b.end()) || !isSame(name, inA, inB))
                m_differences.push_back(
                    {Kind::Changed, where, std::string(name), std::string(inA), std::string(inB)});
        }
    }

    std::vector<HandoffDifference> m_differences;
};

} // namespace

std::vector<HandoffDifference> diffHandoffs(const std::string& a, const std::string& b) {
    const Document left(a);
    const Document right(b);
    return Comparison().run(left, right);
}

std::string handoffDiffTable(const std::vector<HandoffDifference>& differences) {
    if (differences.empty())
        return "The documents say the same.\n";
    Table table({{"where"}, {"what"}, {"A"}, {"B"}});
    for (const HandoffDifference& difference : differences) {
        using Kind = HandoffDifference::Kind;
        if (difference.kind == Kind::Changed)
            table.addRow({difference.where, difference.attribute, difference.a, difference.b});
        else
            table.addRow(
                {difference.where, difference.kind == Kind::OnlyInA ? "only in A" : "only in B"});
    }
    TextStream out;
    table.print(out);
    return out.str();
}

std::string handoffDiffJson(const std::vector<HandoffDifference>& differences) {
    constexpr const char* kKinds[] = {"only-in-a", "only-in-b", "changed"};
    JsonWriter json;
    json.beginArray();
    for (const HandoffDifference& difference : differences) {
        json.beginObject();
        json.member("kind", kKinds[static_cast<std::size_t>(difference.kind)]);
        json.member("where", difference.where);
        json.member("attribute", difference.attribute);
        json.member("a", difference.a);
        json.member("b", difference.b);
        json.endObject();
    }
    json.endArray();
    return json.text();
}

} // namespace tq
