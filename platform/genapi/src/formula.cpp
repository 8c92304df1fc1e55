#include "formula.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace GenApi_3_0 {
namespace impl {

namespace {

constexpr int MaxNesting = 200;

int64_t saturatingToInt(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= 9223372036854775807.0)
        return std::numeric_limits<int64_t>::max();
    if (value <= -9223372036854775808.0)
        return std::numeric_limits<int64_t>::min();
    return static_cast<int64_t>(value);
}

// Wrapping arithmetic: descriptions compute bit masks that overflow on
// purpose, and signed overflow must not be undefined behaviour.
int64_t wrapAdd(int64_t a, int64_t b)
{
    return static_cast<int64_t>(static_cast<uint64_t>(a) + static_cast<uint64_t>(b));
}
int64_t wrapSub(int64_t a, int64_t b)
{
    return static_cast<int64_t>(static_cast<uint64_t>(a) - static_cast<uint64_t>(b));
}
int64_t wrapMul(int64_t a, int64_t b)
{
    return static_cast<int64_t>(static_cast<uint64_t>(a) * static_cast<uint64_t>(b));
}
int64_t shiftLeft(int64_t a, int64_t count)
{
    if (count < 0 || count >= 64)
        return 0;
    return static_cast<int64_t>(static_cast<uint64_t>(a) << count);
}
int64_t shiftRight(int64_t a, int64_t count)
{
    if (count < 0)
        return 0;
    if (count >= 64)
        return a < 0 ? -1 : 0;
    return a >> count;
}
int64_t intPow(int64_t base, int64_t exponent)
{
    if (exponent < 0) {
        if (base == 1)
            return 1;
        if (base == -1)
            return (exponent & 1) ? -1 : 1;
        if (base == 0)
            throw std::domain_error("division by zero (0 raised to a negative power)");
        return 0;
    }
    uint64_t result = 1;
    uint64_t b = static_cast<uint64_t>(base);
    while (exponent > 0) {
        if (exponent & 1)
            result *= b;
        b *= b;
        exponent >>= 1;
    }
    return static_cast<int64_t>(result);
}

struct Function {
    const char *name;
    Formula::Op op;
    int minArgs;
    int maxArgs;
};
const Function functions[] = {
    { "SGN", Formula::Op::FnSgn, 1, 1 },     { "NEG", Formula::Op::FnNeg, 1, 1 },
    { "ATAN", Formula::Op::FnAtan, 1, 1 },   { "COS", Formula::Op::FnCos, 1, 1 },
    { "SIN", Formula::Op::FnSin, 1, 1 },     { "TAN", Formula::Op::FnTan, 1, 1 },
    { "ABS", Formula::Op::FnAbs, 1, 1 },     { "EXP", Formula::Op::FnExp, 1, 1 },
    { "LN", Formula::Op::FnLn, 1, 1 },       { "LG", Formula::Op::FnLg, 1, 1 },
    { "SQRT", Formula::Op::FnSqrt, 1, 1 },   { "TRUNC", Formula::Op::FnTrunc, 1, 1 },
    { "FLOOR", Formula::Op::FnFloor, 1, 1 }, { "CEIL", Formula::Op::FnCeil, 1, 1 },
    { "ROUND", Formula::Op::FnRound, 1, 2 }, { "ASIN", Formula::Op::FnAsin, 1, 1 },
    { "ACOS", Formula::Op::FnAcos, 1, 1 },
};

// Character classes in ASCII: the <cctype> ones follow the host's C locale,
// and a formula must read the same in every process.
bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}
bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}
bool isAlpha(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isAlnum(char c)
{
    return isAlpha(c) || isDigit(c);
}
char toUpper(char c)
{
    return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c;
}

bool equalsIgnoreCase(const std::string &a, const char *b)
{
    const size_t n = std::strlen(b);
    if (a.size() != n)
        return false;
    for (size_t i = 0; i < n; ++i) {
        if (toUpper(a[i]) != b[i])
            return false;
    }
    return true;
}

} // namespace

class FormulaParser {
public:
    FormulaParser(const std::string &text, const std::vector<std::string> &names, Formula &out)
        : m_text(text)
        , m_names(names)
        , m_out(out)
    {
    }

