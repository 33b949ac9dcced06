// A range of addresses: where it starts and how large it is.
#pragma once

#include <string>

#include "blockmodel/HABMAddrValue.h"
#include "tq_export.h"

/// A value type. An aperture of size 0 is empty. Start or size may be invalid, if its text was bad;
/// the aperture then has no last address.
class TQ_EXPORT HABMAddrAperture {
public:
    /// Both are kept as they are, invalid ones too.
    HABMAddrAperture(const HABMAddrValue& start, const HABMAddrValue& size);
    /// Reads "START:SIZE", each as an HABMAddrValue. An empty text makes an empty aperture at 0;
    /// a text without a ":" one of which both are invalid.
    HABMAddrAperture(const std::string& text);

    /// First address; invalid if it was given so or couldn't be read.
    [[nodiscard]] const HABMAddrValue& getStart() const { return m_start; }
    /// In bytes; invalid likewise.
    [[nodiscard]] const HABMAddrValue& getSize() const { return m_size; }

    /// Last address of the aperture; its start, if it is empty; invalid, if start or size is or if
    /// the address is beyond what a value holds.
    [[nodiscard]] HABMAddrValue getHighAddress() const;

    /// Order by start, then by size.
    bool operator<(const HABMAddrAperture& other) const;
    bool operator==(const HABMAddrAperture& other) const {
        return m_start == other.m_start && m_size == other.m_size;
    }
    bool operator!=(const HABMAddrAperture& other) const { return !(*this == other); }

private:
    HABMAddrValue m_start;
    HABMAddrValue m_size;
};
