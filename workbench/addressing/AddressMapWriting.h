// The members of the address map's JSON, for objects that hold more than the map.
#pragma once

#include "workbench/addressing/AddressMap.h"
#include "workbench/text/JsonWriter.h"

namespace tq {

/// Writes the members that `addressMapJson` describes.
void writeMembers(JsonWriter& json, const AddressMap& map, bool withRegisters = false);

} // namespace tq