    void run()
    {
        skipSpace();
        if (m_pos >= m_text.size())
            fail("the formula is empty");
        m_out.m_root = parseConditional();
        skipSpace();
        if (m_pos < m_text.size())
            fail("unexpected '" + std::string(1, m_text[m_pos]) + "'");
    }

private:
    using Op = Formula::Op;

    [[noreturn]] void fail(const std::string &why) const
    {
        throw std::invalid_argument("formula '" + m_text + "': " + why + " at position "
                                    + std::to_string(m_pos + 1));
    }

    void skipSpace()
    {
        while (m_pos < m_text.size() && isSpace(m_text[m_pos]))
            ++m_pos;
    }

    bool accept(const char *token)
    {
        skipSpace();
        const size_t n = std::strlen(token);
        if (m_text.compare(m_pos, n, token) == 0) {
            m_pos += n;
            return true;
        }
        return false;
    }
    // Accepts a one-character operator that is not the start of a longer one.
    bool acceptSingle(char ch, const char *notFollowedBy)
    {
        skipSpace();
        if (m_pos < m_text.size() && m_text[m_pos] == ch
            && (m_pos + 1 >= m_text.size() || !std::strchr(notFollowedBy, m_text[m_pos + 1]))) {
            ++m_pos;
            return true;
        }
        return false;
    }

    int32_t add(Formula::Node node)
    {
        m_out.m_nodes.push_back(node);
        return static_cast<int32_t>(m_out.m_nodes.size() - 1);
    }
    int32_t binary(Op op, int32_t a, int32_t b)
    {
        Formula::Node n { op };
        n.arity = 2;
        n.a = a;
        n.b = b;
        return add(n);
    }
    int32_t unary(Op op, int32_t a)
    {
        Formula::Node n { op };
        n.arity = 1;
        n.a = a;
        return add(n);
    }

    struct DepthGuard {
        explicit DepthGuard(FormulaParser &p)
            : parser(p)
        {
            if (++parser.m_depth > MaxNesting)
                parser.fail("the formula nests deeper than " + std::to_string(MaxNesting)
                            + " levels");
        }
        ~DepthGuard() { --parser.m_depth; }
        FormulaParser &parser;
    };

    int32_t parseConditional()
    {
        DepthGuard guard(*this);
        const int32_t condition = parseLogicOr();
        if (accept("?")) {
            const int32_t whenTrue = parseConditional();
            if (!accept(":"))
                fail("expected ':' of a '?:' expression");
            const int32_t whenFalse = parseConditional();
            Formula::Node n { Op::Cond };
            n.arity = 3;
            n.a = condition;
            n.b = whenTrue;
            n.c = whenFalse;
            return add(n);
        }
        return condition;
    }
    int32_t parseLogicOr()
    {
        int32_t left = parseLogicAnd();
        while (accept("||"))
            left = binary(Op::LogicOr, left, parseLogicAnd());
        return left;
    }
    int32_t parseLogicAnd()
    {
        int32_t left = parseBitOr();
        while (accept("&&"))
            left = binary(Op::LogicAnd, left, parseBitOr());
        return left;
    }
    int32_t parseBitOr()
    {
        int32_t left = parseBitXor();
        while (acceptSingle('|', "|"))
            left = binary(Op::BitOr, left, parseBitXor());
        return left;
    }
    int32_t parseBitXor()
    {
        int32_t left = parseBitAnd();
        while (accept("^"))
            left = binary(Op::BitXor, left, parseBitAnd());
        return left;
    }
    int32_t parseBitAnd()
    {
        int32_t left = parseEquality();
        while (acceptSingle('&', "&"))
            left = binary(Op::BitAnd, left, parseEquality());
        return left;
    }
    int32_t parseEquality()
    {
        int32_t left = parseRelational();
        for (;;) {
            if (accept("==") || acceptSingle('=', ""))
                left = binary(Op::Eq, left, parseRelational());
            else if (accept("<>") || accept("!="))
                left = binary(Op::Ne, left, parseRelational());
            else
                return left;
        }
    }
    int32_t parseRelational()
    {
        int32_t left = parseShift();
        for (;;) {
            skipSpace();
            if (m_text.compare(m_pos, 2, "<>") == 0)
                return left;
            if (accept("<="))
                left = binary(Op::Le, left, parseShift());
            else if (accept(">="))
                left = binary(Op::Ge, left, parseShift());
            else if (acceptSingle('<', "<"))
                left = binary(Op::Lt, left, parseShift());
            else if (acceptSingle('>', ">"))
                left = binary(Op::Gt, left, parseShift());
            else
                return left;
        }
    }
    int32_t parseShift()
    {
        int32_t left = parseAdditive();
        for (;;) {
            if (accept("<<"))
                left = binary(Op::Shl, left, parseAdditive());
            else if (accept(">>"))
                left = binary(Op::Shr, left, parseAdditive());
            else
                return left;
        }
    }
    int32_t parseAdditive()
    {
        int32_t left = parseMultiplicative();
        for (;;) {
            if (accept("+"))
                left = binary(Op::Add, left, parseMultiplicative());
            else if (accept("-"))
                left = binary(Op::Sub, left, parseMultiplicative());
            else
                return left;
        }
    }
    int32_t parseMultiplicative()
    {
        int32_t left = parsePower();
        for (;;) {
            if (acceptSingle('*', "*"))
                left = binary(Op::Mul, left, parsePower());
            else if (accept("/"))
                left = binary(Op::Div, left, parsePower());
            else if (accept("%"))
                left = binary(Op::Mod, left, parsePower());
            else
                return left;
        }
    }
    int32_t parsePower()
    {
        const int32_t base = parseUnary();
        if (accept("**")) {
            DepthGuard guard(*this);
            return binary(Op::Pow, base, parsePower()); // right-associative
        }
        return base;
    }
    int32_t parseUnary()
    {
        DepthGuard guard(*this);
        if (accept("-"))
            return unary(Op::Neg, parseUnary());
        if (accept("+"))
            return unary(Op::Plus, parseUnary());
        if (accept("~"))
            return unary(Op::BitNot, parseUnary());
        if (acceptSingle('!', "="))
            return unary(Op::LogicNot, parseUnary());
        return parsePrimary();
    }

