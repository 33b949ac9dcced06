// The connections of a block, and the index that finds them by their ends.

#include "blockmodel/HABMBlock.h"

#include "blockmodel/HABMBlockParts.h"

namespace {

template <class Store>
std::string freeName(const Store& store, const char* stem, unsigned& next) {
    std::string name;
    do
        name = stem + std::to_string(next++);
    while (store.find(name) != nullptr);
    return name;
}

/// A new connection of that name; for an empty one, of the next free name with the stem.
template <class Connection>
Connection* createConnection(HABMNamedStore<Connection, HABMLooseObjects>& store, HABMBlock* owner,
                             const std::string& name, bool finds, const char* stem,
                             unsigned& next) {
    unsigned following = next;
    const std::string chosen = name.empty() ? freeName(store, stem, following) : name;
    Connection* const fresh = store.create(chosen, owner, chosen);
    if (fresh == nullptr)
        return finds ? store.find(chosen) : nullptr;
    next = following; // not before, so that a failed creation uses up no number
    HABMConnectionIndex::update(*owner, [&](HABMConnectionIndex& index) { index.add(*fresh); });
    return fresh;
}

template <class Store>
bool removeConnection(Store& store, const HABMBlock& owner, const std::string& name) {
    const auto removed = store.take(name);
    if (removed == nullptr)
        return false;
    HABMConnectionIndex::update(owner, [&](HABMConnectionIndex& index) { index.remove(*removed); });
    return true;
}

} // namespace

HABMPortConnection* HABMBlock::createPortConnection(const std::string& name, const bool& flag) {
    return createConnection(m_parts->portConnections, this, name, flag, "port_connection_",
                            m_parts->nextPortConnection);
}

std::vector<HABMPortConnection*> HABMBlock::getPortConnections() const {
    return m_parts->portConnections.all();
}

bool HABMBlock::removePortConnection(const std::string& name) {
    return removeConnection(m_parts->portConnections, *this, name);
}

HABMInterfaceConnection* HABMBlock::createInterfaceConnection(const std::string& name,
                                                              const bool& flag) {
    return createConnection(m_parts->interfaceConnections, this, name, flag,
                            "interface_connection_", m_parts->nextInterfaceConnection);
}

std::vector<HABMInterfaceConnection*> HABMBlock::getInterfaceConnections() const {
    return m_parts->interfaceConnections.all();
}

bool HABMBlock::removeInterfaceConnection(const std::string& name) {
    return removeConnection(m_parts->interfaceConnections, *this, name);
}

HABMConnectionIndex& HABMBlock::connectionIndex() {
    HABMBlock& top = *getTopBlock();
    if (top.m_parts->connectionIndex == nullptr)
        top.m_parts->connectionIndex = std::make_unique<HABMConnectionIndex>(top);
    return *top.m_parts->connectionIndex;
}

HABMConnectionIndex* HABMBlock::existingConnectionIndex() const {
    return getTopBlock()->m_parts->connectionIndex.get();
}

void HABMBlock::discardConnectionIndex() const {
    getTopBlock()->m_parts->connectionIndex.reset();
}
