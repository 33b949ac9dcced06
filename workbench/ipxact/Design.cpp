#include "workbench/ipxact/Design.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <utility>

#include "workbench/ipxact/ComponentReader.h"
#include "workbench/ipxact/Library.h"
#include "workbench/ipxact/MemoryReader.h"

namespace tq::ipxact {

namespace {

constexpr std::size_t kMostLevels = 32;
constexpr std::size_t kMostInstances = 20'000;

/// What a design configuration chooses: views by instance name.
using Views = std::map<std::string, std::string, std::less<>>;

struct ConfiguredDesign {
    std::shared_ptr<const ElementTree> tree; ///< null where it isn't found
    Views views;
};

bool fitsInitiator(InterfaceMode mode) {
    return mode == InterfaceMode::Target || mode == InterfaceMode::MirroredInitiator ||
           mode == InterfaceMode::Monitor;
}

/// Which interfaces a design may connect with one another.
bool fit(InterfaceMode a, InterfaceMode b) {
    if (a == InterfaceMode::Unknown || b == InterfaceMode::Unknown || a == InterfaceMode::Monitor ||
        b == InterfaceMode::Monitor)
        return true;
    if (a == InterfaceMode::Initiator || b == InterfaceMode::Initiator)
        return fitsInitiator(a == InterfaceMode::Initiator ? b : a);
    if (a == InterfaceMode::Target || b == InterfaceMode::Target)
        return (a == InterfaceMode::Target ? b : a) == InterfaceMode::MirroredTarget;
    return (a == InterfaceMode::System && b == InterfaceMode::MirroredSystem) ||
           (b == InterfaceMode::System && a == InterfaceMode::MirroredSystem);
}

class DesignReader {
public:
    DesignReader(Library& library, const DiagnosticSink& sink) : m_library(library), m_sink(sink) {}

    Design read(const std::shared_ptr<const ElementTree>& tree) {
        const Element root = tree->root();
        m_design.file = tree->path();
        m_design.vlnv = vlnvOf(root);
        const bool isKnown = editionOf(tree->rootNamespace()).has_value();
        if (isKnown && root.name() == "component")
            readTop(*tree);
        else if (isKnown && (root.name() == "design" || root.name() == "designConfiguration"))
            readLevel(configured(tree), Instance::kTop, 0);
        else
            throw InputError(makeDiagnostic(Severity::Error, "no-design", root.place(),
                                            "<" + std::string(root.name()) + "> is no design",
                                            "a design, a design configuration or a hierarchical "
                                            "component of IP-XACT"));
        return std::move(m_design);
    }

private:
    void report(Severity severity, const char* id, Element element, const std::string& text) {
        if (m_sink)
            m_sink(makeDiagnostic(severity, id, element.place(), text));
    }

    void reportMissing(const Vlnv& vlnv, Place place) {
        if (!m_sink)
            return;
        const std::string versions = m_library.versionsOf(vlnv);
        m_sink(makeDiagnostic(Severity::Warning, "missing-file", std::move(place),
                              "no file of the library is " + vlnv.text(),
                              versions.empty() ? "" : "version " + versions));
    }

    /// A component's own design; its interfaces are those of the whole.
    void readTop(const ElementTree& tree) {
        const Component component = readComponent(tree, {}, lookup(), m_sink);
        if (component.hierarchies.empty())
            throw InputError(makeDiagnostic(Severity::Error, "no-design", tree.root().place(),
                                            "the component has no design",
                                            "a view that names one"));
        readLevel(find(component.hierarchies.front().reference, tree.root()), Instance::kTop, 0);
    }

    TreeLookup lookup() {
        return [this](const Vlnv& vlnv) { return m_library.find(vlnv); };
    }
    ConfiguredDesign find(const Vlnv& vlnv, Element user) {
        if (const auto tree = m_library.find(vlnv))
            return configured(tree);
        reportMissing(vlnv, user.place());
        return {};
    }
    /// Follows a configuration to its design.
    ConfiguredDesign configured(std::shared_ptr<const ElementTree> tree) {
        ConfiguredDesign result;
        if (tree->root().name() != "designConfiguration") {
            result.tree = std::move(tree);
            return result;
        }
        const Element root = tree->root();
        for (const Element child : root.children()) {
            if (child.name() == "designRef") {
                result.tree = m_library.find(vlnvOfReference(child));
                if (result.tree == nullptr)
                    reportMissing(vlnvOfReference(child), child.place());
            } else if (child.name() == "viewConfiguration") {
                const Element view = child.child("view");
                result.views.emplace(child.textOf("instanceName"),
                                     view ? view.attribute("viewRef") : child.textOf("viewName"));
            }
        }
        return result;
    }

