// A program of a user of the installed library: one call into each island.

#include <HPAParamMgr.h>

int main() {
    return HPAParamMgr::getParamMgr()->getValueAsInt("general.maxThreads") > 0 ? 0 : 1;
}
