// How the messages of this subsystem are marked.
#pragma once

#include "ComMsgMgr.h"

namespace hardblock {

inline constexpr const char* kCategory = "hbs";
inline constexpr unsigned kMask = 0x20000000;

} // namespace hardblock