    void readLevel(const ConfiguredDesign& level, std::size_t parent, std::size_t depth) {
        if (level.tree == nullptr || level.tree->root().name() != "design")
            return;
        const Element root = level.tree->root();
        if (depth == kMostLevels) {
            report(Severity::Warning, "too-deep", root,
                   "designs lie within one another over too many levels");
            return;
        }
        const Overrides none;
        Parameters values(*level.tree, *editionOf(level.tree->rootNamespace()), none, m_sink);
        std::map<std::string, std::size_t, std::less<>> names;
        for (const Element instance : root.child("componentInstances").children())
            readInstance(instance, values, level, parent, depth, names);
        for (const Element child : root.child("interconnections").children())
            readInterconnection(child, parent, names);
        for (const Element child : root.child("hierConnections").children())
            readHierConnection(child, parent, names);
    }

    void readInstance(Element element, Parameters& values, const ConfiguredDesign& level,
                      std::size_t parent, std::size_t depth,
                      std::map<std::string, std::size_t, std::less<>>& names) {
        if (element.name() != "componentInstance" || !values.isPresent(element))
            return;
        if (m_design.instances.size() == kMostInstances) {
            report(Severity::Warning, "too-many-instances", element, "too many instances");
            return;
        }
        Instance instance;
        instance.name = element.textOf("instanceName");
        instance.path =
            (parent == Instance::kTop ? "" : m_design.instances[parent].path + "/") + instance.name;
        instance.parent = parent;
        instance.mark = markOf(element);
        const Element reference = element.child("componentRef");
        const Vlnv vlnv = vlnvOfReference(reference);
        const std::size_t index = m_design.instances.size();
        if (!names.emplace(instance.name, index).second)
            report(Severity::Error, "duplicate-name", element,
                   "instance \"" + instance.name + "\" occurs twice");
        if (const auto tree = m_library.find(vlnv))
            instance.component =
                readComponent(*tree, overridesOf(element, reference, values), lookup(), m_sink);
        else
            reportMissing(vlnv, (reference ? reference : element).place());
        m_design.instances.push_back(std::move(instance));
        readInner(index, level.views, depth);
    }

    static Overrides overridesOf(Element instance, Element reference, Parameters& values) {
        Overrides overrides;
        for (const Element holder : {instance, reference})
            for (const Element child : holder.child("configurableElementValues").children())
                overrides.emplace(child.attribute("referenceId"), overrideOf(child, values));
        return overrides;
    }
    /// A text that isn't an expression is itself the value.
    static Value overrideOf(Element element, Parameters& values) {
        try {
            return values.computeText(element.text());
        } catch (const ExpressionError&) {
            return Value::ofText(element.text());
        }
    }

    void readInner(std::size_t index, const Views& views, std::size_t depth) {
        const Instance& instance = m_design.instances[index];
        const auto& hierarchies = instance.component.hierarchies;
        if (hierarchies.empty())
            return;
        const auto chosen = views.find(instance.name);
        const Hierarchy* hierarchy = chosen == views.end() ? &hierarchies.front() : nullptr;
        for (const Hierarchy& one : hierarchies)
            if (chosen != views.end() && one.view == chosen->second && hierarchy == nullptr)
                hierarchy = &one;
        if (hierarchy == nullptr)
            return;
        const auto tree = m_library.find(hierarchy->reference);
        if (tree == nullptr) {
            reportMissing(hierarchy->reference,
                          placeInFile(instance.component.file, hierarchy->mark));
            return;
        }
        m_design.instances[index].isHierarchical = true;
        readLevel(configured(tree), index, depth + 1);
    }
    static Place placeInFile(const std::string& file, const Mark& mark) {
        Place place = placeOfFile(file);
        place.line = mark.line;
        place.column = mark.column;
        return place;
    }

