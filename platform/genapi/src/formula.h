// SwissKnife formulas: parsed once when a description loads, evaluated on
// every read. Float formulas (SwissKnife, Converter) evaluate in double.
//
// Integer formulas (IntSwissKnife, IntConverter) evaluate in wrapping 64-bit
// integer arithmetic ('/' truncates toward zero) as long as everything in
// them is integral. A formula that needs floating point to mean what it says
// (a literal or a <Constant> with a fractional part or beyond the int64
// range, PI or E, one of ATAN, COS, SIN, TAN, ASIN, ACOS, EXP, LN, LG, SQRT,
// or ROUND with a number of digits, or an <Expression> that has any of
// these) is evaluated in double as a whole, '/' included, and its
// result converted once: to the nearest integer, halfway cases away from
// zero, saturated to the int64 range; a result that is not a number is an
// error. Rounding rather than truncation is the rule because a decimal
// factor such as 0.29 is not exact in binary: 0.29 * 100 is 28.999...96,
// which must read as 29. The GenICam standard leaves this open; the rule
// is the one this interpreter uses wherever a float becomes an integer: an
// integer read of a float node, an integer whose value comes from one, and a
// float variable in an integer formula all round the same way.
// Which formulas need floating point is decided at parse time (needsFloat),
// so an integral formula never pays for it and never loses the exactness of
// 64-bit values.
#ifndef ORBGENAPI_FORMULA_H
#define ORBGENAPI_FORMULA_H

#include <cstdint>
#include <string>
#include <vector>

namespace GenApi_3_0 {
namespace impl {

// Supplies variable values during evaluation; index is the position in the
// name list the formula was parsed with.
class FormulaVariables {
public:
    virtual int64_t intVariable(int index) = 0;
    virtual double floatVariable(int index) = 0;

protected:
    ~FormulaVariables() = default;
};

class Formula {
public:
    // Parses text. Names in variableNames are resolved to their index;
    // any other identifier is an error. Throws std::invalid_argument with a
    // readable reason on a syntax error, an unknown name or too deep nesting.
    static Formula parse(const std::string &text, const std::vector<std::string> &variableNames);

    // Both throw std::domain_error on a division by zero; exceptions from
    // the variable reader pass through.
    int64_t evaluateInt(FormulaVariables &variables) const;
    double evaluateFloat(FormulaVariables &variables) const;

    bool isEmpty() const { return m_nodes.empty(); }
    // True when the formula, read as an integer formula, must be evaluated
    // in floating point (see above).
    bool needsFloat() const { return m_needsFloat; }
    // Marks the formula as needing floating point because a variable it uses
    // (an expression of the same node) does.
    void requireFloat() { m_needsFloat = true; }
    // The indices of the variables the formula reads.
    std::vector<int32_t> variablesUsed() const;
    const std::string &text() const { return m_text; }

    enum class Op : uint8_t {
        Number,
        Variable,
        Neg,
        Plus,
        BitNot,
        LogicNot,
        Add,
        Sub,
        Mul,
        Div,
        Mod,
        Pow,
        Shl,
        Shr,
        BitAnd,
        BitOr,
        BitXor,
        LogicAnd,
        LogicOr,
        Eq,
        Ne,
        Lt,
        Le,
        Gt,
        Ge,
        Cond,
        FnSgn,
        FnNeg,
        FnAtan,
        FnCos,
        FnSin,
        FnTan,
        FnAbs,
        FnExp,
        FnLn,
        FnLg,
        FnSqrt,
        FnTrunc,
        FnFloor,
        FnCeil,
        FnRound,
        FnAsin,
        FnAcos,
    };
    struct Node {
        Op op;
        uint8_t arity = 0;
        int32_t a = -1, b = -1, c = -1; // operand node indices
        int32_t variable = -1;
        double number = 0;
        int64_t integer = 0;
    };

private:
    friend class FormulaParser;
    template <class T> friend struct FormulaEvaluator;

    std::vector<Node> m_nodes;
    int32_t m_root = -1;
    std::string m_text;
    bool m_needsFloat = false;
};

} // namespace impl
} // namespace GenApi_3_0

#endif
