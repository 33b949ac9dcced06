// A pin of a hard block: its name, direction, kind, default value and range.
#pragma once

#include <string>

#include "tq_export.h"

namespace hardblock {

/// As seen from the hard block.
enum class Direction : int { In = 0, InOut = 1, Out = 2 };

/// A single wire, or a vector with bounds.
enum class Type : int { Wire = 0, Vector = 1 };

/// A record without rules of its own: the bounds aren't tied to the type, and nothing is computed
/// with them. A new pin is an `InOut` `Wire` without default value and range.
class TQ_EXPORT Pin {
public:
    /// A pin of that name with the values that a metadata file may leave out.
    explicit Pin(const std::string& name);

    /// As constructed or set; any text.
    [[nodiscard]] std::string getName() const;
    /// The default value as the metadata's text, never parsed.
    [[nodiscard]] std::string getDefaultValue() const;
    [[nodiscard]] Direction getDirection() const;
    /// "IN", "OUT", and "INOUT" for every other value.
    [[nodiscard]] std::string getDirectionAsStr() const;
    [[nodiscard]] Type getType() const;
    /// The bounds of the range as they were given; -1 means "not given".
    [[nodiscard]] int getLeftSize() const;
    [[nodiscard]] int getRightSize() const;

    /// Each replaces one value; nothing is checked. Sizes are the bounds of a vector, -1 for none.
    void setName(const std::string& name);
    void setDefaultValue(const std::string& value);
    void setDirection(Direction direction);
    void setType(Type type);
    void setLeftSize(int size);
    void setRightSize(int size);

private:
    std::string m_name;
    Type m_type = Type::Wire;
    Direction m_direction = Direction::InOut;
    std::string m_defaultValue;
    int m_leftSize = -1;
    int m_rightSize = -1;
};

} // namespace hardblock
