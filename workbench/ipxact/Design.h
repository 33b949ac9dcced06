// Designs: component instances and how their interfaces are connected, through all levels.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"
#include "workbench/files/InputError.h"
#include "workbench/ipxact/RegisterModel.h"

namespace tq::ipxact {

/// A component where a design uses it, with the values that the design gives to its parameters.
struct Instance {
    static constexpr std::size_t kTop = static_cast<std::size_t>(-1);

    std::string path; ///< "cpu0", "subsystem/uart1"
    std::string name;
    std::size_t parent = kTop; ///< the instance whose design it is in
    Component component;
    bool isHierarchical = false; ///< its own design is in the model too
    Mark mark;
};

/// An interface of an instance.
struct Endpoint {
    std::size_t instance = 0;
    std::string interface;

    [[nodiscard]] auto operator<=>(const Endpoint&) const = default;
};

/// Two interfaces that a design connects. Where `isInner`, the second is the outer interface of the
/// hierarchical instance that the design is of, seen from inside.
struct Connection {
    std::string name;
    Endpoint first, second;
    bool isInner = false;
    Mark mark;
    std::string file;
};

/// A design with all levels below it, flat: instances and connections refer to one another by
/// index.
struct Design {
    std::string file;
    Vlnv vlnv;
    std::vector<Instance> instances; ///< parents ahead of what is in them
    std::vector<Connection> connections;
};

/// Reads a design, a design configuration or a hierarchical component, with every component and
/// design below it that the folders of `libraries` hold; without any, those beside the file are
/// searched. Components that aren't found, connections to nothing and interfaces that don't fit
/// together are findings. Designs deeper than 32 levels and more than 20,000 instances are cut off
/// with a finding. Raises `InputError` for a file that can't be read or is none of these.
[[nodiscard]] TQ_WORKBENCH_EXPORT Design readDesign(const std::string& path,
                                                    const std::vector<std::string>& libraries,
                                                    const DiagnosticSink& sink);

} // namespace tq::ipxact
