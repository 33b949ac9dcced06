#include "handoff/HWHMeaningCheck.h"

#include <algorithm>
#include <charconv>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "base/Text.h"
#include "diagnostics/NearestName.h"
#include "handoff/HWHEndTable.h"
#include "handoff/HWHFindings.h"
#include "handoff/HWHRangeCheck.h"
#include "handoff/HWHVocabulary.h"

namespace hwh {

namespace {

using base::JsonNode;

/// The value of the last member of that name, which is the one that counts for scalars.
std::optional<JsonNode> findLast(const JsonNode& object, std::string_view name) {
    std::optional<JsonNode> found;
    object.forEachMember([&](const JsonNode& key, const JsonNode& value) {
        if (key.text() == name)
            found = value;
    });
    return found;
}

/// The near names among many take a while to find, so only the first findings get one.
class Suggestions {
public:
    static constexpr std::size_t kMostQuestions = 100;

    void add(std::string_view name) {
        if (m_names.size() < kMostNames)
            m_names.push_back(name);
    }
    /// What is expected instead of a name; `kind` says of what it is one.
    std::string expected(std::string_view name, const char* kind) {
        const std::string nearest = find(name);
        return nearest.empty() ? kind : kind + std::string("; did you mean ") + nearest + "?";
    }
    /// In quotes, or empty.
    std::string find(std::string_view name) {
        return m_questions == kMostQuestions
                   ? std::string()
                   : (++m_questions, tq::quotedNearestName(name, m_names));
    }

private:
    static constexpr std::size_t kMostNames = 5000;

    std::vector<std::string_view> m_names;
    std::size_t m_questions = 0;
};

bool looksLikeName(std::string_view value) {
    const auto isLetter = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
    };
    return !value.empty() && isLetter(value.front()) &&
           std::all_of(value.begin(), value.end(),
                       [&](char c) { return isLetter(c) || (c >= '0' && c <= '9'); });
}

/// A number and nothing else; infinite and NaN where they are spelt out.
std::optional<double> readWholeNumber(std::string_view text) {
    double number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && stop == text.data() + text.size() ? std::optional(number)
                                                                     : std::nullopt;
}

std::string_view firstWord(std::string_view name) {
    return name.substr(0, name.find('_'));
}

class MeaningCheck {
public:
    MeaningCheck(const ConnectivityFile& file, const Model& model, DesignParams& design,
                 const tq::DiagnosticSink& sink)
        : m_file(file), m_model(model), m_design(design), m_findings(file, sink) {}

    void run(const HWHTextMap& params) {
        collectDesign(params);
        collectInstances();
        checkEnables();
        checkExcludedSlaves();
        checkEntries();
        checkEnds();
        checkNames();
        checkParameters();
        checkRanges(m_model, m_findings);
    }

private:
    void collectDesign(const HWHTextMap& params);
    void collectInstances();
    void collectPorts(std::string_view module, const JsonNode& instance);
    void checkEnables();
    void checkEnable(const Instance& instance);
    void checkExcludedSlaves();
    void checkEntries();
    void checkEnds();
    void checkEnd(const Port& port, const Connection& connection);
    [[nodiscard]] std::string expectedPort(std::string_view module, std::string_view port);
    [[nodiscard]] std::string expectedModule(std::string_view name);
    void checkNames();
    [[nodiscard]] bool lists(const Port& port, const Port& far) const;
    void compareNames(std::uint32_t number, const Connection& connection);
    void checkParameters();
    void checkFrequency(const Module& module, const Parameter& parameter,
                        const DesignParams::Value& value) const;
    [[nodiscard]] bool isMeantForDesign(std::string_view value);

    [[nodiscard]] JsonNode node(Text text) const { return m_model.tape->node(text.node); }
    [[nodiscard]] JsonNode nameNode(const Instance& instance) const { return node(instance.name); }
    [[nodiscard]] std::string_view moduleOf(const Port& port) const {
        return m_model.modules[port.module].name;
    }
    [[nodiscard]] std::string portText(const Port& port) const {
        return std::string(moduleOf(port)).append(".").append(m_model.text(port.name));
    }
    [[nodiscard]] std::string farText(const Connection& far) const {
        return std::string(m_model.text(far.instance)).append(".").append(m_model.text(far.port));
    }
    /// Where a connection or a port is; a port without a name has none.
    [[nodiscard]] std::optional<JsonNode> placeOf(Text first, Text second) const {
        if (first.node != Text::kMissing)
            return node(first);
        return second.node == Text::kMissing ? std::nullopt : std::optional(node(second));
    }

