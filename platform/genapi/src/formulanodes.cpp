#include "nodes.h"

#include "nodemap.h"
#include "text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace GenApi_3_0 {
namespace impl {

namespace {
constexpr int MaxExpressionDepth = 32;
}

// ---------------------------------------------------------------------------
// FormulaScope

bool FormulaScope::applyProperty(const Property &p)
{
    const std::string_view n = p.name;
    if (n != "pVariable" && n != "Constant" && n != "Expression")
        return false;
    Variable v;
    v.name = trim(p.element.attribute("Name").value());
    if (n == "pVariable") {
        v.ref = propertyRef(p);
    } else if (n == "Constant") {
        auto value = parseDouble(p.text);
        if (!value)
            throw PROPERTY_EXCEPTION("line %u: <Constant Name=\"%s\"> '%.*s' is not a number",
                                     p.line(), std::string(v.name).c_str(), int(p.text.size()),
                                     p.text.data());
        v.isConstant = true;
        v.constant = *value;
    } else {
        v.isExpression = true;
        v.expressionText = p.text;
    }
    m_variables.push_back(std::move(v));
    return true;
}

void FormulaScope::collectRefs(std::vector<Ref *> &reading)
{
    for (Variable &v : m_variables)
        if (!v.isConstant && !v.isExpression)
            reading.push_back(&v.ref);
}

Formula FormulaScope::parse(Node &owner, std::string_view text, SourcePos pos,
                            const std::vector<std::string> &specials)
{
    // Only messages need these.
    auto line = [&] { return owner.map().lineAt(pos); };
    auto ownerName = [&] { return std::string(owner.name()); };
    // Every formula of one node shares the variables; FROM/TO take the
    // first index so that converters can use one name list.
    std::vector<std::string> names = specials;
    for (const Variable &v : m_variables)
        names.emplace_back(v.name);
    m_specialCount = specials.size();
    for (const Variable &v : m_variables) {
        if (v.name.empty())
            throw PROPERTY_EXCEPTION("line %u: node '%s': a variable has no Name attribute", line(),
                                     ownerName().c_str());
    }
    try {
        for (Variable &v : m_variables)
            if (v.isExpression && v.expression.isEmpty())
                v.expression = Formula::parse(std::string(v.expressionText), names);
        // A constant with a fraction is a literal by name, and an expression
        // that needs floating point passes the need on: every formula that
        // uses either needs it too, through any chain of expressions (repeat
        // until nothing changes, at most once per variable).
        auto usesFloatExpression = [this](const Formula &formula) {
            for (int32_t index : formula.variablesUsed()) {
                const size_t i = static_cast<size_t>(index);
                if (i < m_specialCount)
                    continue;
                const Variable &v = m_variables[i - m_specialCount];
                if ((v.isExpression && v.expression.needsFloat())
                    || (v.isConstant && v.constant != std::trunc(v.constant)))
                    return true;
            }
            return false;
        };
        for (bool changed = true; changed;) {
            changed = false;
            for (Variable &v : m_variables)
                if (v.isExpression && !v.expression.needsFloat()
                    && usesFloatExpression(v.expression)) {
                    v.expression.requireFloat();
                    changed = true;
                }
        }
        Formula formula = Formula::parse(std::string(text), names);
        if (usesFloatExpression(formula))
            formula.requireFloat();
        return formula;
    } catch (const std::invalid_argument &e) {
        throw PROPERTY_EXCEPTION("line %u: node '%s': %s", line(), ownerName().c_str(), e.what());
    }
}

int64_t FormulaScope::intVariable(int index)
{
    const size_t i = static_cast<size_t>(index);
    if (i < m_specialCount)
        return m_specialInt;
    Variable &v = m_variables[i - m_specialCount];
    if (v.isConstant) // integral here: one with a fraction makes the formula a float one
        return saturatingRound(v.constant);
    if (v.isExpression) {
        if (++m_expressionDepth > MaxExpressionDepth) {
            m_expressionDepth = 0;
            m_owner->throwRuntime("expression '" + std::string(v.name) + "' refers to itself");
        }
        const int64_t value = v.expression.evaluateInt(*this);
        --m_expressionDepth;
        return value;
    }
    return v.ref.node->getInt(false);
}

double FormulaScope::floatVariable(int index)
{
    const size_t i = static_cast<size_t>(index);
    if (i < m_specialCount)
        return m_special;
    Variable &v = m_variables[i - m_specialCount];
    if (v.isConstant)
        return v.constant;
    if (v.isExpression) {
        if (++m_expressionDepth > MaxExpressionDepth) {
            m_expressionDepth = 0;
            m_owner->throwRuntime("expression '" + std::string(v.name) + "' refers to itself");
        }
        const double value = v.expression.evaluateFloat(*this);
        --m_expressionDepth;
        return value;
    }
    return v.ref.node->getFloat(false);
}

int64_t FormulaScope::evaluateInt(Node &owner, const Formula &formula, int64_t special)
{
    if (formula.needsFloat()) {
        const double value = evaluateFloat(owner, formula, static_cast<double>(special));
        if (std::isnan(value))
            owner.throwRuntime("formula '" + formula.text() + "' has no integer value (NaN)");
        return saturatingRound(value);
    }
    const int64_t savedInt = m_specialInt;
    const double saved = m_special;
    m_owner = &owner;
    m_specialInt = special;
    m_special = static_cast<double>(special);
    m_expressionDepth = 0;
    try {
        const int64_t value = formula.evaluateInt(*this);
        m_specialInt = savedInt;
        m_special = saved;
        return value;
    } catch (const std::domain_error &e) {
        m_specialInt = savedInt;
        m_special = saved;
        owner.throwRuntime("formula '" + formula.text() + "': " + e.what());
    } catch (...) {
        m_specialInt = savedInt;
        m_special = saved;
        throw;
    }
}

double FormulaScope::evaluateFloat(Node &owner, const Formula &formula, double special)
{
    const int64_t savedInt = m_specialInt;
    const double saved = m_special;
    m_owner = &owner;
    m_special = special;
    m_specialInt = saturatingRound(special);
    m_expressionDepth = 0;
    try {
        const double value = formula.evaluateFloat(*this);
        m_specialInt = savedInt;
        m_special = saved;
        return value;
    } catch (const std::domain_error &e) {
        m_specialInt = savedInt;
        m_special = saved;
        owner.throwRuntime("formula '" + formula.text() + "': " + e.what());
    } catch (...) {
        m_specialInt = savedInt;
        m_special = saved;
        throw;
    }
}

// ---------------------------------------------------------------------------
// IntSwissKnife and SwissKnife

bool IntSwissKnife::applyProperty(const Property &p)
{
    if (p.name == "Formula") {
        m_text = p.text;
        m_formulaPos = p.pos();
        return true;
    }
    if (m_scope.applyProperty(p))
        return true;
    return IntegerBase::applyProperty(p);
}

void IntSwissKnife::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    IntegerBase::collectRefs(reading, other);
    m_scope.collectRefs(reading);
}

