#include "clocking/HBSClockingAlgoMgr.h"

#include <algorithm>

#include "clocking/HBSClockingAlgo1Pll.h"
#include "clocking/HBSClockingAlgo2Pll.h"

using hbs_clocking::HBSClockingAlgo;

HBSClockingAlgoMgr* HBSClockingAlgoMgr::getGlobal() {
    // Never destroyed: callers may still hold solvers at exit.
    static auto* mgr = new HBSClockingAlgoMgr;
    return mgr;
}

HBSClockingAlgo* HBSClockingAlgoMgr::addClockingAlgo(const std::string& name, int kind) {
    std::unique_ptr<HBSClockingAlgo> algo;
    if (kind == 1)
        algo = std::make_unique<hbs_clocking::HBSClockingAlgo1Pll>(name);
    else if (kind == 2)
        algo = std::make_unique<hbs_clocking::HBSClockingAlgo2Pll>(name);
    m_algos.push_back(std::move(algo));
    return m_algos.back().get();
}

HBSClockingAlgo* HBSClockingAlgoMgr::getClockingAlgo(const std::string& name) const {
    for (const auto& algo : m_algos)
        if (algo != nullptr && algo->getName() == name)
            return algo.get();
    return nullptr;
}

HSTFwdIter<HBSClockingAlgo*>* HBSClockingAlgoMgr::getClockingAlgos() {
    std::vector<HBSClockingAlgo*> algos;
    algos.reserve(m_algos.size());
    for (const auto& algo : m_algos)
        algos.push_back(algo.get());
    return new HSTFwdSTLIter<HBSClockingAlgo*>(std::move(algos));
}

bool HBSClockingAlgoMgr::deleteClockingAlgo(HBSClockingAlgo* algo) {
    const auto entry = std::find_if(m_algos.begin(), m_algos.end(), [algo](const auto& owned) {
        return algo != nullptr && owned != nullptr && owned->getName() == algo->getName();
    });
    if (entry == m_algos.end())
        return false;
    const std::unique_ptr<HBSClockingAlgo> removed = std::move(*entry);
    m_algos.erase(entry);
    return true;
}
