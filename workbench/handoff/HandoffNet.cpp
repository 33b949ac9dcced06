#include "workbench/handoff/HandoffNet.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

#include "diagnostics/NearestName.h"
#include "workbench/files/InputError.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/Table.h"
#include "workbench/text/Text.h"
#include "workbench/text/TextStream.h"

namespace tq {

namespace {

using Name = std::pair<std::string_view, std::string_view>;

std::string text(const Name& name) {
    return std::string(name.first).append(".").append(name.second);
}

/// The ends of all nets as the nodes of a graph: ports of modules by their numbers, then the outer
/// ports, then ends that are only connected to.
class Graph {
public:
    explicit Graph(const HBSHandoff& handoff) : m_handoff(handoff) {
        for (std::size_t i = 0; i < handoff.portCount(); ++i)
            add(nameOf(handoff.port(i).end));
        // A module may have the name of the top; its port then has the node.
        for (std::size_t i = 0; i < handoff.externalPortCount(); ++i)
            if (add({handoff.topInstance(), handoff.externalPort(i).name}) ==
                handoff.portCount() + m_outer.size())
                m_outer.push_back(i);
        for (std::size_t i = 0; i < handoff.portCount(); ++i)
            for (const HBSHandoff::End& far : handoff.connections(i))
                join(i, nameOf(far));
    }

    HandoffNet netOf(const std::string& end) const {
        std::vector<std::size_t> reached{find(end)};
        std::vector<bool> isReached(m_names.size());
        isReached[reached.front()] = true;
        for (std::size_t i = 0; i < reached.size(); ++i)
            for (const std::size_t far : m_joined[reached[i]])
                if (!isReached[far]) {
                    isReached[far] = true;
                    reached.push_back(far);
                }
        std::sort(reached.begin(), reached.end());
        HandoffNet net;
        for (const std::size_t node : reached) {
            net.ends.push_back(describe(node));
            const std::string& signal = net.ends.back().signal;
            if (!signal.empty() &&
                std::find(net.names.begin(), net.names.end(), signal) == net.names.end())
                net.names.push_back(signal);
        }
        return net;
    }

private:
    static Name nameOf(const HBSHandoff::End& end) { return {end.module, end.port}; }

    std::size_t add(const Name& name) {
        const auto [entry, isNew] = m_numbers.try_emplace(name, m_names.size());
        if (isNew) {
            m_names.push_back(name);
            m_joined.emplace_back();
        }
        return entry->second;
    }
    void join(std::size_t port, const Name& far) {
        const std::size_t number = add(far);
        m_joined[port].push_back(number);
        m_joined[number].push_back(port);
    }

    [[nodiscard]] bool isPort(std::size_t node) const { return node < m_handoff.portCount(); }
    [[nodiscard]] bool isOuter(std::size_t node) const {
        return !isPort(node) && node < m_handoff.portCount() + m_outer.size();
    }

    /// Either name may hold dots, so each one is tried as the divider.
    [[nodiscard]] std::size_t find(std::string_view end) const {
        for (std::size_t dot = end.find('.'); dot != std::string_view::npos;
             dot = end.find('.', dot + 1))
            if (const auto found = m_numbers.find({end.substr(0, dot), end.substr(dot + 1)});
                found != m_numbers.end())
                return found->second;
        fail(end);
    }
    [[noreturn]] void fail(std::string_view end) const {
        if (end.find('.') == std::string_view::npos)
            throw InputError("--net " + std::string(end) + ": expected MODULE.PORT");
        constexpr std::size_t kMost = 5000;
        std::vector<std::string> names;
        for (std::size_t i = 0; i < std::min(m_names.size(), kMost); ++i)
            names.push_back(text(m_names[i]));
        const std::string nearest =
            quotedNearestName(end, std::vector<std::string_view>(names.begin(), names.end()));
        throw InputError("there is no port \"" + std::string(end) + "\"" +
                         (nearest.empty() ? "" : "; did you mean " + nearest + "?"));
    }