    int32_t parsePrimary()
    {
        skipSpace();
        if (m_pos >= m_text.size())
            fail("unexpected end of the formula");
        const char ch = m_text[m_pos];
        if (ch == '(') {
            ++m_pos;
            const int32_t inner = parseConditional();
            if (!accept(")"))
                fail("expected ')'");
            return inner;
        }
        if (isDigit(ch) || ch == '.')
            return parseNumber();
        if (isAlpha(ch) || ch == '_')
            return parseIdentifier();
        fail("unexpected '" + std::string(1, ch) + "'");
    }

    int32_t parseNumber()
    {
        Formula::Node n { Op::Number };
        const char *begin = m_text.c_str() + m_pos;
        const char *last = m_text.c_str() + m_text.size();
        const char *end = begin;
        if (begin[0] == '0' && (begin[1] == 'x' || begin[1] == 'X')) {
            uint64_t value = 0;
            const auto result = std::from_chars(begin + 2, last, value, 16);
            if (result.ec != std::errc())
                fail("malformed hexadecimal number");
            end = result.ptr;
            n.integer = static_cast<int64_t>(value);
            n.number = static_cast<double>(value);
        } else {
            // from_chars, unlike strtod, ignores the process locale.
            double value = 0;
            const auto result = std::from_chars(begin, last, value);
            if (result.ec == std::errc::invalid_argument)
                fail("malformed number");
            end = result.ptr;
            n.number = value;
            int64_t asInt = 0;
            const auto intResult = std::from_chars(begin, last, asInt);
            const bool exact = intResult.ec == std::errc() && intResult.ptr == end;
            n.integer = exact ? asInt : saturatingToInt(value);
            // "2.0" means 2 in an integer formula; "0.1" and "1e30" do not.
            if (!exact && static_cast<double>(n.integer) != value)
                m_out.m_needsFloat = true;
        }
        m_pos += static_cast<size_t>(end - begin);
        if (m_pos < m_text.size() && (isAlnum(m_text[m_pos]) || m_text[m_pos] == '_'))
            fail("malformed number");
        return add(n);
    }

