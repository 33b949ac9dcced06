#include "workbench/ipxact/Parameters.h"

#include <array>
#include <utility>

namespace tq::ipxact {

namespace {

/// Parameters that refer to one another; each level calls the expression parser anew.
constexpr int kMostLevels = 50;

/// The element that holds the value of a parameter: itself, or its child.
Element valueOf(Element element) {
    const Element value = element.child("value");
    return value ? value : element;
}

bool isText(Element parameter) {
    return parameter.attribute("type") == "string" || parameter.attribute("format") == "string";
}

} // namespace

std::optional<Edition> editionOf(std::string_view rootNamespace) {
    static constexpr std::array<std::pair<std::string_view, Edition>, 7> kKnown{{
        {"http://www.spiritconsortium.org/XMLSchema/SPIRIT/1.4", Edition::Spirit14},
        {"http://www.spiritconsortium.org/XMLSchema/SPIRIT/1.5", Edition::Spirit15},
        {"http://www.spiritconsortium.org/XMLSchema/SPIRIT/1685-2009", Edition::Ieee2009},
        {"http://www.spiritconsortium.org/XMLSchema/SPIRIT/1.2", Edition::Spirit14},
        {"http://www.accellera.org/XMLSchema/SPIRIT/1685-2009", Edition::Ieee2009},
        {"http://www.accellera.org/XMLSchema/IPXACT/1685-2014", Edition::Ieee2014},
        {"http://www.accellera.org/XMLSchema/IPXACT/1685-2022", Edition::Ieee2022},
    }};
    for (const auto& [name, edition] : kKnown)
        if (name == rootNamespace)
            return edition;
    return std::nullopt;
}

Parameters::Parameters(const ElementTree& tree, Edition edition, const Overrides& overrides,
                       DiagnosticSink sink)
    : m_edition(edition), m_overrides(overrides), m_sink(std::move(sink)) {
    indexIds(tree.root());
}

void Parameters::indexIds(Element root) {
    const ElementTree& tree = *root.tree();
    for (std::uint32_t index = 0; index < tree.size(); ++index) {
        const Element element(tree, index);
        if (!element.hasAttributes())
            continue;
        if (const std::string_view id = element.attribute("parameterId"); !id.empty())
            addId(id, element);
        else if (usesXPath())
            addId(element.attribute("id"), element);
    }
}

void Parameters::addId(std::string_view id, Element element) {
    if (!id.empty())
        m_byId.try_emplace(id, Parameter{element, false, std::nullopt, {}});
}

std::optional<Value> Parameters::value(Element element) {
    if (!element)
        return std::nullopt;
    try {
        return compute(element);
    } catch (const ExpressionError& error) {
        report(element, error.what());
        return std::nullopt;
    }
}

std::optional<Int128> Parameters::integer(Element element) {
    const std::optional<Value> found = value(element);
    if (!found)
        return std::nullopt;
    std::optional<Int128> number = found->integer();
    if (!number)
        report(element, "it isn't a whole number");
    return number;
}

std::string Parameters::text(Element element) {
    if (usesXPath() &&
        (element.attribute("id").empty() || !m_overrides.contains(element.attribute("id"))))
        return std::string(element.text());
    try {
        return element ? compute(element).text() : std::string();
    } catch (const ExpressionError&) {
        return std::string(element.text());
    }
}

bool Parameters::isPresent(Element element) {
    if (m_edition != Edition::Ieee2014)
        return true;
    const Element condition = element.child("isPresent");
    return !condition || integer(condition).value_or(1) != 0;
}

std::optional<Value> Parameters::parameter(std::string_view id) {
    try {
        return lookup(id);
    } catch (const ExpressionError&) {
        return std::nullopt;
    }
}

Value Parameters::compute(Element element) {
    const auto ask = [this](std::string_view id) { return lookup(id); };
    if (!usesXPath())
        return evaluate(element.text(), ExpressionLanguage::SystemVerilog, ask);
    if (const auto given = m_overrides.find(element.attribute("id")); given != m_overrides.end())
        return given->second;
    if (const std::string_view dependency = element.attribute("dependency"); !dependency.empty())
        return evaluate(dependency, ExpressionLanguage::XPath, ask);
    return evaluate(element.text(), ExpressionLanguage::SystemVerilog,
                    [](std::string_view name) -> Value { return Value::ofText(name); });
}

Value Parameters::computeText(std::string_view text) {
    return evaluate(text, ExpressionLanguage::SystemVerilog, [this](std::string_view id) -> Value {
        return usesXPath() ? Value::ofText(id) : lookup(id);
    });
}

Value Parameters::lookup(std::string_view id) {
    const auto found = m_byId.find(id);
    if (found == m_byId.end()) {
        if (!usesXPath() && (id == "true" || id == "false"))
            return Value::ofInteger(id == "true" ? 1 : 0);
        throw ExpressionError("there is no parameter \"" + std::string(id) + "\"");
    }
    Parameter& parameter = found->second;
    if (!parameter.error.empty())
        throw ExpressionError(parameter.error);
    if (parameter.value)
        return *parameter.value;
    if (parameter.isOpen)
        throw ExpressionError("the parameter \"" + std::string(id) + "\" depends on itself");
    if (m_levels == kMostLevels)
        throw ExpressionError("parameters depend on one another over too many levels");
    parameter.isOpen = true;
    ++m_levels;
    try {
        parameter.value = computeParameter(id, parameter);
    } catch (const ExpressionError& error) {
        parameter.error = error.what();
    }
    --m_levels;
    parameter.isOpen = false;
    return lookup(id);
}

Value Parameters::computeParameter(std::string_view id, const Parameter& parameter) {
    if (const auto given = m_overrides.find(id); given != m_overrides.end())
        return given->second;
    const Element element = valueOf(parameter.element);
    try {
        return compute(element);
    } catch (const ExpressionError&) {
        // A text needs no quotes where the parameter says that it is one.
        if (usesXPath() || isText(parameter.element))
            return Value::ofText(element.text());
        throw;
    }
}

void Parameters::report(Element element, const std::string& why) {
    if (m_sink)
        m_sink(makeDiagnostic(Severity::Warning, "unknown-value", element.place(),
                              "<" + std::string(element.name()) + "> \"" +
                                  std::string(element.text()) + "\" can't be computed: " + why));
}

} // namespace tq::ipxact
