// What the scripting layers, other libraries, link against.

#include <gtest/gtest.h>

#include <string>

#include "support/support.h"

namespace {

class CacheExports : public testing::TestWithParam<const char*> {};

TEST_P(CacheExports, HaveTheirExactNames) {
    const std::string symbols = support::run("nm -DC --defined-only " TQ_HBS_LIBRARY).output;
    const std::string tcl = std::string(" hdi::tcltasks::native_cache<") + GetParam() + "*>::";
    const std::string python = std::string(" hdi::pyinfra::py_native_cache<") + GetParam() + "*>::";
    for (const auto& name :
         {tcl + "get_n2t_cache()\n", tcl + "get_t2n_cache()\n", tcl + "observers()\n",
          python + "get_n2py_cache()\n", python + "get_py2n_cache()\n", python + "observers()\n"})
        EXPECT_NE(std::string::npos, symbols.find(name)) << name;
}

INSTANTIATE_TEST_SUITE_P(Types, CacheExports,
                         testing::Values("HBSCdoSequenceWrapper", "hbs_clocking::HBSClockingAlgo",
                                         "hbs_clocking::HBSPeripheral", "hbs_clocking::HBSPll"));

} // namespace
