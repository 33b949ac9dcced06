#include "workbench/ipxact/Expression.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace tq::ipxact {

namespace {

/// Of the parser's own calls; an expression takes about three a parenthesis.
constexpr int kMostLevels = 300;
constexpr std::size_t kMostItems = 65'536;
constexpr Int128 kMost = (((Int128{1} << 126) - 1) << 1) + 1;

[[noreturn]] void fail(const std::string& text) {
    throw ExpressionError(text);
}

[[noreturn]] void failForSize() {
    fail("a number has more than 127 bits");
}

Int128 sum(Int128 left, Int128 right) {
    Int128 result = 0;
    if (__builtin_add_overflow(left, right, &result))
        failForSize();
    return result;
}

Int128 difference(Int128 left, Int128 right) {
    Int128 result = 0;
    if (__builtin_sub_overflow(left, right, &result))
        failForSize();
    return result;
}

Int128 product(Int128 left, Int128 right) {
    Int128 result = 0;
    if (__builtin_mul_overflow(left, right, &result))
        failForSize();
    return result;
}

Int128 power(Int128 base, Int128 exponent) {
    if (exponent < 0)
        return base == 1 ? 1 : base == -1 ? (exponent % 2 == 0 ? 1 : -1) : 0;
    Int128 result = 1;
    while (exponent != 0) {
        if (exponent % 2 != 0)
            result = product(result, base);
        exponent /= 2;
        if (exponent != 0)
            base = product(base, base);
    }
    return result;
}

Int128 shifted(Int128 number, Int128 count) {
    if (count < 0 || number < 0)
        fail("a shift of or by a negative number");
    if (number == 0)
        return 0;
    if (count > 126 || number > (kMost >> static_cast<int>(count)))
        failForSize();
    return number << static_cast<int>(count);
}

Int128 whole(double number) {
    if (!(std::fabs(number) < 1e38))
        failForSize();
    return static_cast<Int128>(number);
}

/// Digits may be separated by "_".
Int128 digits(std::string_view text, unsigned base) {
    Int128 number = 0;
    bool isEmpty = true;
    for (const char c : text) {
        if (c == '_')
            continue;
        unsigned digit = 99;
        if (c >= '0' && c <= '9')
            digit = static_cast<unsigned>(c - '0');
        else if (c >= 'a' && c <= 'f')
            digit = static_cast<unsigned>(c - 'a') + 10;
        else if (c >= 'A' && c <= 'F')
            digit = static_cast<unsigned>(c - 'A') + 10;
        if (digit >= base)
            fail("\"" + std::string(text) + "\" isn't a number of base " + std::to_string(base));
        number = sum(product(number, Int128{base}), Int128{digit});
        isEmpty = false;
    }
    if (isEmpty)
        fail("a number has no digits");
    return number;
}

unsigned bitsOf(Int128 number) {
    unsigned bits = 1;
    for (Int128 rest = number < 0 ? -(number + 1) : number; rest > 1; rest >>= 1)
        ++bits;
    return bits;
}

bool isNameStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '$';
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isNamePart(char c) {
    return isNameStart(c) || isDigit(c);
}

struct Operator {
    std::string_view text;
    int precedence; ///< the higher, the tighter
};

/// Longer ones first.
constexpr std::array<Operator, 26> kOperators{{
    {"<<<", 8}, {">>>", 8}, {"===", 6}, {"!==", 6}, {"**", 11}, {"<<", 8}, {">>", 8},
    {"<=", 7},  {">=", 7},  {"==", 6},  {"!=", 6},  {"&&", 2},  {"||", 1}, {"~^", 4},
    {"^~", 4},  {"+", 9},   {"-", 9},   {"*", 10},  {"/", 10},  {"%", 10}, {"<", 7},
    {">", 7},   {"&", 5},   {"^", 4},   {"|", 3},   {"=", 0},
}};
constexpr std::array<Operator, 13> kXPathOperators{{
    {"or", 1},
    {"and", 2},
    {"!=", 6},
    {"<=", 7},
    {">=", 7},
    {"=", 6},
    {"<", 7},
    {">", 7},
    {"+", 9},
    {"-", 9},
    {"*", 10},
    {"div", 10},
    {"mod", 10},
}};
constexpr int kUnary = 12;

double real(const Value& value) {
    if (const auto* number = std::get_if<double>(&value.content))
        return *number;
    if (const auto* number = std::get_if<Value::Integer>(&value.content))
        return static_cast<double>(number->number);
    fail("a number was expected");
}

Value::Integer integerOf(const Value& value) {
    if (const auto* number = std::get_if<Value::Integer>(&value.content))
        return *number;
    if (const auto number = value.integer())
        return {*number, 64, true};
    fail("a whole number was expected");
}

bool isTrue(const Value& value) {
    if (const auto* text = std::get_if<std::string>(&value.content))
        return !text->empty();
    return real(value) != 0;
}

Value truth(bool flag) {
    return {Value::Integer{flag ? 1 : 0, 1, false}};
}

bool isReal(const Value& value) {
    return std::holds_alternative<double>(value.content);
}

template <class Number>
std::optional<bool> compare(std::string_view op, const Number& left, const Number& right) {
    if (op == "==" || op == "===" || op == "=")
        return left == right;
    if (op == "!=" || op == "!==")
        return left != right;
    if (op == "<")
        return left < right;
    if (op == "<=")
        return left <= right;
    if (op == ">")
        return left > right;
    if (op == ">=")
        return left >= right;
    return std::nullopt;
}

double realResult(std::string_view op, double left, double right) {
    if (op == "+")
        return left + right;
    if (op == "-")
        return left - right;
    if (op == "*")
        return left * right;
    if (op == "**")
        return std::pow(left, right);
    if (right == 0)
        fail("a division by zero");
    if (op == "/")
        return left / right;
    if (op == "%")
        return std::fmod(left, right);
    fail("\"" + std::string(op) + "\" takes whole numbers");
}

Int128 bitResult(std::string_view op, Int128 left, Int128 right) {
    if (op == "&")
        return left & right;
    if (op == "|")
        return left | right;
    if (op == "^")
        return left ^ right;
    if (op == "<<" || op == "<<<")
        return shifted(left, right);
    if (op == ">>" || op == ">>>") {
        if (right < 0)
            fail("a shift of or by a negative number");
        return left >> static_cast<int>(std::min<Int128>(right, 127));
    }
    fail("\"" + std::string(op) + "\" isn't known");
}

Int128 integerResult(std::string_view op, Int128 left, Int128 right) {
    if (op == "+")
        return sum(left, right);
    if (op == "-")
        return difference(left, right);
    if (op == "*")
        return product(left, right);
    if (op == "**")
        return power(left, right);
    if (op != "/" && op != "%")
        return bitResult(op, left, right);
    if (right == 0)
        fail("a division by zero");
    if (right == -1) // the least number has no counterpart
        return op == "%" ? 0 : integerResult("-", 0, left);
    return op == "/" ? left / right : left % right;
}

Value binary(std::string_view op, const Value& left, const Value& right) {
    if (op == "&&")
        return truth(isTrue(left) && isTrue(right));
    if (op == "||")
        return truth(isTrue(left) || isTrue(right));
    if (std::holds_alternative<std::string>(left.content) ||
        std::holds_alternative<std::string>(right.content)) {
        if (const auto result = compare(op, left.text(), right.text()))
            return truth(*result);
        fail("\"" + std::string(op) + "\" takes numbers");
    }
    if (isReal(left) || isReal(right)) {
        if (const auto result = compare(op, real(left), real(right)))
            return truth(*result);
        return {realResult(op, real(left), real(right))};
    }
    const Value::Integer a = integerOf(left), b = integerOf(right);
    if (const auto result = compare(op, a.number, b.number))
        return truth(*result);
    return {Value::Integer{integerResult(op, a.number, b.number), std::max(a.width, b.width),
                           a.isSigned && b.isSigned}};
}

Int128 maskOf(unsigned width) {
    return width >= 127 ? kMost : (Int128{1} << static_cast<int>(width)) - 1;
}

Value unary(char op, const Value& value) {
    if (op == '!')
        return truth(!isTrue(value));
    if (op == '+')
        return value;
    if (op == '-' && isReal(value))
        return {-real(value)};
    Value::Integer number = integerOf(value);
    const Int128 mask = maskOf(number.width);
    switch (op) {
    case '-':
        number.number = integerResult("-", 0, number.number);
        number.isSigned = true;
        return {number};
    case '~':
        number.number = number.isSigned ? ~number.number : ~number.number & mask;
        return {number};
    case '&':
        return truth((number.number & mask) == mask);
    case '|':
        return truth((number.number & mask) != 0);
    default: {
        bool parity = false;
        for (Int128 rest = number.number & mask; rest != 0; rest &= rest - 1)
            parity = !parity;
        return truth(parity);
    }
    }
}

Int128 ceilingLog2(Int128 number) {
    return number <= 1 ? 0 : Int128{bitsOf(number - 1)};
}

using Arguments = std::vector<Value>;

const Value& argument(const Arguments& arguments, std::size_t index, std::string_view name) {
    if (index >= arguments.size())
        fail(std::string(name) + " has too few arguments");
    return arguments[index];
}

Value raised(const Value& base, const Value& exponent) {
    return binary("**", base, exponent);
}

/// The functions of SystemVerilog; a name without a meaning here is an error.
Value call(std::string_view name, const Arguments& arguments) {
    const auto at = [&](std::size_t index) -> const Value& {
        return argument(arguments, index, name);
    };
    if (name == "$clog2")
        return Value::ofInteger(ceilingLog2(integerOf(at(0)).number));
    if (name == "$pow")
        return raised(at(0), at(1));
    if (name == "$min" || name == "$max") {
        const bool isFirst = isTrue(binary("<", at(0), at(1))) == (name == "$min");
        return at(isFirst ? 0 : 1);
    }
    if (name == "$abs")
        return isTrue(binary("<", at(0), Value::ofInteger(0))) ? unary('-', at(0)) : at(0);
    if (name == "$signed" || name == "$unsigned" || name == "$rtoi" || name == "$itor")
        return name == "$rtoi" ? Value::ofInteger(whole(real(at(0)))) : at(0);
    if (name == "$bits")
        return Value::ofInteger(integerOf(at(0)).width);
    using Function = double (*)(double);
    static constexpr std::array<std::pair<std::string_view, Function>, 6> kFunctions{{
        {"$exp", [](double x) { return std::exp(x); }},
        {"$ln", [](double x) { return std::log(x); }},
        {"$log10", [](double x) { return std::log10(x); }},
        {"$sqrt", [](double x) { return std::sqrt(x); }},
        {"$floor", [](double x) { return std::floor(x); }},
        {"$ceil", [](double x) { return std::ceil(x); }},
    }};
    for (const auto& [known, function] : kFunctions)
        if (known == name)
            return {function(real(at(0)))};
    fail("unknown function \"" + std::string(name) + "\"");
}

Value literalOf(std::string_view text);

/// The functions of XPath, and those of the standard behind any prefix.
Value callXPath(std::string_view name, const Arguments& arguments, const NameLookup& lookup) {
    name.remove_prefix(std::min(name.size(), name.find(':') + 1));
    const auto at = [&](std::size_t index) -> const Value& {
        return argument(arguments, index, name);
    };
    if (name == "id")
        return lookup(at(0).text());
    if (name == "decode" || name == "number") {
        const auto* text = std::get_if<std::string>(&at(0).content);
        return text == nullptr ? at(0) : literalOf(*text);
    }
    if (name == "pow")
        return raised(at(0), at(1));
    if (name == "log") {
        const double result = std::log(real(at(1))) / std::log(real(at(0)));
        return {std::fabs(result - std::round(result)) < 1e-9 ? std::round(result) : result};
    }
    if (name == "containsToken") {
        const std::string text = " " + at(0).text() + " ";
        return truth(text.find(" " + at(1).text() + " ") != std::string::npos);
    }
    if (name == "floor")
        return {std::floor(real(at(0)))};
    if (name == "ceiling")
        return {std::ceil(real(at(0)))};
    if (name == "round")
        return {std::floor(real(at(0)) + 0.5)};
    if (name == "string")
        return Value::ofText(at(0).text());
    if (name == "not")
        return truth(!isTrue(at(0)));
    if (name == "true" || name == "false")
        return truth(name == "true");
    if (name == "concat") {
        std::string text;
        for (const Value& part : arguments)
            text += part.text();
        return Value::ofText(text);
    }
    fail("unknown function \"" + std::string(name) + "\"");
}

class Parser {
public:
    Parser(std::string_view text, ExpressionLanguage language, const NameLookup& lookup)
        : m_text(text), m_isXPath(language == ExpressionLanguage::XPath), m_lookup(lookup) {}

