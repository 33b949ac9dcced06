#include "handoff/HWHGenerator.h"

#include "handoff/HWHDecision.h"
#include "handoff/HWHDocumentWriter.h"

HWHGenerator::HWHGenerator(const HWHTextMap& designParams, HWHTextMap& systemInfo)
    : m_designParams(designParams), m_systemInfo(systemInfo), m_systemInfoCopy(systemInfo) {}

void HWHGenerator::generate(const std::string& connectivityFile, const std::string& outputFile) {
    try {
        const hwh::Decision decision(m_designParams, m_systemInfo, connectivityFile);
        hwh::writeDocument(decision.model, hwh::DocumentFacts::collect(m_systemInfo), outputFile);
    } catch (...) {
        // Keys were only added; the caller's own entries stay where they are.
        std::erase_if(m_systemInfo,
                      [&](const auto& entry) { return !m_systemInfoCopy.contains(entry.first); });
        throw;
    }
}
