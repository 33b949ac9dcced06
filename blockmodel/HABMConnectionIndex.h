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

/// A cache that belongs to a top block, which builds it at the first query and updates it from then
/// on. It holds paths, resolved or not, so that creating and removing ports and interfaces doesn't
/// touch it.
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

    /// Updates the index of a block's design, if it is built. If memory runs out, the index is
    /// discarded, and built again at the next query.
    template <class Update>
    static void update(const HABMBlock& block, const Update& update) noexcept {
        HABMConnectionIndex* const index = existing(block);
        if (index == nullptr)
            return;
        try {
            update(*index);
        } catch (const std::bad_alloc&) {
            discard(block);
        }
    }
    /// Runs `change`, which gives a connection other ends and mustn't throw, and updates the index.
    template <class Connection, class Change>
    static void changeEnds(Connection& connection, const Change& change) noexcept {
        const HABMBlock& owner = *connection.getParent();
        update(owner, [&](HABMConnectionIndex& index) { index.remove(connection); });
        change();
        update(owner, [&](HABMConnectionIndex& index) { index.add(connection); });
    }

private:
    using ByAge = std::map<std::uint64_t, HABMInterfaceConnection*>;
    using ByPath = std::unordered_map<std::string, ByAge>;

    static HABMConnectionIndex* existing(const HABMBlock& block);
    static void discard(const HABMBlock& block);
    static void erase(ByPath& ends, const std::string& path, std::uint64_t age);
    static std::vector<HABMInterfaceConnection*> at(const ByPath& ends, const std::string& path);
    void countPort(const std::string& path, std::ptrdiff_t change);

    ByPath m_bySource;
    ByPath m_byTarget;
    std::unordered_map<std::string, std::ptrdiff_t> m_portUses;
};
