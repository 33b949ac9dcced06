// The types of native objects that scripts can hold. The caches need no more of them than their
// names.
#pragma once

class HBSCdoSequenceWrapper;

namespace hbs_clocking {
class HBSClockingAlgo;
class HBSPeripheral;
class HBSPll;
} // namespace hbs_clocking
