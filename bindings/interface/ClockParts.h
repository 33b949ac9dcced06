// What the files about clock trees share.
#pragma once

#include "bindings/core/Describe.h"
#include "clocking/HBSClockingAlgo.h"
#include "workbench/clocks/ClockTree.h"

namespace tq::bindings {

/// Adds what the workbench tells of a tree to its class.
void describeClockAdviser(Describe<hbs_clocking::HBSClockingAlgo>& tree);
/// The classes that it gives.
void describeClockReports(Interface& interface);

/// The tree as a file would describe it. Raises `ScriptError` for a peripheral without a domain.
[[nodiscard]] ClockTree treeOf(hbs_clocking::HBSClockingAlgo& tree);

/// The number of threads of one search; near ties are decided by it. Raises `ScriptError` for less
/// than one.
class ThreadCount {
public:
    explicit ThreadCount(int threads);
    ~ThreadCount();
    ThreadCount(const ThreadCount&) = delete;
    ThreadCount& operator=(const ThreadCount&) = delete;

private:
    int m_before;
};

} // namespace tq::bindings