void IntSwissKnife::finishLoad()
{
    if (m_text.empty())
        throw PROPERTY_EXCEPTION("line %u: node '%s' has no Formula", line(),
                                 std::string(m_name).c_str());
    m_formula = m_scope.parse(*this, m_text, m_formulaPos, {});
}

int64_t IntSwissKnife::doGetInt(bool)
{
    return m_scope.evaluateInt(*this, m_formula, 0);
}

bool SwissKnife::applyProperty(const Property &p)
{
    if (p.name == "Formula") {
        m_text = p.text;
        m_formulaPos = p.pos();
        return true;
    }
    if (m_scope.applyProperty(p))
        return true;
    return FloatBase::applyProperty(p);
}

void SwissKnife::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    FloatBase::collectRefs(reading, other);
    m_scope.collectRefs(reading);
}

void SwissKnife::finishLoad()
{
    if (m_text.empty())
        throw PROPERTY_EXCEPTION("line %u: node '%s' has no Formula", line(),
                                 std::string(m_name).c_str());
    m_formula = m_scope.parse(*this, m_text, m_formulaPos, {});
}

double SwissKnife::doGetFloat(bool)
{
    return m_scope.evaluateFloat(*this, m_formula, 0);
}

// ---------------------------------------------------------------------------
// Converters

bool ConverterCore::applyProperty(Node &owner, const Property &p)
{
    const std::string_view n = p.name;
    if (n == "FormulaTo") {
        toText = p.text;
        toPos = p.pos();
    } else if (n == "FormulaFrom") {
        fromText = p.text;
        fromPos = p.pos();
    } else if (n == "pValue")
        pValue = propertyRef(p);
    else if (n == "Slope") {
        if (equalsIgnoreCase(p.text, "Increasing"))
            slope = Increasing;
        else if (equalsIgnoreCase(p.text, "Decreasing"))
            slope = Decreasing;
        else if (equalsIgnoreCase(p.text, "Varying"))
            slope = Varying;
        else if (equalsIgnoreCase(p.text, "Automatic"))
            slope = Automatic;
        else
            keepDefault(owner, p, "a slope (Increasing, Decreasing, Varying or Automatic)",
                        "Automatic");
    } else if (n == "IsLinear")
        ;
    else
        return scope.applyProperty(p);
    return true;
}

void ConverterCore::collectRefs(std::vector<Ref *> &reading)
{
    reading.push_back(&pValue);
    scope.collectRefs(reading);
}

