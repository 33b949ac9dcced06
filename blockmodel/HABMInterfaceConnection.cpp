#include "blockmodel/HABMInterfaceConnection.h"

#include <atomic>

#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMConnectionIndex.h"
#include "blockmodel/HABMEnumText.h"
#include "blockmodel/HABMPathText.h"

namespace {

constexpr HABMEnumTexts<HABMInterfaceConnection::ConnectionType, 2> kTypeTexts{{
    {"soft", HABMInterfaceConnection::ConnectionType::Soft},
    {"hard", HABMInterfaceConnection::ConnectionType::Hard},
}};

/// One count for all trees, which other threads may be building.
std::atomic<std::uint64_t> connectionCount{0};

} // namespace

HABMInterfaceConnection::HABMInterfaceConnection(HABMBlock* parent, const std::string& name)
    : m_parent(parent), m_name(name),
      m_age(connectionCount.fetch_add(1, std::memory_order_relaxed)) {}

HABMInterfaceConnection::ConnectionType
HABMInterfaceConnection::encodeConnectionType(std::string text) {
    return encodeEnum(kTypeTexts, text, ConnectionType::Soft);
}

std::string HABMInterfaceConnection::decodeConnectionType(ConnectionType type) {
    return decodeEnum(kTypeTexts, type);
}

HABMInterface* HABMInterfaceConnection::interfaceAt(const std::string& path) const {
    return habm::interfaceAt(m_parent->getTopBlock(), habm::fromTop(*m_parent, path));
}

/// Everything that may fail comes before the change.
bool HABMInterfaceConnection::setPath(std::string& end, std::string path) {
    const bool isResolved = interfaceAt(path) != nullptr;
    HABMConnectionIndex::changeEnds(*this, [&] { end.swap(path); });
    return isResolved;
}

bool HABMInterfaceConnection::setSourcePath(const std::string& path) {
    return setPath(m_fields.sourcePath, path);
}

bool HABMInterfaceConnection::setTargetPath(const std::string& path) {
    return setPath(m_fields.targetPath, path);
}

bool HABMInterfaceConnection::isValid() const {
    return getSourceInterface() != nullptr && getTargetInterface() != nullptr;
}

void HABMInterfaceConnection::moveEnds(const std::string& before, const std::string& after) {
    habm::move(m_fields.sourcePath, before, after);
    habm::move(m_fields.targetPath, before, after);
}