    Value parse() {
        Value value = choice();
        if (skipBlanks(); m_at != m_text.size())
            fail("unexpected \"" + std::string(m_text.substr(m_at, 20)) + "\"");
        return value;
    }

private:
    /// Counts the levels of nesting, so that no text overflows the stack.
    struct Level {
        explicit Level(int& levels) : m_levels(levels) {
            if (++m_levels > kMostLevels)
                fail("an expression is nested too deeply");
        }
        ~Level() { --m_levels; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        int& m_levels;
    };

    void skipBlanks() {
        while (m_at < m_text.size() &&
               std::string_view(" \t\r\n").find(m_text[m_at]) != std::string_view::npos)
            ++m_at;
    }
    [[nodiscard]] char peek(std::size_t ahead = 0) const {
        return m_at + ahead < m_text.size() ? m_text[m_at + ahead] : '\0';
    }
    bool take(char c) {
        skipBlanks();
        if (peek() != c)
            return false;
        ++m_at;
        return true;
    }
    void expect(char c) {
        if (!take(c))
            fail(std::string("'") + c + "' was expected" +
                 (m_at < m_text.size() ? " at \"" + std::string(m_text.substr(m_at, 20)) + "\""
                                       : " at the end"));
    }

    /// Of both branches, the one that isn't chosen may be without a value.
    Value choice() {
        const Level level(m_levels);
        Value condition = operation(0);
        if (m_isXPath || !take('?'))
            return condition;
        const bool isFirst = isTrue(condition);
        Value first = branch(isFirst);
        expect(':');
        Value second = branch(!isFirst);
        return isFirst ? first : second;
    }
    Value branch(bool isChosen) {
        if (isChosen)
            return choice();
        const bool wasIdle = std::exchange(m_isIdle, true);
        const std::size_t start = m_at;
        Value value = Value::ofInteger(0);
        try {
            value = choice();
        } catch (const ExpressionError&) {
            m_at = start;
            skipBranch();
        }
        m_isIdle = wasIdle;
        return value;
    }
    /// Moves behind a branch that can't be computed.
    void skipBranch() {
        static constexpr std::string_view kOpening = "({[", kClosing = ")}]";
        int depth = 0, choices = 0;
        for (; m_at < m_text.size(); ++m_at) {
            const char c = m_text[m_at];
            const bool isClosing = kClosing.find(c) != std::string_view::npos;
            if (depth == 0 && (isClosing || c == ',' || (c == ':' && choices == 0)))
                return;
            if (kOpening.find(c) != std::string_view::npos)
                ++depth;
            else if (isClosing)
                --depth;
            else if (depth == 0 && (c == '?' || c == ':'))
                choices += c == '?' ? 1 : -1;
        }
    }

