// The results of a clock tree from before a run, for a run that is interrupted.
#pragma once

#include <string>
#include <vector>

#include "clocking/HBSClockingAlgo.h"

namespace hbs_clocking {

/// A copy of all that `HBSClockingAlgo::resetResults` clears. Nothing may be added to the tree
/// between `SavedResults` and `restore`.
class SavedResults {
public:
    explicit SavedResults(HBSClockingAlgo& algo);
    void restore();

private:
    struct Pll {
        HBSPll* pll;
        unsigned mul;
        unsigned div;
        unsigned cross;
        double freqMhz;
    };
    struct Peripheral {
        std::string pllName;
        unsigned div;
    };

    HBSClockingAlgo& m_algo;
    bool m_resultFound;
    float m_toleranceFactor;
    float m_totalRelativeError;
    SearchStatistics m_statistics;
    std::vector<ClockSetting> m_settings;
    std::vector<float> m_errorLimits;
    std::vector<Pll> m_plls;
    std::vector<Peripheral> m_peripherals;
};

} // namespace hbs_clocking
