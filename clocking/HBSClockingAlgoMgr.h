// The process's list of clock tree solvers, by name.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "HSTFwdIter.h"
#include "clocking/HBSClockingAlgo.h"
#include "tq_export.h"

/// Made at first use and kept for the life of the process. Owns the solvers until
/// `deleteClockingAlgo`. Names needn't be unique; the first one counts. Not guarded: one thread at
/// a time.
class TQ_EXPORT HBSClockingAlgoMgr {
public:
    /// The one of the process, never null.
    static HBSClockingAlgoMgr* getGlobal();

    HBSClockingAlgoMgr(const HBSClockingAlgoMgr&) = delete;
    HBSClockingAlgoMgr& operator=(const HBSClockingAlgoMgr&) = delete;

    /// A solver of 1 or 2 PLLs. Any other `kind` gives null and leaves a null entry in the list;
    /// solvers of 4 and 6 PLLs are made through their constructors and belong to their makers.
    hbs_clocking::HBSClockingAlgo* addClockingAlgo(const std::string& name, int kind);
    /// The first solver of exactly that name, or null.
    [[nodiscard]] hbs_clocking::HBSClockingAlgo* getClockingAlgo(const std::string& name) const;
    /// A new iterator over the list as it is now, null entries included; the caller deletes it.
    [[nodiscard]] HSTFwdIter<hbs_clocking::HBSClockingAlgo*>* getClockingAlgos();
    /// Removes and deletes the first solver that has the name of `algo`, which must be one of the
    /// list; false, with nothing done, when there is no such name.
    bool deleteClockingAlgo(hbs_clocking::HBSClockingAlgo* algo);

private:
    HBSClockingAlgoMgr() = default;
    ~HBSClockingAlgoMgr() = default;

    std::vector<std::unique_ptr<hbs_clocking::HBSClockingAlgo>> m_algos;
};
