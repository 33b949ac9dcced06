#include "handoff/HWHShapeCheck.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Text.h"
#include "diagnostics/NearestName.h"
#include "handoff/HWHFindings.h"
#include "handoff/HWHModel.h"
#include "handoff/HWHNameTable.h"
#include "handoff/HWHVocabulary.h"

namespace hwh {

namespace {

using base::JsonNode;
using Kind = JsonNode::Kind;
using Names = std::span<const std::string_view>;

constexpr std::string_view kRootMembers[] = {"metadata"};
constexpr std::string_view kSections[] = {"slaves", "masters", "external_addressing"};
constexpr std::string_view kInstanceMembers[] = {
    member::kPorts,     member::kParameters,   member::kExcludedSlaves, member::kExcludedInterfaces,
    scalar::kSdkName,   scalar::kEnableParam,  scalar::kMetaParam,      scalar::kClassification,
    scalar::kIpType,    scalar::kModType,      scalar::kModClass,       scalar::kMultiSocketSmp,
    scalar::kSlrNumber, scalar::kBaseAddress,  scalar::kHighAddress,    scalar::kMemType,
    scalar::kIsData,    scalar::kIsInstruction};
/// Members of an instance that add to one another where they come twice.
constexpr std::string_view kGathered[] = {member::kPorts, member::kParameters,
                                          member::kExcludedSlaves, member::kExcludedInterfaces};
constexpr std::string_view kPortMembers[] = {member::kName, member::kDirection, member::kSignalKind,
                                             member::kInterruptId, member::kConnections};
constexpr std::string_view kConnectionMembers[] = {member::kInstance, member::kPort};
constexpr std::string_view kInterfaceMembers[] = {"EN_PARAM", "APERTURE"};
constexpr std::string_view kEntryMembers[] = {"ENPARAM", "VLNV", "MODE", "ADDRESS_SPACE"};
constexpr std::string_view kSignalKinds[] = {signal::kClock, signal::kIntr, signal::kInterrupt};
constexpr std::string_view kClasses[] = {scalar::kClassInterface};

bool contains(Names names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// The first node of each name.
class SeenNames {
public:
    /// The node that had the name before, or nothing.
    std::optional<JsonNode> add(std::string_view name, const JsonNode& node) {
        const std::uint32_t number = m_names.intern(name);
        if (number < m_nodes.size())
            return m_nodes[number];
        m_nodes.push_back(node);
        return std::nullopt;
    }
    [[nodiscard]] bool contains(std::string_view name) const { return m_names.find(name) != kNone; }

private:
    NameTable m_names;
    std::vector<JsonNode> m_nodes;
};

class ShapeCheck {
public:
    ShapeCheck(const ConnectivityFile& file, const tq::DiagnosticSink& sink)
        : m_file(file), m_findings(file, sink) {}

    void run() {
        const JsonNode root = m_file.tape().root();
        if (isObject(root, "the file"))
            checkMembers(root, kRootMembers, {});
        if (!m_file.working())
            return reportMissingMetadata(root);
        checkMembers(*m_file.working(), kSections, {});
        checkSections(*m_file.working());
    }

private:
    /// An instance as it was read.
    struct Read {
        JsonNode name;
        bool hasContents = false;
    };

    void reportMissingMetadata(const JsonNode& root);
    void checkSections(const JsonNode& working);
    void checkInstances(const JsonNode& list, Role role);
    void checkInstance(const JsonNode& name, const JsonNode& instance, Role role);
    bool checkMember(const JsonNode& name, const JsonNode& value, Role role);
    void checkSdkName(const JsonNode& name, const JsonNode& instance, bool hasContents);
    void compareShared(const Read& before, const Read& now, std::string_view sdkName) const;
    bool checkPorts(const JsonNode& list);
    void checkPort(const JsonNode& port, SeenNames& names);
    void checkConnections(const JsonNode& list, std::string_view port);
    void checkEnd(const JsonNode& connection, std::string_view port, SeenNames& instances);
    bool checkParameters(const JsonNode& parameters);
    void checkInterfaces(const JsonNode& list);
    void checkEntries(const JsonNode& list);

    void checkMembers(const JsonNode& object, Names known, Names gathered) const;
    void checkCase(const JsonNode& name, const JsonNode& value, Names known) const;
    void checkTexts(const JsonNode& object) const;
    void checkTextElements(const JsonNode& list, std::string_view of) const;
    bool isText(const JsonNode& value, std::string_view of) const;
    bool isObject(const JsonNode& value, std::string_view of) const;
    bool isArray(const JsonNode& value, std::string_view of) const;
    template <class Visitor>
    void forEachObjectIn(const JsonNode& list, std::string_view of, Visitor&& visit) const;

    const ConnectivityFile& m_file;
    const Findings m_findings;
    SeenNames m_instances;
    NameTable m_sdkNames;
    std::vector<Read> m_lastOfSdkName; ///< by the number of the name
};

std::string elementOf(std::string_view name) {
    return "an element of " + quoted(name);
}

bool ShapeCheck::isText(const JsonNode& value, std::string_view of) const {
    if (value.isString())
        return true;
    m_findings.warn("wrong-type", value,
                    std::string(of) + " is " + value.kindName() + " and reads as the empty text",
                    "a text");
    return false;
}

bool ShapeCheck::isObject(const JsonNode& value, std::string_view of) const {
    if (value.isObject())
        return true;
    m_findings.warn("wrong-type", value,
                    std::string(of) + " is " + value.kindName() + " and is passed over",
                    "an object");
    return false;
}

bool ShapeCheck::isArray(const JsonNode& value, std::string_view of) const {
    if (value.isArray())
        return true;
    m_findings.warn("wrong-type", value,
                    std::string(of) + " is " + value.kindName() + " and is passed over",
                    "an array");
    return false;
}

template <class Visitor>
void ShapeCheck::forEachObjectIn(const JsonNode& list, std::string_view of, Visitor&& visit) const {
    if (isArray(list, quoted(of)))
        list.forEachElement([&](const JsonNode& element) {
            if (isObject(element, elementOf(of)))
                visit(element);
        });
}

/// Members that come twice, and misspelt ones: a known name must be missing, so that "BASE_ADDR_2"
/// beside "BASE_ADDR" isn't taken for it.
void ShapeCheck::checkMembers(const JsonNode& object, Names known, Names gathered) const {
    SeenNames seen;
    object.forEachMember([&](const JsonNode& name, const JsonNode&) {
        const auto before = seen.add(name.text(), name);
        if (before && !contains(gathered, name.text()))
            m_findings.warn("duplicate-key", name, "a second member " + quoted(name.text()),
                            *before, "first given here");
    });
    std::vector<std::string_view> missing;
    std::copy_if(known.begin(), known.end(), std::back_inserter(missing),
                 [&](std::string_view name) { return !seen.contains(name); });
    object.forEachMember([&](const JsonNode& name, const JsonNode&) {
        if (contains(known, name.text()))
            return;
        if (const auto nearest = tq::quotedNearestName(name.text(), missing); !nearest.empty())
            m_findings.warn("unknown-key", name, "nothing reads " + quoted(name.text()),
                            nearest + ", which is missing here");
    });
}

void ShapeCheck::checkCase(const JsonNode& name, const JsonNode& value, Names known) const {
    const auto meant = std::find_if(known.begin(), known.end(), [&](std::string_view word) {
        return word != textOf(value) &&
               base::lowered(std::string(word)) == base::lowered(std::string(textOf(value)));
    });
    if (meant != known.end())
        m_findings.warn("letter-case", value,
                        std::string(name.text()) + " " + quoted(value.text()) +
                            " counts as any other text",
                        quoted(*meant));
}

void ShapeCheck::checkTexts(const JsonNode& object) const {
    object.forEachMember(
        [&](const JsonNode& name, const JsonNode& value) { isText(value, quoted(name.text())); });
}

void ShapeCheck::checkTextElements(const JsonNode& list, std::string_view of) const {
    if (isArray(list, quoted(of)))
        list.forEachElement([&](const JsonNode& element) {
            if (!element.isString())
                m_findings.warn("wrong-type", element,
                                elementOf(of) + " is " + element.kindName() + " and is passed over",
                                "a text");
        });
}

void ShapeCheck::reportMissingMetadata(const JsonNode& root) {
    const auto metadata = findMember(root, "metadata");
    if (!metadata || !metadata->isObject() || !m_file.cell())
        return m_findings.error("missing-section", metadata.value_or(root),
                                R"(the file has no object "metadata", so the document is empty)");
    std::vector<std::string_view> cells;
    metadata->forEachMember(
        [&](const JsonNode& name, const JsonNode&) { cells.push_back(name.text()); });
    m_findings.error("missing-section", *metadata,
                     "\"metadata\" has no cell " + quoted(*m_file.cell()) +
                         ", so the document is empty",
                     tq::oneOfNames(*m_file.cell(), cells));
}

void ShapeCheck::checkSections(const JsonNode& working) {
    for (const std::string_view name : kSections) {
        const bool isExternal = name == kSections[2];
        const auto list = findMember(working, name);
        if (list && isArray(*list, quoted(name))) {
            if (isExternal)
                checkEntries(*list);
            else
                checkInstances(*list, name == kSections[0] ? Role::Slave : Role::Master);
        } else if (!isExternal) {
            m_findings.error("missing-section", list.value_or(working),
                             "there is no array " + quoted(name) +
                                 ", so the document isn't complete");
        }
    }
}

void ShapeCheck::checkInstances(const JsonNode& list, Role role) {
    const std::string_view section = kSections[role == Role::Slave ? 0 : 1];
    forEachObjectIn(list, section, [&](const JsonNode& element) {
        element.forEachMember([&](const JsonNode& name, const JsonNode& value) {
            if (name.text().empty())
                m_findings.warn("missing-name", name, "an instance without a name");
            if (const auto before = m_instances.add(name.text(), name))
                m_findings.warn("duplicate-instance", name,
                                "a second instance " + quoted(name.text()) +
                                    ", which replaces the first",
                                *before, "first given here");
            if (isObject(value, "the instance " + quoted(name.text())))
                checkInstance(name, value, role);
        });
    });
}

void ShapeCheck::checkInstance(const JsonNode& name, const JsonNode& instance, Role role) {
    checkMembers(instance, kInstanceMembers, kGathered);
    bool hasContents = false;
    instance.forEachMember([&](const JsonNode& key, const JsonNode& value) {
        hasContents |= checkMember(key, value, role);
    });
    checkSdkName(name, instance, hasContents);
}

/// True for ports and parameters, of which there are any.
bool ShapeCheck::checkMember(const JsonNode& name, const JsonNode& value, Role role) {
    const std::string_view key = name.text();
    const bool isOfMaster = key == member::kExcludedSlaves || key == member::kExcludedInterfaces;
    if (key == member::kPorts)
        return checkPorts(value);
    if (key == member::kParameters)
        return checkParameters(value);
    if (isOfMaster && role == Role::Slave)
        m_findings.warn("misplaced-key", name, "slaves have no " + quoted(key), "it in a master");
    else if (key == member::kExcludedSlaves)
        checkTextElements(value, key);
    else if (key == member::kExcludedInterfaces)
        checkInterfaces(value);
    else if (isText(value, quoted(key)) && key == scalar::kClassification)
        checkCase(name, value, kClasses);
    if (key == scalar::kRole)
        m_findings.warn("reserved-key", name,
                        quoted(key) + " is overwritten by the list that the instance is in");
    return false;
}

void ShapeCheck::checkSdkName(const JsonNode& name, const JsonNode& instance, bool hasContents) {
    const auto sdkName = findMember(instance, scalar::kSdkName);
    const std::string_view text = readFacts(instance).sdkName;
    if (text.empty()) {
        if (!sdkName || sdkName->isString())
            m_findings.warn("missing-sdkname", sdkName.value_or(name),
                            "the instance " + quoted(name.text()) + " has no SDKNAME",
                            "the name of its module");
        return;
    }
    const std::uint32_t number = m_sdkNames.intern(text);
    const Read now{name, hasContents};
    if (number < m_lastOfSdkName.size()) {
        compareShared(m_lastOfSdkName[number], now, text);
        m_lastOfSdkName[number] = now;
    } else {
        m_lastOfSdkName.push_back(now);
    }
}

bool isPair(std::string_view a, std::string_view b) {
    const auto has = [](std::string_view name, const char* mark) {
        return name.find(mark) != std::string_view::npos;
    };
    return (has(a, "_INT") && has(b, "_EXT")) || (has(a, "_EXT") && has(b, "_INT"));
}

/// The inside and the outside of a piece may share its name, if the one read last has the contents.
void ShapeCheck::compareShared(const Read& before, const Read& now,
                               std::string_view sdkName) const {
    if (before.name.text() == now.name.text())
        return; // reported as a second instance
    if (!isPair(before.name.text(), now.name.text()))
        m_findings.warn("shared-sdkname", now.name,
                        "the instances " + quoted(before.name.text()) + " and " +
                            quoted(now.name.text()) + " share the SDKNAME " + quoted(sdkName) +
                            ", so there is one module of both",
                        before.name, "the other instance");
    else if (before.hasContents && !now.hasContents)
        m_findings.warn("lost-contents", now.name,
                        quoted(now.name.text()) + " replaces the ports and parameters of " +
                            quoted(before.name.text()) + " by none",
                        before.name, "given here");
}

bool ShapeCheck::checkPorts(const JsonNode& list) {
    SeenNames names;
    bool hasAny = false;
    forEachObjectIn(list, member::kPorts, [&](const JsonNode& port) {
        hasAny = true;
        checkPort(port, names);
    });
    return hasAny;
}

void ShapeCheck::checkPort(const JsonNode& port, SeenNames& names) {
    constexpr std::string_view kGatheredByPort[] = {member::kConnections};
    checkMembers(port, kPortMembers, kGatheredByPort);
    const std::string_view portName = findText(port, member::kName);
    const auto nameNode = findMember(port, member::kName);
    if (portName.empty() && (!nameNode || nameNode->isString()))
        m_findings.warn("missing-name", nameNode.value_or(port), "a port without a NAME");
    if (const auto before = names.add(portName, nameNode.value_or(port));
        before && !portName.empty())
        m_findings.warn("duplicate-port", *nameNode,
                        "a second port " + quoted(portName) + ", which replaces the first", *before,
                        "first given here");
    port.forEachMember([&](const JsonNode& name, const JsonNode& value) {
        if (name.text() == member::kConnections)
            checkConnections(value, portName);
        else if (isText(value, quoted(name.text())) && name.text() == member::kSignalKind)
            checkCase(name, value, kSignalKinds);
    });
}

void ShapeCheck::checkConnections(const JsonNode& list, std::string_view port) {
    SeenNames instances;
    forEachObjectIn(list, member::kConnections,
                    [&](const JsonNode& connection) { checkEnd(connection, port, instances); });
}

void ShapeCheck::checkEnd(const JsonNode& connection, std::string_view port, SeenNames& instances) {
    checkMembers(connection, kConnectionMembers, {});
    checkTexts(connection);
    for (const std::string_view name : kConnectionMembers) {
        const auto value = findMember(connection, name);
        if (!value || (value->isString() && value->text().empty()))
            m_findings.warn("missing-end", value.value_or(connection),
                            "a connection of " + quoted(port) + " has no " + std::string(name));
    }
    const auto instance = findMember(connection, member::kInstance);
    if (!instance || !instance->isString())
        return;
    if (const auto before = instances.add(instance->text(), *instance))
        m_findings.warn("duplicate-connection", *instance,
                        "a second connection of " + quoted(port) + " to " +
                            quoted(instance->text()) + ", which replaces the first",
                        *before, "first given here");
}

bool ShapeCheck::checkParameters(const JsonNode& parameters) {
    if (!isObject(parameters, quoted(member::kParameters)))
        return false;
    checkMembers(parameters, {}, {});
    checkTexts(parameters);
    bool hasAny = false;
    parameters.forEachMember([&](const JsonNode&, const JsonNode&) { hasAny = true; });
    return hasAny;
}

void ShapeCheck::checkInterfaces(const JsonNode& list) {
    forEachObjectIn(list, member::kExcludedInterfaces, [&](const JsonNode& element) {
        element.forEachMember([&](const JsonNode& name, const JsonNode& facts) {
            if (!isObject(facts, "the interface " + quoted(name.text())))
                return;
            checkMembers(facts, kInterfaceMembers, {});
            facts.forEachMember([&](const JsonNode& key, const JsonNode& value) {
                if (key.text() == kInterfaceMembers[1])
                    checkTextElements(value, key.text());
                else
                    isText(value, quoted(key.text()));
            });
        });
    });
}

void ShapeCheck::checkEntries(const JsonNode& list) {
    const auto checkSpaces = [&](const JsonNode& spaces) {
        forEachObjectIn(spaces, kEntryMembers[3], [&](const JsonNode& element) {
            element.forEachMember([&](const JsonNode& name, const JsonNode& texts) {
                if (isObject(texts, "the address space " + quoted(name.text())))
                    checkTexts(texts);
            });
        });
    };
    forEachObjectIn(list, kSections[2], [&](const JsonNode& element) {
        checkMembers(element, {}, {});
        element.forEachMember([&](const JsonNode& name, const JsonNode& entry) {
            if (!isObject(entry, "the entry " + quoted(name.text())))
                return;
            checkMembers(entry, kEntryMembers, {});
            entry.forEachMember([&](const JsonNode& key, const JsonNode& value) {
                if (key.text() == kEntryMembers[3])
                    checkSpaces(value);
                else
                    isText(value, quoted(key.text()));
            });
        });
    });
}

} // namespace

void checkShape(const ConnectivityFile& file, const tq::DiagnosticSink& sink) {
    ShapeCheck(file, sink).run();
}

} // namespace hwh
