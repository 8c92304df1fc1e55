// The number nodes: Integer and Float and the bases that IntReg, FloatReg,
// the SwissKnifes and the Converters share.
#include "nodes.h"

#include "nodemap.h"
#include "text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <type_traits>

namespace GenApi_3_0 {
namespace impl {

// ---------------------------------------------------------------------------
// NumberBase

template <class T> bool NumberBase<T>::applyProperty(const Property &p)
{
    if (p.name == "Unit") {
        m_unit = p.text;
        return true;
    }
    if (p.name == "Representation") {
        if (parseEnum(p.text, m_representation))
            m_hasRepresentation = true;
        else
            keepDefault(*this, p, "a representation", "of the node type");
        return true;
    }
    return ValueNode::applyProperty(p);
}

template <class T> T NumberBase<T>::readValue(bool ignoreCache)
{
    if constexpr (std::is_same_v<T, int64_t>)
        return getInt(ignoreCache);
    else
        return getFloat(ignoreCache);
}

template <class T> void NumberBase<T>::writeValue(T value)
{
    if constexpr (std::is_same_v<T, int64_t>)
        putInt(value);
    else
        putFloat(value);
}

template <class T> T NumberBase<T>::limitMin()
{
    if constexpr (std::is_same_v<T, int64_t>)
        return intMin();
    else
        return floatMin();
}

template <class T> T NumberBase<T>::limitMax()
{
    if constexpr (std::is_same_v<T, int64_t>)
        return intMax();
    else
        return floatMax();
}

template <class T> ERepresentation NumberBase<T>::doRepresentation()
{
    return m_hasRepresentation ? m_representation : PureNumber;
}

template <class T> ERepresentation NumberBase<T>::representationOr(Node *pointer)
{
    if (!m_hasRepresentation && pointer)
        return pointer->representation();
    return NumberBase::doRepresentation();
}

template <class T> std::string NumberBase<T>::unitOr(Node *pointer)
{
    if (m_unit.empty() && pointer)
        return pointer->unit();
    return std::string(m_unit);
}

template <class T> void NumberBase<T>::SetValue(T Value, bool Verify)
{
    NodeMap::Guard guard(m_map);
    NodeMap::WriteScope scope(m_map, this);
    requireWritable();
    if (Verify)
        verify(Value);
    writeValue(Value);
}

template <class T> typename NumberBase<T>::Interface &NumberBase<T>::operator=(T Value)
{
    SetValue(Value);
    return *this;
}

template <class T> T NumberBase<T>::GetValue(bool Verify, bool IgnoreCache)
{
    NodeMap::Guard guard(m_map);
    requireReadable();
    const T value = readValue(IgnoreCache);
    if (Verify)
        verify(value);
    return value;
}

template <class T> T NumberBase<T>::GetMin()
{
    NodeMap::Guard guard(m_map);
    return limitMin();
}

template <class T> T NumberBase<T>::GetMax()
{
    NodeMap::Guard guard(m_map);
    return limitMax();
}

template <class T> typename NumberTraits<T>::List NumberBase<T>::GetListOfValidValues(bool bounded)
{
    NodeMap::Guard guard(m_map);
    typename NumberTraits<T>::List result;
    const std::vector<T> valid = doValidValues();
    if (valid.empty())
        return result;
    const T low = bounded ? limitMin() : NumberTraits<T>::lowest;
    const T high = bounded ? limitMax() : NumberTraits<T>::highest;
    for (T v : valid)
        if (v >= low && v <= high)
            result.push_back(v);
    return result;
}

template <class T> ERepresentation NumberBase<T>::GetRepresentation()
{
    NodeMap::Guard guard(m_map);
    return representation();
}

template <class T> gcstring NumberBase<T>::GetUnit() const
{
    NodeMap::Guard guard(m_map);
    return const_cast<NumberBase *>(this)->unit();
}

template <class T> void NumberBase<T>::ImposeMin(T Value)
{
    NodeMap::Guard guard(m_map);
    m_imposedMin = Value;
    m_hasImposedMin = true;
    m_map.notifyChanged({ this }, {});
}

template <class T> void NumberBase<T>::ImposeMax(T Value)
{
    NodeMap::Guard guard(m_map);
    m_imposedMax = Value;
    m_hasImposedMax = true;
    m_map.notifyChanged({ this }, {});
}

template class NumberBase<int64_t>;
template class NumberBase<double>;

// ---------------------------------------------------------------------------
// IntegerBase

void IntegerBase::verify(int64_t value)
{
    const int64_t low = intMin();
    const int64_t high = intMax();
    if (value < low || value > high)
        throwRange("value " + std::to_string(value) + " is out of range [" + std::to_string(low)
                   + ", " + std::to_string(high) + "]");
    const EIncMode mode = doIncMode();
    if (mode == fixedIncrement) {
        const int64_t inc = intInc();
        if (inc > 1) {
            const uint64_t offset = static_cast<uint64_t>(value) - static_cast<uint64_t>(low);
            if (offset % static_cast<uint64_t>(inc) != 0)
                throwRange("value " + std::to_string(value) + " is not the minimum "
                           + std::to_string(low) + " plus a multiple of the increment "
                           + std::to_string(inc));
        }
    } else if (mode == listIncrement) {
        const std::vector<int64_t> valid = doValidValues();
        if (std::find(valid.begin(), valid.end(), value) == valid.end())
            throwRange("value " + std::to_string(value) + " is not one of the valid values");
    }
}

EIncMode IntegerBase::GetIncMode()
{
    NodeMap::Guard guard(m_map);
    return doIncMode();
}

int64_t IntegerBase::GetInc()
{
    NodeMap::Guard guard(m_map);
    return doIncMode() == fixedIncrement ? intInc() : 1;
}

std::string IntegerBase::toText(bool verifyValue, bool ignoreCache)
{
    requireReadable();
    const int64_t value = getInt(ignoreCache);
    if (verifyValue)
        verify(value);
    return formatInt(value, representation());
}

std::string IntegerBase::doGetString(bool ignoreCache)
{
    return formatInt(doGetInt(ignoreCache), representation());
}

void IntegerBase::fromText(const std::string &text, bool verifyValue)
{
    std::optional<int64_t> value = parseInt(text);
    if (!value)
        value = parseIPv4(text);
    if (!value)
        value = parseMAC(text);
    if (!value) {
        // "12.0" and "1e3" are integral values written as decimals.
        if (auto asDouble = parseDouble(text);
            asDouble && std::trunc(*asDouble) == *asDouble && std::fabs(*asDouble) < 9.2e18)
            value = static_cast<int64_t>(*asDouble);
    }
    if (!value)
        throw INVALID_ARGUMENT_EXCEPTION("%s: '%s' is not an integer", label().c_str(),
                                         text.c_str());
    requireWritable();
    if (verifyValue)
        verify(*value);
    putInt(*value);
}

void IntegerBase::doPutFloat(double value)
{
    doPutInt(saturatingRound(value));
}

// ---------------------------------------------------------------------------
// NumberLimits

template <class T> bool NumberLimits<T>::applyProperty(Node &owner, const Property &p)
{
    const std::string_view n = p.name;
    if (n == "Min") {
        minValue = propertyValue<T>(owner, p);
        hasMin = true;
    } else if (n == "Max") {
        maxValue = propertyValue<T>(owner, p);
        hasMax = true;
    } else if (n == "Inc") {
        incValue = propertyValue<T>(owner, p);
        hasInc = true;
    } else if (n == "pMin")
        pMin = propertyRef(p);
    else if (n == "pMax")
        pMax = propertyRef(p);
    else if (n == "pInc")
        pInc = propertyRef(p);
    else if (n == "ValidValueSet") {
        std::string_view rest = p.text;
        while (!rest.empty()) {
            const size_t sep = rest.find(';');
            const std::string_view item = trim(rest.substr(0, sep));
            if (!item.empty()) {
                std::optional<T> v;
                if constexpr (std::is_same_v<T, int64_t>)
                    v = parseInt(item);
                else
                    v = parseDouble(item);
                if (!v)
                    throwBadProperty(owner, p,
                                     std::is_same_v<T, int64_t>
                                         ? "a list of integers separated by ';'"
                                         : "a list of numbers separated by ';'");
                validValues.push_back(*v);
            }
            rest = sep == std::string_view::npos ? std::string_view() : rest.substr(sep + 1);
        }
    } else
        return false;
    return true;
}

template <class T> void NumberLimits<T>::collectRefs(std::vector<Ref *> &reading)
{
    reading.push_back(&pMin);
    reading.push_back(&pMax);
    reading.push_back(&pInc);
}

template <class T> T NumberLimits<T>::min(Node *pointer)
{
    if (pMin.node)
        return readNode<T>(pMin.node, false);
    if (hasMin)
        return minValue;
    if (pointer) {
        if constexpr (std::is_same_v<T, int64_t>)
            return pointer->intMin();
        else
            return pointer->floatMin();
    }
    return NumberTraits<T>::lowest;
}

template <class T> T NumberLimits<T>::max(Node *pointer)
{
    if (pMax.node)
        return readNode<T>(pMax.node, false);
    if (hasMax)
        return maxValue;
    if (pointer) {
        if constexpr (std::is_same_v<T, int64_t>)
            return pointer->intMax();
        else
            return pointer->floatMax();
    }
    return NumberTraits<T>::highest;
}

template struct NumberLimits<int64_t>;
template struct NumberLimits<double>;

// ---------------------------------------------------------------------------
// Integer

bool Integer::applyProperty(const Property &p)
{
    if (m_source.applyProperty(*this, p) || m_limits.applyProperty(*this, p))
        return true;
    return IntegerBase::applyProperty(p);
}

void Integer::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    IntegerBase::collectRefs(reading, other);
    m_source.collectRefs(reading);
    m_limits.collectRefs(reading);
}

void Integer::finishLoad()
{
    if (m_limits.hasInc && m_limits.incValue <= 0)
        throw PROPERTY_EXCEPTION("line %u: node '%s': the increment %lld must be positive", line(),
                                 std::string(m_name).c_str(),
                                 static_cast<long long>(m_limits.incValue));
}

EAccessMode Integer::doAccess()
{
    return m_source.access(*this);
}
int64_t Integer::doGetInt(bool ignoreCache)
{
    return m_source.read(*this, ignoreCache);
}
void Integer::doPutInt(int64_t value)
{
    m_source.write(*this, value);
}

int64_t Integer::doIntInc()
{
    int64_t inc = 1;
    if (m_limits.pInc.node)
        inc = m_limits.pInc.node->getInt(false);
    else if (m_limits.hasInc)
        inc = m_limits.incValue;
    else if (m_source.pointer())
        inc = m_source.pointer()->intInc();
    if (inc <= 0)
        throwRuntime("the increment " + std::to_string(inc) + " is not positive");
    return inc;
}

EIncMode Integer::doIncMode()
{
    return m_limits.validValues.empty() ? fixedIncrement : listIncrement;
}

// ---------------------------------------------------------------------------
// FloatBase

bool FloatBase::applyProperty(const Property &p)
{
    const std::string_view n = p.name;
    if (n == "DisplayNotation") {
        if (!parseEnum(p.text, m_notation)) {
            m_notation = fnAutomatic;
            keepDefault(*this, p, "a display notation (Automatic, Fixed or Scientific)",
                        "Automatic");
        }
    } else if (n == "DisplayPrecision") {
        m_precision = propertyInt(*this, p);
        if (m_precision < 0)
            throwBadProperty(*this, p, "a precision of zero or more digits");
    } else
        return NumberBase::applyProperty(p);
    return true;
}

int64_t FloatBase::doIntMin()
{
    return saturatingRound(doFloatMin());
}
int64_t FloatBase::doIntMax()
{
    return saturatingRound(doFloatMax());
}
int64_t FloatBase::doGetInt(bool ignoreCache)
{
    return saturatingRound(doGetFloat(ignoreCache));
}

std::string FloatBase::doGetString(bool ignoreCache)
{
    return formatDouble(doGetFloat(ignoreCache), m_notation, m_precision);
}

void FloatBase::verify(double value)
{
    if (std::isnan(value))
        throwRange("value is not a number");
    const double low = floatMin();
    const double high = floatMax();
    if (value < low || value > high)
        throwRange("value " + formatDoubleExact(value) + " is out of range ["
                   + formatDoubleExact(low) + ", " + formatDoubleExact(high) + "]");
    if (doHasInc()) {
        const double inc = doFloatInc();
        if (inc > 0) {
            const double steps = (value - low) / inc;
            if (std::fabs(steps - std::round(steps)) > 1e-6 * std::max(1.0, std::fabs(steps)))
                throwRange("value " + formatDoubleExact(value) + " is not the minimum "
                           + formatDoubleExact(low) + " plus a multiple of the increment "
                           + formatDoubleExact(inc));
        }
    }
    const std::vector<double> valid = doValidValues();
    if (!valid.empty() && std::none_of(valid.begin(), valid.end(), [&](double v) {
            return std::fabs(v - value) <= 1e-9 * std::max(1.0, std::fabs(v));
        }))
        throwRange("value " + formatDoubleExact(value) + " is not one of the valid values");
}

bool FloatBase::HasInc()
{
    NodeMap::Guard guard(m_map);
    return doHasInc();
}
EIncMode FloatBase::GetIncMode()
{
    NodeMap::Guard guard(m_map);
    if (!doValidValues().empty())
        return listIncrement;
    return doHasInc() ? fixedIncrement : noIncrement;
}
double FloatBase::GetInc()
{
    NodeMap::Guard guard(m_map);
    return doHasInc() ? doFloatInc() : 0.0;
}

std::string FloatBase::toText(bool verifyValue, bool ignoreCache)
{
    requireReadable();
    const double value = getFloat(ignoreCache);
    if (verifyValue)
        verify(value);
    return formatDouble(value, m_notation, m_precision);
}

void FloatBase::fromText(const std::string &text, bool verifyValue)
{
    const std::optional<double> value = parseDouble(text);
    if (!value)
        throw INVALID_ARGUMENT_EXCEPTION("%s: '%s' is not a number", label().c_str(), text.c_str());
    requireWritable();
    if (verifyValue)
        verify(*value);
    putFloat(*value);
}

// ---------------------------------------------------------------------------
// Float

bool Float::applyProperty(const Property &p)
{
    if (m_source.applyProperty(*this, p) || m_limits.applyProperty(*this, p))
        return true;
    return FloatBase::applyProperty(p);
}

void Float::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    FloatBase::collectRefs(reading, other);
    m_source.collectRefs(reading);
    m_limits.collectRefs(reading);
}

EAccessMode Float::doAccess()
{
    return m_source.access(*this);
}
double Float::doGetFloat(bool ignoreCache)
{
    return m_source.read(*this, ignoreCache);
}
void Float::doPutFloat(double value)
{
    m_source.write(*this, value);
}

bool Float::doHasInc()
{
    return m_limits.pInc.node || m_limits.hasInc;
}

double Float::doFloatInc()
{
    if (m_limits.pInc.node)
        return m_limits.pInc.node->getFloat(false);
    return m_limits.hasInc ? m_limits.incValue : 0.0;
}

} // namespace impl
} // namespace GenApi_3_0