    [[nodiscard]] const Operator* operatorHere() const {
        const auto matches = [this](const Operator& op) {
            if (m_text.substr(m_at, op.text.size()) != op.text)
                return false;
            return !isNameStart(op.text.front()) || !isNamePart(peek(op.text.size()));
        };
        if (m_isXPath) {
            const auto* const found =
                std::find_if(kXPathOperators.begin(), kXPathOperators.end(), matches);
            return found == kXPathOperators.end() ? nullptr : found;
        }
        const auto* const found = std::find_if(kOperators.begin(), kOperators.end(), matches);
        return found == kOperators.end() || found->precedence == 0 ? nullptr : found;
    }
    Value operation(int least) {
        const Level level(m_levels);
        Value left = operand();
        for (skipBlanks(); const Operator* const op = operatorHere(); skipBlanks()) {
            if (op->precedence <= least)
                break;
            m_at += op->text.size();
            const Value right = operation(op->precedence);
            left = binary(commonName(op->text), left, right);
        }
        return left;
    }
    static std::string_view commonName(std::string_view op) {
        if (op == "div")
            return "/";
        if (op == "mod")
            return "%";
        if (op == "and")
            return "&&";
        return op == "or" ? "||" : op;
    }

    Value operand() {
        const Level level(m_levels);
        skipBlanks();
        const char c = peek();
        if (c != '\0' &&
            std::string_view(m_isXPath ? "-" : "+-!~&|^").find(c) != std::string_view::npos) {
            ++m_at;
            if (c == '~' && (peek() == '&' || peek() == '|' || peek() == '^'))
                return unary('!', unary(m_text[m_at++], operation(kUnary)));
            return unary(c, operand());
        }
        Value value = primary();
        while (!m_isXPath && take('['))
            value = item(value);
        return value;
    }
    Value item(const Value& value) {
        const Int128 index = integerOf(choice()).number;
        expect(']');
        if (const auto* items = std::get_if<std::vector<Value>>(&value.content)) {
            if (index < 0 || index >= static_cast<Int128>(items->size()))
                fail("index " + decimalText(index) + " lies beyond the array");
            return (*items)[static_cast<std::size_t>(index)];
        }
        if (index < 0 || index > 126)
            fail("index " + decimalText(index) + " lies beyond the number");
        return truth(((integerOf(value).number >> static_cast<int>(index)) & 1) != 0);
    }

