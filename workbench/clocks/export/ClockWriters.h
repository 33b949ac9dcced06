// The writers of exported clock trees, one for each format, and what they share.
#pragma once

#include <cstdint>
#include <string>

#include "workbench/clocks/export/ClockExport.h"

namespace tq::clock_export {

[[nodiscard]] std::uint64_t hzOf(double mhz);
/// The frequency of the tree's file, which single precision has rounded.
[[nodiscard]] double referenceOf(float referenceMhz);
/// The first PLL of that name.
[[nodiscard]] const ClockReport::Pll& pllOf(const ClockReport& report, const std::string& name);
/// Whether the PLL's clock is taken through its cross-domain divider by some peripheral.
[[nodiscard]] bool isTakenAcross(const ClockReport& report, const std::string& pll);

[[nodiscard]] std::string writeDevicetree(const ClockReport& report, float referenceMhz,
                                          const DiagnosticSink& sink);
[[nodiscard]] std::string writeConstraints(const ClockReport& report, float referenceMhz,
                                           const DiagnosticSink& sink);
[[nodiscard]] std::string writeCHeader(const ClockReport& report, float referenceMhz,
                                       const DiagnosticSink& sink);

} // namespace tq::clock_export
