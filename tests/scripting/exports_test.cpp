// What the scripting layers, other libraries, link against.

#include <gtest/gtest.h>

#include <string>

#include "support/support.h"

namespace {

TEST(CacheExports, HaveTheirExactNames) {
    const std::string symbols = support::run("nm -DC --defined-only " TQ_HBS_LIBRARY).output;
    for (const std::string type : {"HBSCdoSequenceWrapper", "hbs_clocking::HBSClockingAlgo",
                                   "hbs_clocking::HBSPeripheral", "hbs_clocking::HBSPll"})
        for (const std::string member : {"tcltasks::native_cache<*>::get_n2t_cache()",
                                         "tcltasks::native_cache<*>::observers()",
                                         "tcltasks::native_cache<*>::get_t2n_cache()",
                                         "pyinfra::py_native_cache<*>::observers()",
                                         "pyinfra::py_native_cache<*>::get_n2py_cache()",
                                         "pyinfra::py_native_cache<*>::get_py2n_cache()"}) {
            const std::string name = std::string(member).insert(member.find('*'), type);
            EXPECT_NE(std::string::npos, symbols.find(" hdi::" + name + "\n")) << name;
        }
}

} // namespace