    const ConnectivityFile& m_file;
    const Model& m_model;
    DesignParams& m_design;
    const Findings m_findings;

    NameTable m_firstWords;
    std::deque<std::string> m_joined; ///< names inside composites
    Suggestions m_designNames;
    NameTable m_sdkNames;
    NameTable m_slaveNames; ///< as excluded lists name them
    NameTable m_instanceNames;
    Suggestions m_slaves;
    Suggestions m_modules;
    std::vector<std::vector<std::string_view>> m_portsOf; ///< by module
    std::size_t m_portQuestions = 0;
    EndTable m_known;                     ///< ends that a connection may have
    EndTable m_named;                     ///< those of `m_signals`
    std::vector<std::uint32_t> m_signals; ///< by end: the number of the port that names the signal
};

void MeaningCheck::collectDesign(const HWHTextMap& params) {
    for (const auto& [name, text] : params) {
        m_firstWords.intern(firstWord(name));
        m_designNames.add(name);
        if (text.find(' ') == std::string::npos)
            continue;
        const CompositeWords words(text);
        for (std::uint32_t i = 0; i < words.size(); ++i)
            m_designNames.add(m_joined.emplace_back(name + "_").append(words.key(i)));
    }
}

/// Ports of all instances, as a connection to a module that is disabled is no slip.
void MeaningCheck::collectInstances() {
    std::vector<JsonNode> contents; // by SDKNAME: the last instance counts
    const auto collect = [&](const JsonNode& name, const JsonNode& value) {
        const std::string_view sdkName = readFacts(value).sdkName;
        m_instanceNames.intern(name.text());
        const std::uint32_t number = m_sdkNames.intern(sdkName);
        if (number < contents.size())
            contents[number] = value;
        else
            contents.push_back(value);
    };
    forEachObject(m_file.slaves(), collect);
    forEachObject(m_file.masters(), collect);
    for (std::uint32_t i = 0; i < contents.size(); ++i)
        collectPorts(m_sdkNames[i], contents[i]);
    m_modules.add(m_model.topInstanceName);
    for (const Instance& instance : m_model.instances) {
        if (instance.role == Role::Master)
            continue;
        const InstanceFacts facts = m_model.factsOf(instance);
        for (std::string_view name : {facts.sdkName, m_model.text(instance.name)}) {
            if (m_model.namesDies)
                name = m_joined.emplace_back(std::string(name) + ":").append(facts.slrNumber);
            m_slaveNames.intern(name);
            m_slaves.add(name);
        }
    }
}

void MeaningCheck::collectPorts(std::string_view module, const JsonNode& instance) {
    m_modules.add(module);
    m_portsOf.emplace_back();
    instance.forEachMember([&](const JsonNode& name, const JsonNode& value) {
        if (name.text() == member::kPorts)
            value.forEachElement([&](const JsonNode& port) {
                std::string_view portName;
                port.forEachMember([&](const JsonNode& key, const JsonNode& text) {
                    if (key.text() == member::kName)
                        portName = textOf(text);
                });
                m_known.add({module, portName});
                m_portsOf.back().push_back(portName);
            });
    });
}

void MeaningCheck::checkEnables() {
    for (const Instance& instance : m_model.instances)
        checkEnable(instance);
}

void MeaningCheck::checkEnable(const Instance& instance) {
    const auto param = findLast(m_model.tape->node(instance.node), scalar::kEnableParam);
    const std::string_view name = param ? textOf(*param) : std::string_view();
    if (name.empty())
        return;
    const std::string who = quoted(m_model.text(instance.name));
    const auto value = m_design.resolveEnable(name);
    if (!value)
        return m_findings.warn("unknown-enable-parameter", *param,
                               who + " counts as enabled, as the design doesn't know " +
                                   quoted(name),
                               m_designNames.expected(name, "a parameter of the design"));
    constexpr std::string_view kNoes[] = {"false", "no", "off", "00", "0.0", "0x0", "disabled"};
    if (std::find(std::begin(kNoes), std::end(kNoes), base::lowered(std::string(*value))) !=
        std::end(kNoes))
        m_findings.warn("enable-value", *param,
                        who + " counts as enabled, as " + quoted(name) + " is " + quoted(*value),
                        R"("0" for what is disabled)");
}

void MeaningCheck::checkExcludedSlaves() {
    const auto check = [&](const JsonNode& name) {
        if (name.isString() && m_slaveNames.find(name.text()) == kNone)
            m_findings.warn(
                "unknown-excluded-slave", name, "no slave is called " + quoted(name.text()),
                m_slaves.expected(name.text(), m_model.namesDies
                                                   ? "an SDKNAME or instance name with \":\" and "
                                                     "its SLR_NUMBER"
                                                   : "an SDKNAME or the name of an instance"));
    };
    for (const Instance& instance : m_model.instances)
        if (instance.role == Role::Master)
            m_model.tape->node(instance.node)
                .forEachMember([&](const JsonNode& key, const JsonNode& list) {
                    if (key.text() == member::kExcludedSlaves)
                        list.forEachElement(check);
                });
}

/// Entries may have names of their own; one that is nearly the name of an instance without an entry
/// is a slip.
void MeaningCheck::checkEntries() {
    NameTable entries;
    forEachObject(m_file.externalAddressing(),
                  [&](const JsonNode& name, const JsonNode&) { entries.intern(name.text()); });
    Suggestions instances;
    for (const NameTable* names : {&m_instanceNames, &m_sdkNames})
        for (std::uint32_t i = 0; i < names->size(); ++i)
            if (entries.find((*names)[i]) == kNone)
                instances.add((*names)[i]);
    forEachObject(m_file.externalAddressing(), [&](const JsonNode& name, const JsonNode&) {
        if (m_instanceNames.find(name.text()) != kNone || m_sdkNames.find(name.text()) != kNone)
            return;
        if (const std::string nearest = instances.find(name.text()); !nearest.empty())
            m_findings.warn("unknown-entry", name, "no instance is called " + quoted(name.text()),
                            nearest);
    });
}

void MeaningCheck::checkEnds() {
    for (const Port& port : m_model.ports)
        for (std::uint32_t i = port.connections.begin; i < port.connections.end; ++i)
            checkEnd(port, m_model.connections[i]);
}

void MeaningCheck::checkEnd(const Port& port, const Connection& connection) {
    const std::string_view instance = m_model.text(connection.instance);
    const auto at = placeOf(connection.instance, connection.port);
    const bool isWhole = !instance.empty() && !m_model.text(connection.port).empty();
    if (!at || !isWhole || instance == m_model.topInstanceName ||
        m_known.find({instance, m_model.text(connection.port)}) != kNone)
        return;
    const bool isKnown = m_sdkNames.find(instance) != kNone;
    m_findings.warn(
        "missing-far-port", isKnown ? node(connection.port) : *at,
        portText(port) + " connects to " + farText(connection) + ", which doesn't exist",
        isKnown ? expectedPort(instance, m_model.text(connection.port)) : expectedModule(instance));
}

std::string MeaningCheck::expectedPort(std::string_view module, std::string_view port) {
    Suggestions ports;
    if (++m_portQuestions <= Suggestions::kMostQuestions)
        for (const std::string_view name : m_portsOf[m_sdkNames.find(module)])
            ports.add(name);
    return ports.expected(port, "a port of that module");
}

std::string MeaningCheck::expectedModule(std::string_view name) {
    if (m_instanceNames.find(name) != kNone)
        return "an SDKNAME; this is the name of an instance";
    return m_modules.expected(name, "an SDKNAME, or the top");
}

/// Two ports of one text "MODULE_PORT" have one signal, as signals are identified by that text.
void MeaningCheck::checkNames() {
    NameTable joined;
    std::vector<std::uint32_t> first; // by joined name
    for (std::uint32_t i = 0; i < m_model.ports.size(); ++i) {
        const Port& port = m_model.ports[i];
        m_named.add({moduleOf(port), m_model.text(port.name)});
        m_signals.push_back(port.signal.namedBy);
        const std::uint32_t number = joined.intern(
            m_joined.emplace_back(moduleOf(port)).append("_").append(m_model.text(port.name)));
        if (number == first.size()) {
            first.push_back(i);
        } else if (const Port& other = m_model.ports[first[number]];
                   port.name.node != Text::kMissing && other.name.node != Text::kMissing) {
            m_findings.warn("ambiguous-port", node(port.name),
                            portText(port) + " and " + portText(other) + " both make the name " +
                                quoted(joined[number]),
                            node(other.name), "the other port");
        }
    }
    for (const ExternalPort& port : m_model.externalPorts) {
        m_named.add({m_model.topInstanceName, m_model.text(port.name)});
        m_signals.push_back(port.namedBy);
    }
    for (std::uint32_t i = 0; i < m_model.ports.size(); ++i)
        for (std::uint32_t c = m_model.ports[i].connections.begin;
             c < m_model.ports[i].connections.end; ++c)
            compareNames(i, m_model.connections[c]);
}

bool MeaningCheck::lists(const Port& port, const Port& far) const {
    const auto begin = m_model.connections.begin() + port.connections.begin;
    const auto end = m_model.connections.begin() + port.connections.end;
    const std::string_view instance = moduleOf(far);
    const auto found =
        std::lower_bound(begin, end, instance, [&](const Connection& a, std::string_view name) {
            return m_model.text(a.instance) < name;
        });
    return found != end && m_model.text(found->instance) == instance &&
           m_model.text(found->port) == m_model.text(far.name);
}

/// Ends that list each other are compared once, from the first.
void MeaningCheck::compareNames(std::uint32_t number, const Connection& connection) {
    const EndName far{m_model.text(connection.instance), m_model.text(connection.port)};
    const std::uint32_t farNumber = m_named.find(far);
    const auto at = placeOf(connection.instance, connection.port);
    if (farNumber == kNone || !at)
        return;
    const Port& port = m_model.ports[number];
    const std::string own = m_model.signalName(m_signals[number]);
    const std::string other = m_model.signalName(m_signals[farNumber]);
    if (own == other)
        return;
    if (farNumber < number && lists(m_model.ports[farNumber], port))
        return;
    m_findings.warn("two-names", *at,
                    "one net is " + own + " at " + portText(port) + " and " + other + " at " +
                        farText(connection));
}

/// A plain value, such as "rgmii", looks like a name too: one of the design's begins as its others
/// do, or is nearly one of them.
bool MeaningCheck::isMeantForDesign(std::string_view value) {
    if (!looksLikeName(value) || value.find('_') == std::string_view::npos)
        return false;
    return m_firstWords.find(firstWord(value)) != kNone || !m_designNames.find(value).empty();
}

void MeaningCheck::checkParameters() {
    for (const Module& module : m_model.modules)
        for (std::uint32_t i = module.parameters.begin; i < module.parameters.end; ++i) {
            const Parameter& parameter = m_model.parameters[i];
            const std::string_view name = m_model.text(parameter.name);
            if (parameter.source != ValueSource::Metadata)
                checkFrequency(module, parameter, m_design.resolve(m_model.text(parameter.asked)));
            else if (isMeantForDesign(parameter.value))
                m_findings.warn(
                    "unresolved-parameter", node(parameter.name),
                    std::string(module.name)
                        .append(": ")
                        .append(name)
                        .append(" stays ")
                        .append(parameter.value)
                        .append(", which the design doesn't know"),
                    m_designNames.expected(parameter.value, "a parameter of the design"));
        }
}

void MeaningCheck::checkFrequency(const Module& module, const Parameter& parameter,
                                  const DesignParams::Value& value) const {
    constexpr double kLimitMhz = 4294.967296;
    if (!value.isInMegahertz)
        return;
    const auto megahertz = readWholeNumber(value.text);
    const std::string who =
        std::string(module.name).append(": ").append(m_model.text(parameter.name));
    if (!megahertz || !(*megahertz >= 0))
        m_findings.warn("unreadable-frequency", node(parameter.name),
                        who + " is " + quoted(value.text) + ", which becomes " +
                            std::string(parameter.value) + " Hz",
                        "a number of MHz");
    else if (*megahertz >= kLimitMhz)
        m_findings.warn("frequency-overflow", node(parameter.name),
                        who + " is " + quoted(value.text) + " MHz, which becomes " +
                            std::string(parameter.value) + " Hz",
                        "less than 4294.967296 MHz, as the document has 32 bits");
}

} // namespace

void checkMeaning(const ConnectivityFile& file, const Model& model, DesignParams& design,
                  const HWHTextMap& params, const tq::DiagnosticSink& sink) {
    MeaningCheck(file, model, design, sink).run(params);
}

} // namespace hwh