    int32_t parseIdentifier()
    {
        const size_t start = m_pos;
        while (m_pos < m_text.size()
               && (isAlnum(m_text[m_pos]) || m_text[m_pos] == '_' || m_text[m_pos] == '.'))
            ++m_pos;
        const std::string name = m_text.substr(start, m_pos - start);

        for (size_t i = 0; i < m_names.size(); ++i) {
            if (m_names[i] == name) {
                Formula::Node n { Op::Variable };
                n.variable = static_cast<int32_t>(i);
                return add(n);
            }
        }
        skipSpace();
        if (m_pos < m_text.size() && m_text[m_pos] == '(') {
            for (const Function &f : functions) {
                if (!equalsIgnoreCase(name, f.name))
                    continue;
                ++m_pos;
                Formula::Node n { f.op };
                n.a = parseConditional();
                int args = 1;
                if (accept(",")) {
                    n.b = parseConditional();
                    ++args;
                }
                if (args < f.minArgs || args > f.maxArgs)
                    fail("wrong number of arguments to " + std::string(f.name));
                if (!accept(")"))
                    fail("expected ')' after the arguments of " + std::string(f.name));
                n.arity = static_cast<uint8_t>(args);
                if (f.op == Op::FnAtan || f.op == Op::FnCos || f.op == Op::FnSin
                    || f.op == Op::FnTan || f.op == Op::FnAsin || f.op == Op::FnAcos
                    || f.op == Op::FnExp || f.op == Op::FnLn || f.op == Op::FnLg
                    || f.op == Op::FnSqrt || (f.op == Op::FnRound && args == 2))
                    m_out.m_needsFloat = true;
                return add(n);
            }
            m_pos = start;
            fail("unknown function '" + name + "'");
        }
        if (name == "PI" || name == "E") {
            Formula::Node n { Op::Number };
            n.number = name == "PI" ? 3.14159265358979323846 : 2.71828182845904523536;
            n.integer = saturatingToInt(n.number);
            m_out.m_needsFloat = true;
            return add(n);
        }
        m_pos = start;
        fail("unknown variable '" + name + "'");
    }

    const std::string &m_text;
    const std::vector<std::string> &m_names;
    Formula &m_out;
    size_t m_pos = 0;
    int m_depth = 0;
};

Formula Formula::parse(const std::string &text, const std::vector<std::string> &variableNames)
{
    Formula formula;
    formula.m_text = text;
    formula.m_nodes.reserve(text.size() / 2 + 2);
    FormulaParser(formula.m_text, variableNames, formula).run();
    return formula;
}

std::vector<int32_t> Formula::variablesUsed() const
{
    std::vector<int32_t> used;
    for (const Node &n : m_nodes)
        if (n.op == Op::Variable && std::find(used.begin(), used.end(), n.variable) == used.end())
            used.push_back(n.variable);
    return used;
}

