// The contents of a handoff document, decided and ordered before anything is written.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "base/JsonTape.h"
#include "handoff/HWHConnectivity.h"
#include "handoff/HWHDesignParams.h"

namespace hwh {

/// Suffix of a core's name: the instance that represents the subsystem's outside.
inline constexpr const char* kTopSuffix = "_top";

/// A run of entries in one of the model's lists.
struct Slice {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
};

enum class Role : std::uint8_t { Slave, Master };

/// An instance of the connectivity file. Of several with one name the last counts.
struct Instance {
    Text name;
    std::uint32_t node = 0;       ///< its object on the tape
    std::uint32_t moduleName = 0; ///< number of its "SDKNAME"
    Role role = Role::Slave;
    bool isEnabled = true;
    bool isInterface = false; ///< its "CLASSIFICATION" is "INTERFACE"
};

struct Parameter {
    Text name;
    Text asked;             ///< its value in the metadata
    std::string_view value; ///< as the document has it
    ValueSource source = ValueSource::Metadata;
};

/// Why a port carries its signal.
enum class SignalReason : std::uint8_t {
    OwnPort,     ///< no end of the net had a signal, so the port names it after itself
    FarEnd,      ///< one of its far ends had a signal
    ListedByFar, ///< an earlier port lists this one as its far end
};

/// A signal has the name of one port, "MODULE_PORT".
struct Signal {
    std::uint32_t namedBy = 0; ///< that port's number in `Model::ports`
    SignalReason reason = SignalReason::OwnPort;
};

struct Port {
    Text name;
    Text direction;
    Text signalKind;
    Text interruptId;
    Slice connections;        ///< of `Model::connections`, ordered by instance
    std::uint32_t module = 0; ///< number of its module
    Signal signal;
};

struct Module {
    std::string_view name;
    std::uint32_t instance = 0; ///< number of the instance that gives the facts
    Slice parameters;           ///< of `Model::parameters`, ordered by name
    Slice ports;                ///< of `Model::ports`, ordered by name
    /// Objects on the tape, of the last instance of this "SDKNAME" and of its last master.
    std::uint32_t contentsNode = 0;
    std::uint32_t excludingNode = 0; ///< `kNone` where no master has this "SDKNAME"
};

/// A port of the subsystem's outside.
struct ExternalPort {
    Text name;
    Slice ends;                ///< of `Model::externalEnds`, ordered by module name; never empty
    std::uint32_t namedBy = 0; ///< number of the port that gives the signal its name
};

/// Built once, from a connectivity file and the design's parameters, and then only read: by the
/// writer of the document and by reports on it. Its texts belong to the file, to the design's map
/// and to the model itself; the file and the map have to outlive it.
///
/// All lists are flat; their entries refer to one another by number.
struct Model {
    const base::JsonTape* tape = nullptr;
    std::string topInstanceName; ///< connections to this instance make external ports
    bool namesDies = false; ///< excluded lists name a slave together with its die, "NAME:NUMBER"

    std::vector<Instance> instances; ///< ordered by name
    std::vector<Module> modules;     ///< in document order
    std::vector<Parameter> parameters;
    std::vector<Port> ports; ///< in document order
    std::vector<Connection> connections;
    std::vector<ExternalPort> externalPorts; ///< ordered by name
    std::vector<std::uint32_t> externalEnds; ///< numbers of ports
    std::vector<std::uint32_t> slaves;       ///< numbers of the enabled slaves, ordered by name
    std::deque<std::string> scaledValues;    ///< values of parameters, in Hz

    [[nodiscard]] std::string_view text(Text text) const {
        return text.node == Text::kMissing ? std::string_view() : textOf(tape->node(text.node));
    }
    /// Of a port's signal, by the number of the port that gives it the name.
    [[nodiscard]] std::string signalName(std::uint32_t namedBy) const {
        const Port& port = ports[namedBy];
        return std::string(modules[port.module].name).append("_").append(text(port.name));
    }
    [[nodiscard]] InstanceFacts factsOf(const Instance& instance) const {
        return readFacts(tape->node(instance.node));
    }
};

} // namespace hwh
