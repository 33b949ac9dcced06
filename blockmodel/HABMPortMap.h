// One line of an interface's port map: a port of the interface's definition, and the port of the
// block that implements it.
#pragma once

#include <string>
#include <utility>

#include "tq_export.h"

/// Made by `HABMInterface::createPortMap`, owned by its interface.
class TQ_EXPORT HABMPortMap {
public:
    /// Made by `HABMInterface::createPortMap`.
    HABMPortMap(std::string logicalPort, std::string physicalPort)
        : m_logicalPort(std::move(logicalPort)), m_physicalPort(std::move(physicalPort)) {}
    HABMPortMap(const HABMPortMap&) = delete;
    HABMPortMap& operator=(const HABMPortMap&) = delete;

    /// Port of the interface's definition.
    [[nodiscard]] const std::string& getLogicalPort() const { return m_logicalPort; }
    /// Port of the block.
    [[nodiscard]] const std::string& getPhysicalPort() const { return m_physicalPort; }

private:
    const std::string m_logicalPort;
    const std::string m_physicalPort;
};