void ConverterCore::finishLoad(Node &owner)
{
    if (!pValue.isSet())
        throw PROPERTY_EXCEPTION("line %u: node '%s' has no pValue", owner.line(),
                                 std::string(owner.name()).c_str());
    if (toText.empty() || fromText.empty())
        throw PROPERTY_EXCEPTION("line %u: node '%s' needs both FormulaTo and FormulaFrom",
                                 owner.line(), std::string(owner.name()).c_str());
    to = scope.parse(owner, toText, toPos, { "FROM" });
    from = scope.parse(owner, fromText, fromPos, { "TO" });
}

// FormulaFrom at one of the raw node's integer limits. In 64-bit integers a
// raw limit such as INT64_MAX times ten wraps and gives limits that refuse
// legal values, so the formula is evaluated in double too: where the exact
// result has left the int64 range (or wrapped to the other sign), the limit
// is the double one, which the caller saturates; elsewhere the integer one
// keeps integer division and the full 64-bit precision.
double ConverterCore::intLimit(Node &owner, int64_t raw)
{
    const double wide = scope.evaluateFloat(owner, from, static_cast<double>(raw));
    if (std::isnan(wide) || std::fabs(wide) >= 9223372036854775808.0)
        return wide;
    const int64_t exact = scope.evaluateInt(owner, from, raw);
    if ((exact < 0 && wide > 0) || (exact > 0 && wide < 0))
        return wide;
    return static_cast<double>(exact);
}

void ConverterCore::limits(Node &owner, double &low, double &high, bool integer)
{
    try {
        double a, b;
        if (integer) {
            a = intLimit(owner, pValue.node->intMin());
            b = intLimit(owner, pValue.node->intMax());
        } else {
            a = scope.evaluateFloat(owner, from, pValue.node->floatMin());
            b = scope.evaluateFloat(owner, from, pValue.node->floatMax());
        }
        if (slope == Increasing) {
            low = a;
            high = b;
        } else if (slope == Decreasing) {
            low = b;
            high = a;
        } else {
            low = std::min(a, b);
            high = std::max(a, b);
        }
        if (!std::isnan(low) && !std::isnan(high)) {
            // A float converter whose formula overflows at the raw limits
            // reports the largest finite range, which can be written.
            low = std::max(low, -std::numeric_limits<double>::max());
            high = std::min(high, std::numeric_limits<double>::max());
            return;
        }
    } catch (const WouldWaitException &) {
        throw;
    } catch (const GenericException &) {
        // A cycle of references is an error of the description, not of the
        // limits: fail fast with it.
        if (owner.map().depthExceeded())
            throw;
        // The conversion is undefined at the raw limits (a division by a
        // register that is zero there, say): the value itself may still be
        // fine, so report the widest range instead of failing.
    }
    low = integer ? double(INT64_MIN) : -std::numeric_limits<double>::max();
    high = integer ? double(INT64_MAX) : std::numeric_limits<double>::max();
}

bool IntConverter::applyProperty(const Property &p)
{
    if (m_core.applyProperty(*this, p))
        return true;
    return IntegerBase::applyProperty(p);
}

void IntConverter::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    IntegerBase::collectRefs(reading, other);
    m_core.collectRefs(reading);
}

EAccessMode IntConverter::doAccess()
{
    return m_core.pValue.node->access();
}

int64_t IntConverter::doGetInt(bool ignoreCache)
{
    return m_core.scope.evaluateInt(*this, m_core.from, m_core.pValue.node->getInt(ignoreCache));
}

void IntConverter::doPutInt(int64_t value)
{
    m_core.pValue.node->putInt(m_core.scope.evaluateInt(*this, m_core.to, value));
}

int64_t IntConverter::rawMin()
{
    double low, high;
    m_core.limits(*this, low, high, true);
    return saturatingRound(low);
}

int64_t IntConverter::rawMax()
{
    double low, high;
    m_core.limits(*this, low, high, true);
    return saturatingRound(high);
}

bool Converter::applyProperty(const Property &p)
{
    if (m_core.applyProperty(*this, p))
        return true;
    return FloatBase::applyProperty(p);
}

void Converter::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    FloatBase::collectRefs(reading, other);
    m_core.collectRefs(reading);
}

EAccessMode Converter::doAccess()
{
    return m_core.pValue.node->access();
}

double Converter::doGetFloat(bool ignoreCache)
{
    return m_core.scope.evaluateFloat(*this, m_core.from,
                                      m_core.pValue.node->getFloat(ignoreCache));
}

void Converter::doPutFloat(double value)
{
    m_core.pValue.node->putFloat(m_core.scope.evaluateFloat(*this, m_core.to, value));
}

double Converter::rawMin()
{
    double low, high;
    m_core.limits(*this, low, high, false);
    return low;
}

double Converter::rawMax()
{
    double low, high;
    m_core.limits(*this, low, high, false);
    return high;
}

} // namespace impl
} // namespace GenApi_3_0
