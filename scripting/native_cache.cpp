#include "scripting/native_cache.h"

namespace hdi::tcltasks {

template class native_cache<HBSCdoSequenceWrapper*>;
template class native_cache<hbs_clocking::HBSClockingAlgo*>;
template class native_cache<hbs_clocking::HBSPeripheral*>;
template class native_cache<hbs_clocking::HBSPll*>;

} // namespace hdi::tcltasks
