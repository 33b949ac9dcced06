// Values of component descriptions, and the expressions that they are written as.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tq_workbench_export.h"

namespace tq::ipxact {

/// Holds every address, size and reset value; what doesn't fit is an error, never a wrapped number.
__extension__ using Int128 = __int128;

/// What an expression gives: a number, a text or an array of values.
///
/// Numbers don't wrap at the width of their type: addresses above 4 GiB are written as products of
/// plain decimal numbers. Only `~` and the reductions look at `width`.
struct TQ_WORKBENCH_EXPORT Value {
    struct Integer {
        Int128 number = 0;
        unsigned width = 32;
        bool isSigned = true;
    };

    std::variant<Integer, double, std::string, std::vector<Value>> content;

    /// A signed number of 64 bits.
    [[nodiscard]] static Value ofInteger(Int128 number) { return {Integer{number, 64, true}}; }
    /// A text.
    [[nodiscard]] static Value ofText(std::string_view text) { return {std::string(text)}; }

    /// A whole number, also of a real one without a fraction; absent for anything else.
    [[nodiscard]] std::optional<Int128> integer() const;
    /// The text, or the number as a decimal text.
    [[nodiscard]] std::string text() const;
};

/// Raised for an expression without a value; `what()` says why: `unknown name "WIDTH"`.
class TQ_WORKBENCH_EXPORT ExpressionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The languages of the standard's editions.
enum class ExpressionLanguage {
    SystemVerilog, ///< from 2014 on
    XPath,         ///< up to 2009: `id('width') * spirit:pow(2, 3)`
};

/// Gives the value of a name (SystemVerilog) or an id (XPath); raises `ExpressionError`.
using NameLookup = std::function<Value(std::string_view)>;

/// Computes an expression.
///
/// SystemVerilog: the operators of integral and real numbers with their precedence, `?:`, sized and
/// unsized literals in every base (`8'hFF`, `'b1_0`), `0x10`, reals, strings, concatenation and
/// replication, arrays (`'{1, 2}`) with `[index]`, and $clog2, $pow, $exp, $ln, $log10, $sqrt,
/// $floor, $ceil, $abs, $min, $max, $signed, $unsigned, $bits. XPath: `+ - * div mod`, comparisons,
/// `and`, `or`, `id`, `number`, `string`, `concat`, `floor`, `ceiling`, `round`, `not`, `true`,
/// `false`, and `decode`, `pow`, `log` and `containsToken` of the standard. Both read
/// numbers with a unit (`4K`, K to T are powers of 1,024) and hexadecimal ones behind a "#".
///
/// Raises `ExpressionError` for a text that can't be read, for unknown digits (x, z), a division by
/// zero, a number beyond 127 bits, and about 100 levels of nesting.
[[nodiscard]] TQ_WORKBENCH_EXPORT Value evaluate(std::string_view text, ExpressionLanguage language,
                                                 const NameLookup& lookup);

/// "0x" and upper case digits; of a negative number with "-" in front.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string hexText(Int128 number);
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string decimalText(Int128 number);

} // namespace tq::ipxact