    Value primary() {
        const char c = peek();
        if (c == '(') {
            ++m_at;
            Value value = choice();
            expect(')');
            return value;
        }
        if (c == '"' || (m_isXPath && c == '\''))
            return quoted();
        if (c == '{')
            return concatenation();
        if (c == '\'' && peek(1) == '{') {
            ++m_at;
            expect('{');
            return {list('}')};
        }
        if (isDigit(c) || c == '\'' || c == '#' || (c == '.' && isDigit(peek(1))))
            return number();
        if (isNameStart(c))
            return nameOrCall();
        if (c == '\0')
            fail("a value is missing");
        fail("unexpected \"" + std::string(m_text.substr(m_at, 20)) + "\"");
    }

    Value quoted() {
        const char end = m_text[m_at++];
        std::string text;
        while (m_at < m_text.size() && m_text[m_at] != end) {
            if (!m_isXPath && m_text[m_at] == '\\' && m_at + 1 < m_text.size())
                ++m_at;
            text += m_text[m_at++];
        }
        if (m_at == m_text.size())
            fail("a text has no end");
        ++m_at;
        return {std::move(text)};
    }

    std::vector<Value> list(char end) {
        std::vector<Value> values;
        if (take(end))
            return values;
        do {
            if (values.size() == kMostItems)
                fail("a list is too long");
            values.push_back(choice());
        } while (take(','));
        expect(end);
        return values;
    }

