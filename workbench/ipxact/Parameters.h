// The parameters of one description, and the values of elements that depend on them.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "diagnostics/Diagnostic.h"
#include "workbench/ipxact/ElementTree.h"
#include "workbench/ipxact/Expression.h"

namespace tq::ipxact {

/// Values that a design gives to a component's parameters, by their ids.
using Overrides = std::map<std::string, Value, std::less<>>;

/// The editions of the standard.
enum class Edition { Spirit14, Spirit15, Ieee2009, Ieee2014, Ieee2022 };

/// Of a namespace; absent for one that isn't the standard's.
[[nodiscard]] std::optional<Edition> editionOf(std::string_view rootNamespace);

/// Computes the values of a tree's elements. Each parameter is computed once; one that refers to
/// itself has no value.
class Parameters {
public:
    /// The tree and the overrides must outlive this object. The sink gets a finding for each
    /// element whose value can't be computed.
    Parameters(const ElementTree& tree, Edition edition, const Overrides& overrides,
               DiagnosticSink sink);

    /// The value of an element's text; absent, with a finding, where there is none.
    /// Without an element it is absent without a finding.
    [[nodiscard]] std::optional<Value> value(Element element);
    /// The same for a whole number.
    [[nodiscard]] std::optional<Int128> integer(Element element);
    /// The value of a text that isn't an element's own. Raises `ExpressionError`.
    [[nodiscard]] Value computeText(std::string_view text);
    /// A text such as "on" that may come from a parameter; the element's text where it isn't one.
    [[nodiscard]] std::string text(Element element);
    /// False for an element whose condition, in the edition that has them, says so.
    [[nodiscard]] bool isPresent(Element element);
    /// The value of a parameter by its id; absent where there is none.
    [[nodiscard]] std::optional<Value> parameter(std::string_view id);
    [[nodiscard]] bool isKnown(std::string_view id) const { return m_byId.contains(id); }

    [[nodiscard]] Edition edition() const { return m_edition; }

private:
    struct Parameter {
        Element element;
        bool isOpen = false; ///< is being computed
        std::optional<Value> value;
        std::string error;
    };

    void indexIds(Element root);
    void addId(std::string_view id, Element element);
    [[nodiscard]] Value compute(Element element);
    [[nodiscard]] Value lookup(std::string_view id);
    [[nodiscard]] Value computeParameter(std::string_view id, const Parameter& parameter);
    void report(Element element, const std::string& why);

    [[nodiscard]] bool usesXPath() const { return m_edition < Edition::Ieee2014; }

    Edition m_edition;
    const Overrides& m_overrides;
    DiagnosticSink m_sink;
    std::unordered_map<std::string_view, Parameter> m_byId;
    int m_levels = 0;
};

} // namespace tq::ipxact
