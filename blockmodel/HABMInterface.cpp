#include "blockmodel/HABMInterface.h"

#include <unordered_set>

#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMChildren.h"
#include "blockmodel/HABMConnectionIndex.h"
#include "blockmodel/HABMEnumText.h"
#include "blockmodel/HABMInterfaceConnection.h"

namespace {

using Mode = HABMInterface::InterfaceMode;

constexpr HABMEnumTexts<Mode, 9> kModeTexts{{
    {"unknown", Mode::Unknown},
    {"master", Mode::Master},
    {"slave", Mode::Slave},
    {"mirrored_master", Mode::MirroredMaster},
    {"mirrored_slave", Mode::MirroredSlave},
    {"system", Mode::System},
    {"monitor", Mode::Monitor},
    {"initiator", Mode::Master},
    {"target", Mode::Slave},
}};

std::string pathOf(const HABMInterface& interface) {
    return interface.getParent()->getInstancePath() + "/" + interface.getInterfaceName();
}

/// The interfaces that can be reached from `start`, by breadth-first search. `neighbours` lists the
/// connections at a path, `otherEnd` gives the far end of a connection.
template <class Neighbours, class OtherEnd>
std::vector<HABMInterface*> findReachable(HABMInterface* start, Neighbours neighbours,
                                          OtherEnd otherEnd) {
    std::vector<HABMInterface*> found;
    std::unordered_set<const HABMInterface*> seen{start};
    std::size_t next = 0;
    for (HABMInterface* current = start; current != nullptr;
         current = next < found.size() ? found[next++] : nullptr) {
        for (HABMInterfaceConnection* const connection : neighbours(pathOf(*current))) {
            HABMInterface* const other = otherEnd(*connection);
            if (other != nullptr && seen.insert(other).second)
                found.push_back(other);
        }
    }
    return found;
}

} // namespace

HABMInterface::InterfaceMode HABMInterface::encodeInterfaceMode(std::string text) {
    return encodeEnum(kModeTexts, text, Mode::Unknown);
}

std::string HABMInterface::decodeInterfaceMode(InterfaceMode mode) {
    return decodeEnum(kModeTexts, mode);
}

void HABMInterface::setApertures(const std::set<HABMAddrAperture>& apertures, const bool& flag) {
    std::set<HABMAddrAperture> fresh = apertures;
    if (flag)
        fresh.insert(m_fields.apertures.begin(), m_fields.apertures.end());
    m_fields.apertures.swap(fresh); // last, as the copies may fail
}

HABMPortMap* HABMInterface::createPortMap(const std::string& logicalPort,
                                          const std::string& physicalPort) {
    return logicalPort.empty() ? nullptr
                               : HABMObjectAccess::childrenOf(*this).portMaps.create(
                                     logicalPort, logicalPort, physicalPort);
}

std::vector<HABMPortMap*> HABMInterface::getPortMaps() const {
    return HABMObjectAccess::childrenOf(*this).portMaps.all();
}

bool HABMInterface::hasConnections() const {
    return m_parent->connectionIndex().usesInterface(pathOf(*this));
}

std::vector<HABMInterface*> HABMInterface::getSourceInterfaces() {
    const HABMConnectionIndex& index = m_parent->connectionIndex();
    return findReachable(
        this, [&](const std::string& path) { return index.withTarget(path); },
        [](const HABMInterfaceConnection& connection) { return connection.getSourceInterface(); });
}

std::vector<HABMInterface*> HABMInterface::getTargetInterfaces() {
    const HABMConnectionIndex& index = m_parent->connectionIndex();
    return findReachable(
        this, [&](const std::string& path) { return index.withSource(path); },
        [](const HABMInterfaceConnection& connection) { return connection.getTargetInterface(); });
}