    /// "{a, b}" and "{4{a}}", of numbers with a width or of texts.
    Value concatenation() {
        expect('{');
        std::vector<Value> parts;
        parts.push_back(choice());
        if (take('{')) {
            const Int128 count = integerOf(parts.front()).number;
            const std::vector<Value> repeated = list('}');
            expect('}');
            if (count < 0 || count > 128)
                fail("a replication count was expected");
            parts.clear();
            for (Int128 i = 0; i < count; ++i)
                parts.insert(parts.end(), repeated.begin(), repeated.end());
        } else {
            while (take(','))
                parts.push_back(choice());
            expect('}');
        }
        return joined(parts);
    }
    static Value joined(const std::vector<Value>& parts) {
        if (!parts.empty() && std::holds_alternative<std::string>(parts.front().content)) {
            std::string text;
            for (const Value& part : parts)
                if ((text += part.text()).size() > kMostItems)
                    fail("a text is too long");
            return {std::move(text)};
        }
        Value::Integer sum{0, 0, false};
        for (const Value& part : parts) {
            const Value::Integer next = integerOf(part);
            if (sum.width + next.width > 127)
                fail("a number has more than 127 bits");
            sum.number =
                (sum.number << static_cast<int>(next.width)) | (next.number & maskOf(next.width));
            sum.width += next.width;
        }
        return {sum};
    }

