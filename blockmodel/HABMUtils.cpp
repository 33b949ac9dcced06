#include "blockmodel/HABMUtils.h"

#include <algorithm>
#include <cstddef>

bool HABMUtils::splitVLNV(const std::string& vlnv, std::string& vendor, std::string& library,
                          std::string& name, std::string& version) {
    if (std::count(vlnv.begin(), vlnv.end(), ':') != 3)
        return false;
    const std::size_t first = vlnv.find(':');
    const std::size_t second = vlnv.find(':', first + 1);
    const std::size_t third = vlnv.find(':', second + 1);
    vendor = vlnv.substr(0, first);
    library = vlnv.substr(first + 1, second - first - 1);
    name = vlnv.substr(second + 1, third - second - 1);
    version = vlnv.substr(third + 1);
    return true;
}
