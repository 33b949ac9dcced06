#include "blockmodel/HABMPortConnection.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMConnectionIndex.h"
#include "blockmodel/HABMEnumText.h"
#include "blockmodel/HABMPathText.h"

namespace {

constexpr HABMEnumTexts<HABMPortConnection::ConnectionType, 2> kTypeTexts{{
    {"soft", HABMPortConnection::ConnectionType::Soft},
    {"hard", HABMPortConnection::ConnectionType::Hard},
}};

} // namespace

HABMPortConnection::ConnectionType HABMPortConnection::encodeConnectionType(std::string text) {
    return encodeEnum(kTypeTexts, text, ConnectionType::Soft);
}

std::string HABMPortConnection::decodeConnectionType(ConnectionType type) {
    return decodeEnum(kTypeTexts, type);
}

bool HABMPortConnection::leadsToPort(const std::string& path) const {
    return habm::portAt(m_parent->getTopBlock(), habm::fromTop(*m_parent, path)) != nullptr;
}

bool HABMPortConnection::setSourcePath(const std::string& path) {
    const bool isResolved = leadsToPort(path);
    std::string fresh = path; // everything that may fail comes before the change
    HABMConnectionIndex::changeEnds(*this, [&] { m_fields.sourcePath.swap(fresh); });
    return isResolved;
}

bool HABMPortConnection::setTargetPaths(const std::set<std::string>& paths) {
    const bool areResolved = std::all_of(
        paths.begin(), paths.end(), [this](const std::string& path) { return leadsToPort(path); });
    std::set<std::string> fresh = paths;
    HABMConnectionIndex::changeEnds(*this, [&] { m_fields.targetPaths.swap(fresh); });
    return areResolved;
}

bool HABMPortConnection::isValid(const bool& flag) const {
    const auto resolved =
        std::count_if(m_fields.targetPaths.begin(), m_fields.targetPaths.end(),
                      [this](const std::string& path) { return leadsToPort(path); });
    const auto needed = flag ? 1 : std::max<std::ptrdiff_t>(std::ssize(m_fields.targetPaths), 1);
    return resolved >= needed && leadsToPort(m_fields.sourcePath);
}

void HABMPortConnection::moveEnds(const std::string& before, const std::string& after) {
    habm::move(m_fields.sourcePath, before, after);
    std::set<std::string> targets;
    while (!m_fields.targetPaths.empty()) {
        auto node = m_fields.targetPaths.extract(m_fields.targetPaths.begin());
        habm::move(node.value(), before, after);
        targets.insert(std::move(node));
    }
    m_fields.targetPaths.swap(targets);
}
