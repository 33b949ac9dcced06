#include "blockmodel/HABMInterface.h"

#include <unordered_set>

#include "blockmodel/HABMBlock.h"
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

/// All that is reached from `start`, nearest first. `neighbours` lists the connections at a path,
/// `otherEnd` gives the interface that a connection leads on to.
template <class Neighbours, class OtherEnd>
std::vector<HABMInterface*> reached(HABMInterface* start, Neighbours neighbours,
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
    if (flag)
        m_apertures.insert(apertures.begin(), apertures.end());
    else
        m_apertures = apertures;
}

HABMPortMap* HABMInterface::createPortMap(const std::string& logicalPort,
                                          const std::string& physicalPort) {
    return logicalPort.empty() ? nullptr
                               : m_portMaps.create(logicalPort, logicalPort, physicalPort);
}

bool HABMInterface::hasConnections() const {
    return m_parent->connectionIndex().usesInterface(pathOf(*this));
}

std::vector<HABMInterface*> HABMInterface::getSourceInterfaces() {
    const HABMConnectionIndex& index = m_parent->connectionIndex();
    return reached(
        this, [&](const std::string& path) { return index.withTarget(path); },
        [](const HABMInterfaceConnection& connection) { return connection.getSourceInterface(); });
}

std::vector<HABMInterface*> HABMInterface::getTargetInterfaces() {
    const HABMConnectionIndex& index = m_parent->connectionIndex();
    return reached(
        this, [&](const std::string& path) { return index.withSource(path); },
        [](const HABMInterfaceConnection& connection) { return connection.getTargetInterface(); });
}
