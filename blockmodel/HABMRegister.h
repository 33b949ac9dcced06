// A register of an address block: its description, and the value that a design gives it.
#pragma once

#include <string>

#include "blockmodel/HABMAddrValue.h"
#include "tq_export.h"

class HABMAddrBlock;

/// Made by `HABMAddrBlock::createRegister`, owned by its address block. A fresh register is 32 bits
/// wide at offset 0, may be read and written, and has neither reset value nor value.
class TQ_EXPORT HABMRegister {
public:
    enum class RegisterAccess { ReadWrite, ReadOnly, WriteOnly };

    HABMRegister(const HABMRegister&) = delete;
    HABMRegister& operator=(const HABMRegister&) = delete;

    [[nodiscard]] const std::string& getName() const { return m_name; }
    /// "/instance/map/block/register".
    [[nodiscard]] std::string getPath() const;
    [[nodiscard]] HABMAddrBlock* getParent() const { return m_parent; }

    /// Offset in the address block, in bytes.
    [[nodiscard]] const HABMAddrValue& getOffset() const { return m_offset; }
    void setOffset(const HABMAddrValue& offset) { m_offset = offset; }
    [[nodiscard]] const HABMAddrValue& getReset() const { return m_reset; }
    void setReset(const HABMAddrValue& reset) { m_reset = reset; }
    /// Width in bits.
    [[nodiscard]] unsigned int getWidth() const { return m_width; }
    void setWidth(const unsigned int& bits) { m_width = bits; }

    /// Texts: "read_write", "read_only", "write_only"; any other is read as the first.
    [[nodiscard]] static RegisterAccess encodeRegisterAccess(std::string text);
    [[nodiscard]] static std::string decodeRegisterAccess(RegisterAccess access);
    [[nodiscard]] RegisterAccess getAccess() const { return m_access; }
    void setAccess(const RegisterAccess& access) { m_access = access; }

    /// The value that the register was given; without one its reset value; without that an invalid
    /// value.
    [[nodiscard]] HABMAddrValue getValue() const { return m_value.isValid() ? m_value : m_reset; }
    /// The value that the register was given, or an invalid one.
    [[nodiscard]] const HABMAddrValue& getGivenValue() const { return m_value; }
    /// An invalid value takes the given one back.
    void setValue(const HABMAddrValue& value) { m_value = value; }

private:
    friend class HABMObjectMaker;
    HABMRegister(HABMAddrBlock* parent, const std::string& name);

    HABMAddrBlock* const m_parent;
    const std::string m_name;
    HABMAddrValue m_offset;
    HABMAddrValue m_reset;
    HABMAddrValue m_value;
    unsigned int m_width = 32;
    RegisterAccess m_access = RegisterAccess::ReadWrite;
};