    using Names = std::map<std::string, std::size_t, std::less<>>;

    /// Every interface of one interconnection is connected with every other.
    void readInterconnection(Element element, std::size_t parent, const Names& names) {
        if (element.name() != "interconnection")
            return;
        std::vector<Endpoint> active;
        for (const Element child : element.children())
            if (child.name() == "activeInterface")
                if (auto endpoint = endpointOf(child, names))
                    active.push_back(*std::move(endpoint));
        for (std::size_t i = 0; i < active.size(); ++i)
            for (std::size_t k = i + 1; k < active.size(); ++k)
                connect(element, active[i], active[k]);
        for (const Element child : element.children())
            if (child.name() == "hierInterface" && parent != Instance::kTop)
                for (const Endpoint& endpoint : active)
                    connectOuter(element, endpoint, parent, child.attribute("busRef"));
    }
    void readHierConnection(Element element, std::size_t parent, const Names& names) {
        if (parent == Instance::kTop)
            return;
        Element holder = element.child("interface");
        if (!holder)
            holder = element;
        for (const Element child : holder.children())
            if (child.name() == "activeInterface" || child.name() == "componentRef")
                if (const auto endpoint = endpointOf(child, names))
                    connectOuter(element, *endpoint, parent, element.attribute("interfaceRef"));
    }

    std::optional<Endpoint> endpointOf(Element element, const Names& names) {
        std::string_view name = element.attribute("componentRef");
        if (name.empty())
            name = element.attribute("componentInstanceRef");
        const auto found = names.find(name);
        if (found == names.end()) {
            report(Severity::Error, "dangling-reference", element,
                   "there is no instance \"" + std::string(name) + "\"");
            return std::nullopt;
        }
        Endpoint endpoint{found->second, std::string(element.attribute("busRef"))};
        const Component& component = m_design.instances[endpoint.instance].component;
        if (!component.file.empty() && interfaceOf(endpoint) == nullptr) {
            report(Severity::Error, "dangling-reference", element,
                   "\"" + std::string(name) + "\" has no interface \"" + endpoint.interface + "\"");
            return std::nullopt;
        }
        return endpoint;
    }
    [[nodiscard]] const BusInterface* interfaceOf(const Endpoint& endpoint) const {
        for (const BusInterface& one : m_design.instances[endpoint.instance].component.interfaces)
            if (one.name == endpoint.interface)
                return &one;
        return nullptr;
    }
    void connect(Element element, const Endpoint& first, const Endpoint& second) {
        const BusInterface* const a = interfaceOf(first);
        const BusInterface* const b = interfaceOf(second);
        if (a != nullptr && b != nullptr && !fit(a->mode, b->mode))
            report(Severity::Warning, "interface-mismatch", element,
                   "\"" + a->name + "\" (" + modeName(a->mode) + ") doesn't fit \"" + b->name +
                       "\" (" + modeName(b->mode) + ")");
        else if (a != nullptr && b != nullptr && a->busType != b->busType)
            report(Severity::Warning, "bus-mismatch", element,
                   "\"" + a->name + "\" is of " + a->busType.text() + ", \"" + b->name + "\" of " +
                       b->busType.text());
        m_design.connections.push_back({std::string(element.textOf("name")), first, second, false,
                                        markOf(element), element.tree()->path()});
    }
    void connectOuter(Element element, const Endpoint& inner, std::size_t parent,
                      std::string_view outer) {
        m_design.connections.push_back({std::string(element.textOf("name")),
                                        inner,
                                        {parent, std::string(outer)},
                                        true,
                                        markOf(element),
                                        element.tree()->path()});
    }

    Library& m_library;
    const DiagnosticSink& m_sink;
    Design m_design;
};

} // namespace

Design readDesign(const std::string& path, const std::vector<std::string>& libraries,
                  const DiagnosticSink& sink) {
    const auto tree = ElementTree::read(path);
    std::vector<std::string> folders = libraries;
    if (folders.empty()) {
        const std::string beside = std::filesystem::path(path).parent_path().string();
        folders.push_back(beside.empty() ? "." : beside);
    }
    Library library(folders, sink);
    return DesignReader(library, sink).read(tree);
}

} // namespace tq::ipxact
