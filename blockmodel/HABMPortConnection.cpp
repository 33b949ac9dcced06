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
    const HABMConnectionChange change(*this);
    m_sourcePath = path;
    return leadsToPort(path);
}

bool HABMPortConnection::setTargetPaths(const std::set<std::string>& paths) {
    const HABMConnectionChange change(*this);
    m_targetPaths = paths;
    return std::all_of(paths.begin(), paths.end(),
                       [this](const std::string& path) { return leadsToPort(path); });
}

bool HABMPortConnection::isValid(const bool& flag) const {
    const auto standing =
        std::count_if(m_targetPaths.begin(), m_targetPaths.end(),
                      [this](const std::string& path) { return leadsToPort(path); });
    const auto needed = flag ? 1 : std::max<std::ptrdiff_t>(std::ssize(m_targetPaths), 1);
    return standing >= needed && leadsToPort(m_sourcePath);
}

void HABMPortConnection::moveEnds(const std::string& before, const std::string& after) {
    habm::move(m_sourcePath, before, after);
    std::set<std::string> targets;
    while (!m_targetPaths.empty()) {
        auto node = m_targetPaths.extract(m_targetPaths.begin());
        habm::move(node.value(), before, after);
        targets.insert(std::move(node));
    }
    m_targetPaths.swap(targets);
}
