// Finds the connections of a whole design by the paths of their ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <new>
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

    /// Changes the index of the design of a block, if it stands. If memory runs out meanwhile, the
    /// index is given up, as it is made anew when it is next asked of.
    template <class Change>
    static void change(const HABMBlock& block, const Change& change) noexcept {
        HABMConnectionIndex* const index = standing(block);
        if (index == nullptr)
            return;
        try {
            change(*index);
        } catch (const std::bad_alloc&) {
            giveUp(block);
        }
    }

private:
    using ByAge = std::map<std::uint64_t, HABMInterfaceConnection*>;
    using ByPath = std::unordered_map<std::string, ByAge>;

    static HABMConnectionIndex* standing(const HABMBlock& block);
    static void giveUp(const HABMBlock& block);
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
    explicit HABMConnectionChange(Connection& connection) : m_connection(connection) {
        HABMConnectionIndex::change(*connection.getParent(), [&](HABMConnectionIndex& index) {
            index.remove(m_connection);
        });
    }
    ~HABMConnectionChange() {
        HABMConnectionIndex::change(*m_connection.getParent(),
                                    [&](HABMConnectionIndex& index) { index.add(m_connection); });
    }
    HABMConnectionChange(const HABMConnectionChange&) = delete;
    HABMConnectionChange& operator=(const HABMConnectionChange&) = delete;

private:
    Connection& m_connection;
};
