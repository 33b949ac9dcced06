// Tells how a file is stored.
#pragma once

#include "tq_export.h"

namespace isl::iostreams::xp {

/// True for a regular file in the protected form, which is a gzip file here. False for any other
/// file and for what can't be opened; a FIFO or a device is never opened.
TQ_EXPORT bool is_encrypted(const char* path);

} // namespace isl::iostreams::xp
