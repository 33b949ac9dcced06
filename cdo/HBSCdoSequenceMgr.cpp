#include "cdo/HBSCdoSequenceMgr.h"

#include <memory>

#include "HTCErrors.h"

HBSCdoSequenceMgr& HBSCdoSequenceMgr::getGlobal() {
    static HBSCdoSequenceMgr m_instance;
    return m_instance;
}

HBSCdoSequenceWrapper* HBSCdoSequenceMgr::createCdoSequenceWrapper(const std::string& name,
                                                                   CdoSequence* sequence) {
    auto wrapper = std::make_unique<HBSCdoSequenceWrapper>(name, sequence);
    m_wrappers[name] = wrapper.get();
    return wrapper.release();
}

void HBSCdoSequenceMgr::deleteCdoSequenceWrapper(const std::string& name) {
    const auto entry = findExisting(name);
    // Removed from the table first: the wrapper's destructor calls the scripting layers, which must
    // not find it here. `name` may refer to the wrapper's own text.
    const std::unique_ptr<HBSCdoSequenceWrapper> wrapper(entry->second);
    m_wrappers.erase(entry);
}

HBSCdoSequenceWrapper* HBSCdoSequenceMgr::getCdoSequenceWrapper(const std::string& name) {
    return findExisting(name)->second;
}

CdoSequence* HBSCdoSequenceMgr::getCdoSequence(const std::string& name) {
    const auto entry = m_wrappers.find(name);
    return entry == m_wrappers.end() ? nullptr : entry->second->getSequence();
}

std::string HBSCdoSequenceMgr::getCdoSequenceName(CdoSequence* sequence) {
    for (const auto& [name, wrapper] : m_wrappers)
        if (wrapper->getSequence() == sequence)
            return name;
    return {};
}

void HBSCdoSequenceMgr::getCdoSeqWrapperColl(std::vector<HBSCdoSequenceWrapper*>& out) {
    for (const auto& entry : m_wrappers)
        out.push_back(entry.second);
}

HBSCdoSequenceMgr::Wrappers::iterator HBSCdoSequenceMgr::findExisting(const std::string& name) {
    const auto entry = m_wrappers.find(name);
    if (entry == m_wrappers.end())
        throw HTCErrors::command_failed("sequence '" + name + "' does not exist");
    return entry;
}
