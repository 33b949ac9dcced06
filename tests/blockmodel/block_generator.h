// Blocks made by chance from a seed, with something of all that a block can hold.
#pragma once

#include <memory>
#include <string>

#include "blockmodel/HABM.h"

namespace generated {

/// The same block for the same seed. `levels` counts the levels below the top block.
std::unique_ptr<HABMBlock> block(unsigned seed, int levels = 3);

/// The bytes that a block has as a file: equal for equal blocks alone.
std::string bytes(const HABMBlock& block);

} // namespace generated