// One evaluator for both arithmetic kinds: T is int64_t or double.
template <class T> struct FormulaEvaluator {
    const std::vector<Formula::Node> &nodes;
    FormulaVariables &variables;

    static constexpr bool isInt = std::is_same<T, int64_t>::value;
    using Op = Formula::Op;

    static int64_t toInt(T value)
    {
        if constexpr (isInt)
            return value;
        else
            return saturatingToInt(value);
    }
    static T fromDouble(double value)
    {
        if constexpr (isInt)
            return saturatingToInt(value);
        else
            return value;
    }
    static bool truthy(T value) { return value != 0; }

    T eval(int32_t index)
    {
        const Formula::Node &n = nodes[static_cast<size_t>(index)];
        switch (n.op) {
        case Op::Number:
            if constexpr (isInt)
                return n.integer;
            else
                return n.number;
        case Op::Variable:
            if constexpr (isInt)
                return variables.intVariable(n.variable);
            else
                return variables.floatVariable(n.variable);
        case Op::Cond:
            return truthy(eval(n.a)) ? eval(n.b) : eval(n.c);
        case Op::LogicAnd:
            return (truthy(eval(n.a)) && truthy(eval(n.b))) ? 1 : 0;
        case Op::LogicOr:
            return (truthy(eval(n.a)) || truthy(eval(n.b))) ? 1 : 0;
        default:
            break;
        }
        if (n.arity == 1 || (n.op >= Op::FnSgn && n.arity >= 1))
            return unaryOrFunction(n);
        return binaryOp(n.op, eval(n.a), eval(n.b));
    }

    T unaryOrFunction(const Formula::Node &n)
    {
        const T x = eval(n.a);
        const double d = static_cast<double>(x);
        switch (n.op) {
        case Op::Neg:
        case Op::FnNeg:
            if constexpr (isInt)
                return wrapSub(0, x);
            else
                return -x;
        case Op::Plus:
            return x;
        case Op::BitNot:
            return static_cast<T>(~toInt(x));
        case Op::LogicNot:
            return truthy(x) ? 0 : 1;
        case Op::FnSgn:
            return x > 0 ? 1 : (x < 0 ? -1 : 0);
        case Op::FnAbs:
            if constexpr (isInt)
                return x < 0 ? wrapSub(0, x) : x;
            else
                return std::fabs(x);
        case Op::FnAtan:
            return fromDouble(std::atan(d));
        case Op::FnCos:
            return fromDouble(std::cos(d));
        case Op::FnSin:
            return fromDouble(std::sin(d));
        case Op::FnTan:
            return fromDouble(std::tan(d));
        case Op::FnAsin:
            return fromDouble(std::asin(d));
        case Op::FnAcos:
            return fromDouble(std::acos(d));
        case Op::FnExp:
            return fromDouble(std::exp(d));
        case Op::FnLn:
            return fromDouble(std::log(d));
        case Op::FnLg:
            return fromDouble(std::log10(d));
        case Op::FnSqrt:
            return fromDouble(std::sqrt(d));
        case Op::FnTrunc:
            return fromDouble(std::trunc(d));
        case Op::FnFloor:
            return fromDouble(std::floor(d));
        case Op::FnCeil:
            return fromDouble(std::ceil(d));
        case Op::FnRound: {
            if (n.arity == 2) {
                const double digits = static_cast<double>(eval(n.b));
                const double scale = std::pow(10.0, digits);
                return fromDouble(std::round(d * scale) / scale);
            }
            return fromDouble(std::round(d));
        }
        default:
            throw std::logic_error("formula: operator used with the wrong arity");
        }
    }

    static T binaryOp(Op op, T a, T b)
    {
        switch (op) {
        case Op::Add:
            if constexpr (isInt)
                return wrapAdd(a, b);
            else
                return a + b;
        case Op::Sub:
            if constexpr (isInt)
                return wrapSub(a, b);
            else
                return a - b;
        case Op::Mul:
            if constexpr (isInt)
                return wrapMul(a, b);
            else
                return a * b;
        case Op::Div:
            if (b == 0)
                throw std::domain_error("division by zero");
            if constexpr (isInt) {
                if (a == std::numeric_limits<int64_t>::min() && b == -1)
                    return a; // wraps like the other operators
            }
            return a / b;
        case Op::Mod:
            if (b == 0)
                throw std::domain_error("remainder of a division by zero");
            if constexpr (isInt) {
                if (b == -1)
                    return 0;
                return a % b;
            } else {
                return std::fmod(a, b);
            }
        case Op::Pow:
            if constexpr (isInt)
                return intPow(a, b);
            else
                return std::pow(a, b);
        case Op::Shl:
            return static_cast<T>(shiftLeft(toInt(a), toInt(b)));
        case Op::Shr:
            return static_cast<T>(shiftRight(toInt(a), toInt(b)));
        case Op::BitAnd:
            return static_cast<T>(toInt(a) & toInt(b));
        case Op::BitOr:
            return static_cast<T>(toInt(a) | toInt(b));
        case Op::BitXor:
            return static_cast<T>(toInt(a) ^ toInt(b));
        case Op::Eq:
            return a == b ? 1 : 0;
        case Op::Ne:
            return a != b ? 1 : 0;
        case Op::Lt:
            return a < b ? 1 : 0;
        case Op::Le:
            return a <= b ? 1 : 0;
        case Op::Gt:
            return a > b ? 1 : 0;
        case Op::Ge:
            return a >= b ? 1 : 0;
        default:
            throw std::logic_error("formula: unexpected binary operator");
        }
    }
};

int64_t Formula::evaluateInt(FormulaVariables &variables) const
{
    if (m_root < 0)
        throw std::invalid_argument("empty formula");
    return FormulaEvaluator<int64_t> { m_nodes, variables }.eval(m_root);
}

double Formula::evaluateFloat(FormulaVariables &variables) const
{
    if (m_root < 0)
        throw std::invalid_argument("empty formula");
    return FormulaEvaluator<double> { m_nodes, variables }.eval(m_root);
}

} // namespace impl
} // namespace GenApi_3_0
