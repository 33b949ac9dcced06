// Finds the connections of a whole design by the paths of their ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

class HABMBlock;
class HABMInterfaceConnection;
class HABMPortConnection;

/// Belongs to a top block, which makes it when it is first asked of and keeps it true from then on.
/// It holds paths, whether something stands there or not, so that creating and removing ports and
/// interfaces doesn't touch it.
class HABMConnectionIndex {
public:
    /// Indexes all connections of the design.
    explicit HABMConnectionIndex(const HABMBlock& top);

    void add(HABMInterfaceConnection& connection);
    void add(HABMPortConnection& connection);
    void remove(HABMInterfaceConnection& connection);
    void remove(HABMPortConnection& connection);
    /// All connections at or below a block.
    void addBelow(const HABMBlock& block);
    void removeBelow(const HABMBlock& block);

    [[nodiscard]] bool usesPort(const std::string& path) const;
    [[nodiscard]] bool usesInterface(const std::string& path) const;
    /// The interface connections with this end, oldest first.
    [[nodiscard]] std::vector<HABMInterfaceConnection*> withSource(const std::string& path) const;
    [[nodiscard]] std::vector<HABMInterfaceConnection*> withTarget(const std::string& path) const;

    /// The index of the design of a block, or null if it doesn't stand.
    [[nodiscard]] static HABMConnectionIndex* standing(const HABMBlock& block);

private:
    using ByAge = std::map<std::uint64_t, HABMInterfaceConnection*>;
    using ByPath = std::unordered_map<std::string, ByAge>;

    static void erase(ByPath& ends, const std::string& path, std::uint64_t age);
    static std::vector<HABMInterfaceConnection*> at(const ByPath& ends, const std::string& path);
    void countPort(const std::string& path, std::ptrdiff_t change);

    ByPath m_bySource;
    ByPath m_byTarget;
    std::unordered_map<std::string, std::ptrdiff_t> m_portUses;
};

/// Keeps a connection out of the index of its design, if there is one, while its ends change.
template <class Connection>
class HABMConnectionChange {
public:
    explicit HABMConnectionChange(Connection& connection)
        : m_connection(connection),
          m_index(HABMConnectionIndex::standing(*connection.getParent())) {
        if (m_index != nullptr)
            m_index->remove(connection);
    }
    ~HABMConnectionChange() {
        if (m_index != nullptr)
            m_index->add(m_connection);
    }
    HABMConnectionChange(const HABMConnectionChange&) = delete;
    HABMConnectionChange& operator=(const HABMConnectionChange&) = delete;

private:
    Connection& m_connection;
    HABMConnectionIndex* m_index;
};
