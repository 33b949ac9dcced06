// A power domain of a clock tree: a group of PLLs and peripherals with one frequency limit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "clocking/HBSPll.h"
#include "tq_export.h"

namespace hbs_clocking {

class HBSPeripheral;

/// Owned by its solver, made by `addPowerDomain` or `createPllConfig`; owns its PLLs. Each
/// solver documents which clocks of other domains its peripherals may take, and by which dividers.
/// The name "NOC_DOMAIN" marks the domain of the NOC clock.
class TQ_EXPORT HBSPowerDomain {
public:
    /// A domain without PLLs; `index` is its position in the solver's list.
    HBSPowerDomain(const std::string& name, std::int32_t index);
    virtual ~HBSPowerDomain();

    HBSPowerDomain(const HBSPowerDomain&) = delete;
    HBSPowerDomain& operator=(const HBSPowerDomain&) = delete;

    /// Appends a new PLL that carries this domain's name and index. It stays the domain's.
    HBSPll* addPll(const std::string& pllName, bool isNoc);
    /// The first PLL of that name, or null.
    [[nodiscard]] HBSPll* getPll(const std::string& name) const;

    // For the solvers.

    /// As constructed.
    [[nodiscard]] const std::string& getName() const { return m_name; }
    /// Position in the solver's list of domains.
    [[nodiscard]] std::int32_t getIndex() const { return m_index; }
    void setIndex(std::int32_t index) { m_index = index; }
    /// Ceiling, as a fraction, on the error of this domain's peripherals; falls during a run.
    [[nodiscard]] float getErrorLimit() const { return m_errorLimit; }
    void setErrorLimit(float errorLimit) { m_errorLimit = errorLimit; }
    [[nodiscard]] std::size_t getPllCount() const { return m_plls.size(); }
    /// The largest limit among the PLLs in MHz, never below 1.
    [[nodiscard]] float getMaxPllFreq() const;
    /// Prints "Index out of range\n" and gives null for a bad index.
    [[nodiscard]] HBSPll* getPllAt(unsigned index) const;
    [[nodiscard]] std::vector<HBSPll*> getPllList() const;
    /// Clears the result of every PLL.
    void resetPlls();

    /// A place for callers to note members of the domain; no solver fills or reads it.
    void addMember(HBSPeripheral* peripheral) { m_members.push_back(peripheral); }
    [[nodiscard]] std::size_t getMemberCount() const { return m_members.size(); }

private:
    std::int32_t m_index;
    float m_errorLimit = 1.0F;
    std::vector<std::unique_ptr<HBSPll>> m_plls;
    std::string m_name;
    std::vector<HBSPeripheral*> m_members;
};

} // namespace hbs_clocking
