#include "handoff/HWHSignalNamer.h"

#include <functional>

namespace hwh {

void SignalNamer::name(std::uint32_t port) {
    Port& named = m_model.ports[port];
    Signal signal{kNone, SignalReason::FarEnd};
    m_ofOnePort.clear();
    const auto visitEnd = [&](std::uint32_t end, SignalReason reason) {
        m_ofOnePort.push_back(end);
        if (signal.namedBy == kNone)
            signal = {m_ends[end].signal, reason};
    };
    // Far ends first, in the order of their instances, then the port itself: the first of these
    // that an earlier port gave a signal decides. All others get the same one, for ports still to
    // come.
    for (std::uint32_t i = named.connections.begin; i < named.connections.end; ++i)
        visitEnd(intern(Owner::connection(i)), SignalReason::FarEnd);
    visitEnd(intern(Owner::port(port)), SignalReason::ListedByFar);
    if (signal.namedBy == kNone)
        signal = {port, SignalReason::OwnPort};
    for (const std::uint32_t end : m_ofOnePort)
        if (m_ends[end].signal == kNone)
            m_ends[end].signal = signal.namedBy;
    named.signal = signal;
}

std::uint32_t SignalNamer::signalAtEndOf(std::uint32_t port) {
    return m_ends[intern(Owner::port(port))].signal;
}

std::uint32_t SignalNamer::intern(Owner owner) {
    const Names names = namesOf(owner);
    m_joined.assign(names.instance).append("_").append(names.port);
    const std::size_t hash = std::hash<std::string_view>()(m_joined);
    const std::uint32_t known = m_index.find(hash, [&](std::uint32_t number) {
        return haveSameText(names, namesOf(m_ends[number].owner));
    });
    if (known != kNone)
        return known;
    const auto number = static_cast<std::uint32_t>(m_ends.size());
    m_ends.push_back({owner, kNone});
    m_index.insert(hash, number);
    return number;
}

SignalNamer::Names SignalNamer::namesOf(Owner owner) const {
    if (owner.isPort()) {
        const Port& port = m_model.ports[owner.number()];
        return {m_model.modules[port.module].name, m_model.text(port.name)};
    }
    const Connection& connection = m_model.connections[owner.number()];
    return {m_model.text(connection.instance), m_model.text(connection.port)};
}

/// Compares "INSTANCE_PORT", which two pairs of names may divide differently.
bool SignalNamer::haveSameText(const Names& a, const Names& b) {
    if (a.instance.size() == b.instance.size())
        return a.instance == b.instance && a.port == b.port;
    const auto joined = [](const Names& names) {
        return std::string(names.instance).append("_").append(names.port);
    };
    return a.instance.size() + a.port.size() == b.instance.size() + b.port.size() &&
           joined(a) == joined(b);
}

} // namespace hwh
