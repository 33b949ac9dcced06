// One entry of "external_addressing" in the connectivity metadata.
#pragma once

#include <map>
#include <string>

/// All texts are those of the metadata, unchanged; a field that it lacks is empty.
struct HWHExternalAddressing {
    std::string ENPARAM;
    std::string VLNV;
    std::string MODE;
    std::map<std::string, std::map<std::string, std::string>> ADDRESS_SPACE; ///< by space name
};
