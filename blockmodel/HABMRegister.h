// A register of an address block: its description, and the value that a design gives it.
#pragma once

#include <cstdint>
#include <string>

#include "blockmodel/HABMAddrValue.h"
#include "tq_export.h"

class HABMAddrBlock;

/// Made by `HABMAddrBlock::createRegister`, owned by its address block. A fresh register is 32 bits
/// wide at offset 0, may be read and written, and has neither reset value nor value.
class TQ_EXPORT HABMRegister {
public:
    /// What software may do; with a fresh register both.
    enum class RegisterAccess { ReadWrite, ReadOnly, WriteOnly };

    HABMRegister(const HABMRegister&) = delete;
    HABMRegister& operator=(const HABMRegister&) = delete;

    /// Unique within the owner, never empty.
    [[nodiscard]] const std::string& getName() const { return m_name; }
    /// "/instance/map/block/register".
    [[nodiscard]] std::string getPath() const;
    [[nodiscard]] HABMAddrBlock* getParent() const { return m_parent; }

    /// Offset in the address block, in bytes.
    [[nodiscard]] const HABMAddrValue& getOffset() const { return m_fields.offset; }
    void setOffset(const HABMAddrValue& offset) { m_fields.offset = offset; }
    [[nodiscard]] const HABMAddrValue& getReset() const { return m_fields.reset; }
    void setReset(const HABMAddrValue& reset) { m_fields.reset = reset; }
    /// Width in bits.
    [[nodiscard]] unsigned int getWidth() const { return m_fields.width; }
    void setWidth(const unsigned int& bits) { m_fields.width = bits; }

    /// Texts: "read_write", "read_only", "write_only"; any other is read as the first.
    [[nodiscard]] static RegisterAccess encodeRegisterAccess(std::string text);
    [[nodiscard]] static std::string decodeRegisterAccess(RegisterAccess access);
    [[nodiscard]] RegisterAccess getAccess() const { return m_fields.access; }
    void setAccess(const RegisterAccess& access) { m_fields.access = access; }

    /// The value that the register was given; without one its reset value; without that an invalid
    /// value.
    [[nodiscard]] HABMAddrValue getValue() const {
        return m_fields.value.isValid() ? m_fields.value : m_fields.reset;
    }
    /// The value that the register was given, or an invalid one.
    [[nodiscard]] const HABMAddrValue& getGivenValue() const { return m_fields.value; }
    /// An invalid value takes the given one back.
    void setValue(const HABMAddrValue& value) { m_fields.value = value; }

private:
    friend class HABMObjectAccess;
    struct Fields {
        HABMAddrValue offset{std::uint64_t{0}};
        unsigned int width = 32;
        RegisterAccess access = RegisterAccess::ReadWrite;
        HABMAddrValue reset;
        HABMAddrValue value;
    };

    HABMRegister(HABMAddrBlock* parent, const std::string& name) : m_parent(parent), m_name(name) {}

    HABMAddrBlock* const m_parent;
    const std::string m_name;
    Fields m_fields;
};