    std::string_view run(bool (*belongs)(char)) {
        const std::size_t start = m_at;
        while (m_at < m_text.size() && belongs(m_text[m_at]))
            ++m_at;
        return m_text.substr(start, m_at - start);
    }

    Value number() {
        if (peek() == '#') {
            ++m_at;
            return {Value::Integer{digits(run(isNamePart), 16), 64, false}};
        }
        if (peek() == '0' && (peek(1) == 'x' || peek(1) == 'X')) {
            m_at += 2;
            return {Value::Integer{digits(run(isNamePart), 16), 64, false}};
        }
        const std::size_t start = m_at;
        const std::string_view front = run([](char c) { return isDigit(c) || c == '_'; });
        const std::size_t behind = m_at;
        skipBlanks();
        if (peek() == '\'' && peek(1) != '{')
            return based(front);
        m_at = behind;
        if (peek() == '.' || peek() == 'e' || peek() == 'E')
            return realNumber(start);
        return scaled(digits(front, 10));
    }
    Value scaled(Int128 number) {
        static constexpr std::string_view kUnits = "KMGT";
        const char unit = peek() >= 'a' ? static_cast<char>(peek() - 'a' + 'A') : peek();
        const std::size_t found = unit == '\0' ? std::string_view::npos : kUnits.find(unit);
        if (found == std::string_view::npos || isNamePart(peek(1)))
            return {Value::Integer{number, std::max(32U, bitsOf(number) + 1), true}};
        ++m_at;
        return Value::ofInteger(shifted(number, Int128{10} * static_cast<int>(found + 1)));
    }
    /// Behind the width, which may be empty.
    Value based(std::string_view widthText) {
        ++m_at;
        bool isSigned = false;
        if (peek() == 's' || peek() == 'S') {
            isSigned = true;
            ++m_at;
        }
        const char letter = peek() >= 'a' ? peek() : static_cast<char>(peek() - 'A' + 'a');
        const unsigned base = letter == 'h'   ? 16
                              : letter == 'd' ? 10
                              : letter == 'o' ? 8
                              : letter == 'b' ? 2
                                              : 0;
        if (base == 0) {
            if (peek() != '0' && peek() != '1')
                fail("one of 'h, 'd, 'o, 'b was expected");
            return {Value::Integer{m_text[m_at++] - '0', 1, false}};
        }
        ++m_at;
        skipBlanks();
        Value::Integer value{digits(run(isNamePart), base), 0, isSigned};
        value.width = std::max(32U, bitsOf(value.number));
        if (!widthText.empty()) {
            const Int128 width = digits(widthText, 10);
            if (width < 1 || width > 65'536)
                fail("a literal's width was expected");
            value.width = static_cast<unsigned>(width);
            value.number &= maskOf(value.width);
        }
        return {value};
    }
    Value realNumber(std::size_t start) {
        double number = 0;
        const char* const first = m_text.data() + start;
        const auto result = std::from_chars(first, m_text.data() + m_text.size(), number);
        if (result.ec != std::errc() || !std::isfinite(number))
            fail("a number isn't readable");
        m_at = static_cast<std::size_t>(result.ptr - m_text.data());
        if (m_at < m_text.size() && isNamePart(m_text[m_at]))
            fail("unexpected \"" + std::string(m_text.substr(m_at, 20)) + "\"");
        return {number};
    }

    std::string_view name() {
        const std::size_t start = m_at;
        while (m_at < m_text.size() &&
               (isNamePart(m_text[m_at]) ||
                (m_isXPath && (m_text[m_at] == ':' || m_text[m_at] == '-')) ||
                (!m_isXPath && m_text[m_at] == '.' && isNameStart(peek(1)))))
            ++m_at;
        return m_text.substr(start, m_at - start);
    }
    Value nameOrCall() {
        const std::string_view word = name();
        if (!take('(')) {
            if (m_isXPath || word.front() == '$')
                fail("unexpected \"" + std::string(word) + "\"");
            return m_isIdle ? Value::ofInteger(1) : m_lookup(word);
        }
        const Arguments arguments = list(')');
        return m_isXPath ? callXPath(word, arguments, m_lookup) : call(word, arguments);
    }

    std::string_view m_text;
    bool m_isXPath;
    const NameLookup& m_lookup;
    std::size_t m_at = 0;
    int m_levels = 0;
    bool m_isIdle = false; ///< in a branch that isn't chosen
};

Value literalOf(std::string_view text) {
    const NameLookup none = [](std::string_view name) -> Value {
        fail("\"" + std::string(name) + "\" isn't a number");
    };
    return evaluate(text, ExpressionLanguage::SystemVerilog, none);
}

} // namespace

std::optional<Int128> Value::integer() const {
    if (const auto* number = std::get_if<Integer>(&content))
        return number->number;
    if (const auto* number = std::get_if<double>(&content))
        if (std::fabs(*number) < 1e38 && std::trunc(*number) == *number)
            return static_cast<Int128>(*number);
    return std::nullopt;
}

std::string Value::text() const {
    if (const auto* text = std::get_if<std::string>(&content))
        return *text;
    if (const auto number = integer())
        return decimalText(*number);
    if (const auto* number = std::get_if<double>(&content)) {
        std::array<char, 32> buffer{};
        const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), *number).ptr;
        return {buffer.data(), end};
    }
    fail("a text was expected, not an array");
}

Value evaluate(std::string_view text, ExpressionLanguage language, const NameLookup& lookup) {
    return Parser(text, language, lookup).parse();
}

namespace {

std::string numberText(Int128 number, unsigned base) {
    std::string text;
    const bool isNegative = number < 0;
    do {
        const int digit = static_cast<int>(number % static_cast<int>(base));
        text += "0123456789ABCDEF"[digit < 0 ? -digit : digit];
        number /= static_cast<int>(base);
    } while (number != 0);
    if (base == 16)
        text += "x0";
    if (isNegative)
        text += '-';
    std::reverse(text.begin(), text.end());
    return text;
}

} // namespace

std::string hexText(Int128 number) {
    return numberText(number, 16);
}

std::string decimalText(Int128 number) {
    return numberText(number, 10);
}

} // namespace tq::ipxact