    [[nodiscard]] HandoffNet::End describe(std::size_t node) const {
        HandoffNet::End end;
        end.module = m_names[node].first;
        end.port = m_names[node].second;
        if (isPort(node))
            describePort(node, end);
        else if (isOuter(node))
            describeOuter(m_handoff.externalPort(m_outer[node - m_handoff.portCount()]), end);
        else
            end.isThere = false;
        return end;
    }
    void describePort(std::size_t number, HandoffNet::End& end) const {
        const HBSHandoff::Port port = m_handoff.port(number);
        end.direction = port.direction;
        end.kind = port.kind;
        end.signal = port.signal;
        end.reason = reasonOf(port);
        for (const HBSHandoff::End& far : m_handoff.connections(number))
            end.connects.push_back(text(nameOf(far)));
    }
    void describeOuter(const HBSHandoff::ExternalPort& port, HandoffNet::End& end) const {
        const HBSHandoff::Port first = m_handoff.port(port.ports.front());
        end.direction = first.direction;
        end.kind = first.kind;
        end.signal = port.signal;
        end.reason =
            "takes the name at " + text(nameOf(first.end)) + ", the first port joined to it";
        for (const std::size_t inner : port.ports)
            end.connects.push_back(text(nameOf(m_handoff.port(inner).end)));
    }
    [[nodiscard]] std::string reasonOf(const HBSHandoff::Port& port) const {
        const std::string namer = text(nameOf(m_handoff.port(port.namedBy).end));
        switch (port.reason) {
        case HBSHandoff::Reason::FarEnd:
            return "connects to an end that was named after " + namer + " before";
        case HBSHandoff::Reason::ListedByFar:
            return "an earlier port connects to it and was named after " + namer;
        case HBSHandoff::Reason::OwnPort:
            break;
        }
        return "names the net after itself: no end of it had a name before";
    }

    const HBSHandoff& m_handoff;
    std::vector<Name> m_names;
    std::vector<std::size_t> m_outer; ///< numbers of the outer ports that have nodes
    std::map<Name, std::size_t> m_numbers;
    std::vector<std::vector<std::size_t>> m_joined;
};

} // namespace

HandoffNet findNet(const HBSHandoff& handoff, const std::string& end) {
    return Graph(handoff).netOf(end);
}

std::string netTables(const HandoffNet& net) {
    TextStream out;
    out << (net.names.size() == 1 ? "Net " : "One net with several names: ");
    for (const std::string& name : net.names)
        out << (&name == &net.names.front() ? "" : ", ") << printable(name);
    out << "\n\n";
    Table ends({{"end"}, {"direction"}, {"kind"}, {"signal"}, {"why"}});
    Table connections({{"from"}, {"to"}});
    for (const HandoffNet::End& end : net.ends) {
        const std::string name = end.module + "." + end.port;
        ends.addRow({name, end.direction, end.kind, end.signal,
                     end.isThere ? end.reason : "doesn't exist"});
        for (const std::string& far : end.connects)
            connections.addRow({name, far});
    }
    ends.print(out);
    if (!connections.empty()) {
        out << '\n';
        connections.print(out);
    }
    return out.str();
}

std::string netJson(const HandoffNet& net) {
    JsonWriter json;
    json.beginObject();
    json.beginArray("names");
    for (const std::string& name : net.names)
        json.value(name);
    json.endArray();
    json.beginArray("ends");
    for (const HandoffNet::End& end : net.ends) {
        json.beginObject();
        json.member("module", end.module);
        json.member("port", end.port);
        json.member("exists", end.isThere);
        json.member("direction", end.direction);
        json.member("kind", end.kind);
        json.member("signal", end.signal);
        json.member("why", end.reason);
        json.beginArray("connects");
        for (const std::string& far : end.connects)
            json.value(far);
        json.endArray();
        json.endObject();
    }
    json.endArray();
    json.endObject();
    return json.text();
}

} // namespace tq
