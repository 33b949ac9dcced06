// Names the signal on each port. There is no netlist: the first port of a net that is visited names
// the signal, and each connection passes the name on to its far end.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "handoff/HWHModel.h"
#include "handoff/HWHNameTable.h"

namespace hwh {

/// Ends of nets are identified by the text "INSTANCE_PORT" alone: two ends whose names join to one
/// text are the same end.
class SignalNamer {
public:
    explicit SignalNamer(Model& model) : m_model(model) {}

    /// To be called once for each port, in document order: the first far end that has a signal
    /// gives it, else what an earlier port said of this one, else the port's own name.
    void name(std::uint32_t port);

    /// The port that gave the end "MODULE_PORT" of a port that was named before its signal. This
    /// isn't always the port's own signal, as a far end of it may have had another.
    [[nodiscard]] std::uint32_t signalAtEndOf(std::uint32_t port);

private:
    /// The connection or the port at which an end was met first.
    class Owner {
    public:
        static Owner port(std::uint32_t number) { return Owner(number << 1U | 1U); }
        static Owner connection(std::uint32_t number) { return Owner(number << 1U); }

        [[nodiscard]] bool isPort() const { return (m_code & 1U) != 0; }
        [[nodiscard]] std::uint32_t number() const { return m_code >> 1U; }

    private:
        explicit Owner(std::uint32_t code) : m_code(code) {}

        std::uint32_t m_code;
    };
    struct End {
        Owner owner;
        std::uint32_t signal; ///< number of the port after which it is named, or `kNone`
    };
    struct Names {
        std::string_view instance;
        std::string_view port;
    };

    std::uint32_t intern(Owner owner);
    [[nodiscard]] Names namesOf(Owner owner) const;
    static bool haveSameText(const Names& a, const Names& b);

    Model& m_model;
    std::vector<End> m_ends;
    HashIndex m_index;
    std::string m_joined; ///< kept for its memory, as is the next
    std::vector<std::uint32_t> m_ofOnePort;
};

} // namespace hwh
