// One peripheral of a clock tree: the frequency it asks for, and what a run gave it.
#pragma once

#include <cstdint>
#include <string>

#include "tq_export.h"

namespace hbs_clocking {

class HBSClockingAlgo;
class SavedResults;

/// Owned by its solver, made by `HBSClockingAlgo::addPeripheral`. A result is readable after a
/// successful run.
class TQ_EXPORT HBSPeripheral {
public:
    /// `powerDomainIndex` is -1 for a domain that doesn't exist.
    HBSPeripheral(const std::string& name, const std::string& powerDomainName,
                  std::int32_t powerDomainIndex, float requestedFreqMhz, bool enabled,
                  HBSClockingAlgo* algo);

    HBSPeripheral(const HBSPeripheral&) = delete;
    HBSPeripheral& operator=(const HBSPeripheral&) = delete;

    /// By which `HBSClockingAlgo::getPeripheral` finds it.
    [[nodiscard]] const std::string& getName() const { return m_name; }
    void setName(const std::string& name) { m_name = name; }

    /// MHz.
    [[nodiscard]] float getRequestedFreq() const { return m_requestedFreq; }
    void setRequestedFreq(float requestedFreqMhz) { m_requestedFreq = requestedFreqMhz; }

    /// Only enabled peripherals take part in a run.
    [[nodiscard]] bool isEnabled() const { return m_enabled; }
    void setEnabled(bool enabled) { m_enabled = enabled; }

    /// Marks the peripheral that sets the NOC clock of a 4- or 6-PLL tree.
    [[nodiscard]] bool isNOCPeripheral() const { return m_nocPeripheral; }
    void setNOCPeripheral(bool nocPeripheral) { m_nocPeripheral = nocPeripheral; }

    /// As constructed, or as renamed by `setPowerDomain`.
    [[nodiscard]] const std::string& getPowerDomainName() const { return m_powerDomainName; }
    /// Renames the domain that is read back and returns true. The solvers go by the domain found
    /// when the peripheral was added: a peripheral can't be moved.
    bool setPowerDomain(const std::string& name);

    /// Percent.
    [[nodiscard]] float getMaxAllowedPeripheralError() const { return m_maxAllowedError; }
    /// Stores the smaller of `percent` and 100. An allowed error of 0 refuses even a perfect match.
    void setMaxAllowedPeripheralError(float percent);

    /// The PLL chosen; empty without a result.
    [[nodiscard]] const std::string& getPllName() const { return m_pllName; }
    /// The peripheral's own divider, 1 to 1023; 0 without a result.
    [[nodiscard]] std::uint32_t getClkoutDiv() const { return m_clkoutDiv; }
    /// MHz. Keeps its old value when a later run finds nothing or leaves the peripheral out. Reads
    /// 0 for a peripheral of a 2-PLL tree that takes the other domain's PLL: its frequency is
    /// `getVcoFreq` of that PLL divided by `getClkoutDiv`.
    [[nodiscard]] double getActualFreq() const { return m_actualFreq; }

    // For the solvers.

    /// As constructed.
    [[nodiscard]] std::int32_t getPowerDomainIndex() const { return m_powerDomainIndex; }
    /// Stores both and works out the actual frequency, which stays when no PLL has that name or the
    /// divider is 0.
    void setPllResult(const std::string& pllName, std::uint32_t divider);

private:
    friend class SavedResults;

    bool m_enabled;
    bool m_nocPeripheral = false;
    std::int32_t m_powerDomainIndex;
    float m_requestedFreq;
    float m_maxAllowedError = 100.0F;
    std::string m_name;
    std::string m_powerDomainName;
    HBSClockingAlgo* m_algo;
    std::string m_pllName;
    std::uint32_t m_clkoutDiv = 0;
    double m_actualFreq = 0.0;
};

} // namespace hbs_clocking
