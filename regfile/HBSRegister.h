// One register of a register description file.
#pragma once

#include <string>

#include "tq_export.h"

namespace hbs {

/// Made by `HBSRegFileParser` and kept for the life of the process. What the file didn't give is
/// empty.
class HBSRegister {
public:
    HBSRegister(const HBSRegister&) = delete;
    HBSRegister& operator=(const HBSRegister&) = delete;

    /// The name as written in the file.
    [[nodiscard]] TQ_EXPORT const std::string& getName() const;
    [[nodiscard]] TQ_EXPORT const std::string& getDesc() const;
    /// The low 32 bits of the absolute address: "0X" and upper-case hexadecimal digits without
    /// leading zeros. Address 0 is "0X" alone.
    [[nodiscard]] TQ_EXPORT const std::string& getOffset() const;

    /// The memory map's name, "_" and the register's name, in upper case.
    [[nodiscard]] const std::string& getFullName() const { return m_fullName; }
    /// "rw", "ro" or "wo", or empty.
    [[nodiscard]] const std::string& getAccess() const { return m_access; }
    /// How many times the register repeats, as the file says; 0 when it doesn't.
    [[nodiscard]] int getDim() const { return m_dim; }

private:
    friend class HBSRegFileParser;

    HBSRegister() = default;

    std::string m_name;
    std::string m_desc;
    std::string m_fullName;
    std::string m_offset;
    std::string m_access;
    std::string m_spareText; // stays empty
    int m_dim = 0;
};

} // namespace hbs
