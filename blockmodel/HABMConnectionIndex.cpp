#include "blockmodel/HABMConnectionIndex.h"

#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMInterfaceConnection.h"
#include "blockmodel/HABMPathText.h"
#include "blockmodel/HABMPortConnection.h"

HABMConnectionIndex::HABMConnectionIndex(const HABMBlock& top) {
    addBelow(top);
}

void HABMConnectionIndex::addBelow(const HABMBlock& block) {
    for (HABMInterfaceConnection* const connection : block.findInterfaceConnections("", true))
        add(*connection);
    for (HABMPortConnection* const connection : block.findPortConnections("", true))
        add(*connection);
}

void HABMConnectionIndex::removeBelow(const HABMBlock& block) {
    for (HABMInterfaceConnection* const connection : block.findInterfaceConnections("", true))
        remove(*connection);
    for (HABMPortConnection* const connection : block.findPortConnections("", true))
        remove(*connection);
}

void HABMConnectionIndex::add(HABMInterfaceConnection& connection) {
    const HABMBlock& owner = *connection.getParent();
    m_bySource[habm::fromTop(owner, connection.getSourcePath())][connection.m_age] = &connection;
    m_byTarget[habm::fromTop(owner, connection.getTargetPath())][connection.m_age] = &connection;
}

void HABMConnectionIndex::remove(HABMInterfaceConnection& connection) {
    const HABMBlock& owner = *connection.getParent();
    erase(m_bySource, habm::fromTop(owner, connection.getSourcePath()), connection.m_age);
    erase(m_byTarget, habm::fromTop(owner, connection.getTargetPath()), connection.m_age);
}

void HABMConnectionIndex::add(HABMPortConnection& connection) {
    const HABMBlock& owner = *connection.getParent();
    countPort(habm::fromTop(owner, connection.getSourcePath()), 1);
    for (const std::string& path : connection.getTargetPaths())
        countPort(habm::fromTop(owner, path), 1);
}

void HABMConnectionIndex::remove(HABMPortConnection& connection) {
    const HABMBlock& owner = *connection.getParent();
    countPort(habm::fromTop(owner, connection.getSourcePath()), -1);
    for (const std::string& path : connection.getTargetPaths())
        countPort(habm::fromTop(owner, path), -1);
}

bool HABMConnectionIndex::usesPort(const std::string& path) const {
    return m_portUses.contains(path);
}

bool HABMConnectionIndex::usesInterface(const std::string& path) const {
    return m_bySource.contains(path) || m_byTarget.contains(path);
}

std::vector<HABMInterfaceConnection*>
HABMConnectionIndex::withSource(const std::string& path) const {
    return at(m_bySource, path);
}

std::vector<HABMInterfaceConnection*>
HABMConnectionIndex::withTarget(const std::string& path) const {
    return at(m_byTarget, path);
}

void HABMConnectionIndex::erase(ByPath& ends, const std::string& path, std::uint64_t age) {
    const auto found = ends.find(path);
    if (found == ends.end())
        return;
    found->second.erase(age);
    if (found->second.empty())
        ends.erase(found);
}

std::vector<HABMInterfaceConnection*> HABMConnectionIndex::at(const ByPath& ends,
                                                              const std::string& path) {
    // A copy: callers may add and remove connections while they go through it.
    std::vector<HABMInterfaceConnection*> connections;
    const auto found = ends.find(path);
    if (found != ends.end())
        for (const auto& [age, connection] : found->second)
            connections.push_back(connection);
    return connections;
}

void HABMConnectionIndex::countPort(const std::string& path, std::ptrdiff_t change) {
    const auto found = m_portUses.try_emplace(path, 0).first;
    found->second += change;
    if (found->second == 0)
        m_portUses.erase(found);
}

HABMConnectionIndex* HABMConnectionIndex::existing(const HABMBlock& block) {
    return block.existingConnectionIndex();
}

void HABMConnectionIndex::discard(const HABMBlock& block) {
    block.discardConnectionIndex();
}
