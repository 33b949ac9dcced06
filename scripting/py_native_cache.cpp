#include "scripting/py_native_cache.h"

namespace hdi::pyinfra {

template class py_native_cache<HBSCdoSequenceWrapper*>;
template class py_native_cache<hbs_clocking::HBSClockingAlgo*>;
template class py_native_cache<hbs_clocking::HBSPeripheral*>;
template class py_native_cache<hbs_clocking::HBSPll*>;

} // namespace hdi::pyinfra
