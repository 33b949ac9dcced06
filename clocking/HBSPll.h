// One PLL of a clock tree: its limit, and the result of a run.
#pragma once

#include <cstdint>
#include <string>

#include "tq_export.h"

namespace hbs_clocking {

/// Owned by its power domain; callers get it from `createPllConfig` or `HBSPowerDomain::addPll`.
/// A result is readable after a successful run; until then, and after a failed one, it reads 0.
class TQ_EXPORT HBSPll {
public:
    /// A PLL without a result, with the limit of 2000 MHz.
    HBSPll(const std::string& name, const std::string& powerDomainName,
           std::int32_t powerDomainIndex);

    HBSPll(const HBSPll&) = delete;
    HBSPll& operator=(const HBSPll&) = delete;

    /// By which its domain finds it, and results name it.
    [[nodiscard]] const std::string& getName() const { return m_name; }
    void setName(const std::string& name) { m_name = name; }
    [[nodiscard]] const std::string& getPowerDomainName() const { return m_powerDomainName; }

    /// Highest frequency in MHz that may leave this PLL before a peripheral divider; 2000 unless
    /// set.
    [[nodiscard]] float getMaxPllFreq() const { return m_maxPllFreq; }
    void setMaxPllFreq(float maxPllFreqMhz) { m_maxPllFreq = maxPllFreqMhz; }

    /// Stored for the caller; no solver reads it.
    [[nodiscard]] bool isNOCpll() const { return m_nocPll; }
    void setNOCpll(bool nocPll) { m_nocPll = nocPll; }

    /// Feedback multiplier.
    [[nodiscard]] std::uint32_t getVcoMul() const { return m_vcoMul; }
    /// Output divider.
    [[nodiscard]] std::uint32_t getClkoutDiv() const { return m_clkoutDiv; }
    /// Cross-domain divider; 0 means none.
    [[nodiscard]] std::uint32_t getCrossDomainDiv() const { return m_crossDomainDiv; }
    /// Frequency in MHz after the output divider: reference × multiplier ÷ output divider,
    /// computed in single precision and then widened.
    [[nodiscard]] double getVcoFreq() const { return m_vcoFreq; }

    // For the solvers.

    /// Frequency in MHz of the clock that other domains see, or 0 without a cross-domain divider.
    [[nodiscard]] double getCrossDomainFreq() const { return m_crossDomainFreq; }
    [[nodiscard]] std::int32_t getPowerDomainIndex() const { return m_powerDomainIndex; }
    void setPowerDomainIndex(std::int32_t index) { m_powerDomainIndex = index; }
    void setConfig(std::uint32_t vcoMul, std::uint32_t clkoutDiv, std::uint32_t crossDomainDiv,
                   double vcoFreqMhz);

private:
    bool m_nocPll = false;
    std::int32_t m_powerDomainIndex;
    float m_maxPllFreq = 2000.0F;
    std::string m_name;
    std::string m_powerDomainName;
    std::uint32_t m_vcoMul = 0;
    std::uint32_t m_clkoutDiv = 0;
    std::uint32_t m_crossDomainDiv = 0;
    double m_vcoFreq = 0.0;
    double m_crossDomainFreq = 0.0;
};

} // namespace hbs_clocking
