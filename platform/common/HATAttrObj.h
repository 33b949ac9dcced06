// Base of objects to which the tool can attach attributes.
#pragma once

#include "tq_export.h"

/// The library only inherits from it; nothing here is called. Not to be deleted through.
class TQ_EXPORT HATAttrObj {
public:
    HATAttrObj(const HATAttrObj&) = delete;
    HATAttrObj& operator=(const HATAttrObj&) = delete;

protected:
    HATAttrObj() = default;
    ~HATAttrObj() = default;
};
