#include "blockmodel/HABMRegister.h"

#include "blockmodel/HABMAddrBlock.h"
#include "blockmodel/HABMEnumText.h"

namespace {

constexpr HABMEnumTexts<HABMRegister::RegisterAccess, 3> kAccessTexts{{
    {"read_write", HABMRegister::RegisterAccess::ReadWrite},
    {"read_only", HABMRegister::RegisterAccess::ReadOnly},
    {"write_only", HABMRegister::RegisterAccess::WriteOnly},
}};

} // namespace

std::string HABMRegister::getPath() const {
    return m_parent->getPath() + "/" + m_name;
}

HABMRegister::RegisterAccess HABMRegister::encodeRegisterAccess(std::string text) {
    return encodeEnum(kAccessTexts, text, RegisterAccess::ReadWrite);
}

std::string HABMRegister::decodeRegisterAccess(RegisterAccess access) {
    return decodeEnum(kAccessTexts, access);
}
