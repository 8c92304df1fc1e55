// The number nodes: Integer and Float and the bases that IntReg, FloatReg,
// the SwissKnifes and the Converters share.
#include "nodes.h"

#include "nodemap.h"
#include "text.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace GenApi_3_0 {
namespace impl {

// ---------------------------------------------------------------------------
// IntegerBase

bool IntegerBase::applyProperty(const Property &p)
{
    if (p.name == "Unit") {
        m_unit = std::string(p.text);
        return true;
    }
    if (p.name == "Representation") {
        if (ERepresentationClass::FromString(gcstring(std::string(p.text)), &m_representation))
            m_hasRepresentation = true;
        else
            keepDefault(*this, p, "a representation", "of the node type");
        return true;
    }
    return ValueNode::applyProperty(p);
}

ERepresentation IntegerBase::doRepresentation()
{
    return m_hasRepresentation ? m_representation : PureNumber;
}

int64_t IntegerBase::doIntMin()
{
    const int64_t raw = rawMin();
    return m_hasImposedMin ? std::max(raw, m_imposedMin) : raw;
}

int64_t IntegerBase::doIntMax()
{
    const int64_t raw = rawMax();
    return m_hasImposedMax ? std::min(raw, m_imposedMax) : raw;
}

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

void IntegerBase::SetValue(int64_t Value, bool Verify)
{
    NodeMap::Guard guard(m_map);
    NodeMap::WriteScope scope(m_map, this);
    requireWritable();
    if (Verify)
        verify(Value);
    putInt(Value);
}

IInteger &IntegerBase::operator=(int64_t Value)
{
    SetValue(Value);
    return *this;
}

int64_t IntegerBase::GetValue(bool Verify, bool IgnoreCache)
{
    NodeMap::Guard guard(m_map);
    requireReadable();
    const int64_t value = getInt(IgnoreCache);
    if (Verify)
        verify(value);
    return value;
}

int64_t IntegerBase::GetMin()
{
    NodeMap::Guard guard(m_map);
    return intMin();
}
int64_t IntegerBase::GetMax()
{
    NodeMap::Guard guard(m_map);
    return intMax();
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

int64_autovector_t IntegerBase::GetListOfValidValues(bool bounded)
{
    NodeMap::Guard guard(m_map);
    int64_autovector_t result;
    if (doIncMode() != listIncrement)
        return result;
    const int64_t low = bounded ? intMin() : INT64_MIN;
    const int64_t high = bounded ? intMax() : INT64_MAX;
    for (int64_t v : doValidValues())
        if (v >= low && v <= high)
            result.push_back(v);
    return result;
}

ERepresentation IntegerBase::GetRepresentation()
{
    NodeMap::Guard guard(m_map);
    return representation();
}

gcstring IntegerBase::GetUnit() const
{
    NodeMap::Guard guard(m_map);
    return const_cast<IntegerBase *>(this)->unit();
}

void IntegerBase::ImposeMin(int64_t Value)
{
    NodeMap::Guard guard(m_map);
    m_imposedMin = Value;
    m_hasImposedMin = true;
    m_map.notifyChanged({ this }, {});
}

void IntegerBase::ImposeMax(int64_t Value)
{
    NodeMap::Guard guard(m_map);
    m_imposedMax = Value;
    m_hasImposedMax = true;
    m_map.notifyChanged({ this }, {});
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
// Integer

bool Integer::applyProperty(const Property &p)
{
    if (m_source.applyProperty(*this, p))
        return true;
    const std::string_view n = p.name;
    if (n == "Min") {
        m_min = propertyInt(*this, p);
        m_hasMin = true;
    } else if (n == "Max") {
        m_max = propertyInt(*this, p);
        m_hasMax = true;
    } else if (n == "Inc") {
        m_inc = propertyInt(*this, p);
        m_hasInc = true;
    } else if (n == "pMin")
        m_pMin = propertyRef(p);
    else if (n == "pMax")
        m_pMax = propertyRef(p);
    else if (n == "pInc")
        m_pInc = propertyRef(p);
    else if (n == "ValidValueSet") {
        std::string_view rest = p.text;
        while (!rest.empty()) {
            const size_t sep = rest.find(';');
            const std::string_view item = trim(rest.substr(0, sep));
            if (!item.empty()) {
                auto v = parseInt(item);
                if (!v)
                    throwBadProperty(*this, p, "a list of integers separated by ';'");
                m_validValues.push_back(*v);
            }
            rest = sep == std::string_view::npos ? std::string_view() : rest.substr(sep + 1);
        }
    } else
        return IntegerBase::applyProperty(p);
    return true;
}

void Integer::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    IntegerBase::collectRefs(reading, other);
    m_source.collectRefs(reading);
    reading.push_back(&m_pMin);
    reading.push_back(&m_pMax);
    reading.push_back(&m_pInc);
}

void Integer::finishLoad()
{
    if (m_hasInc && m_inc <= 0)
        throw PROPERTY_EXCEPTION("line %u: node '%s': the increment %lld must be positive", m_line,
                                 m_name.c_str(), static_cast<long long>(m_inc));
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

int64_t Integer::rawMin()
{
    if (m_pMin.node)
        return m_pMin.node->getInt(false);
    if (m_hasMin)
        return m_min;
    if (m_source.pointer())
        return m_source.pointer()->intMin();
    return INT64_MIN;
}

int64_t Integer::rawMax()
{
    if (m_pMax.node)
        return m_pMax.node->getInt(false);
    if (m_hasMax)
        return m_max;
    if (m_source.pointer())
        return m_source.pointer()->intMax();
    return INT64_MAX;
}

int64_t Integer::doIntInc()
{
    int64_t inc = 1;
    if (m_pInc.node)
        inc = m_pInc.node->getInt(false);
    else if (m_hasInc)
        inc = m_inc;
    else if (m_source.pointer())
        inc = m_source.pointer()->intInc();
    if (inc <= 0)
        throwRuntime("the increment " + std::to_string(inc) + " is not positive");
    return inc;
}

EIncMode Integer::doIncMode()
{
    return m_validValues.empty() ? fixedIncrement : listIncrement;
}

ERepresentation Integer::doRepresentation()
{
    if (m_hasRepresentation)
        return m_representation;
    if (m_source.pointer())
        return m_source.pointer()->representation();
    return PureNumber;
}

std::string Integer::doUnit()
{
    if (m_unit.empty() && m_source.pointer())
        return m_source.pointer()->unit();
    return m_unit;
}

// ---------------------------------------------------------------------------
// FloatBase

bool FloatBase::applyProperty(const Property &p)
{
    const std::string_view n = p.name;
    if (n == "Unit")
        m_unit = std::string(p.text);
    else if (n == "Representation") {
        if (ERepresentationClass::FromString(gcstring(std::string(p.text)), &m_representation))
            m_hasRepresentation = true;
        else
            keepDefault(*this, p, "a representation", "of the node type");
    } else if (n == "DisplayNotation") {
        if (!EDisplayNotationClass::FromString(gcstring(std::string(p.text)), &m_notation)) {
            m_notation = fnAutomatic;
            keepDefault(*this, p, "a display notation (Automatic, Fixed or Scientific)",
                        "Automatic");
        }
    } else if (n == "DisplayPrecision") {
        m_precision = propertyInt(*this, p);
        if (m_precision < 0)
            throwBadProperty(*this, p, "a precision of zero or more digits");
    } else
        return ValueNode::applyProperty(p);
    return true;
}

ERepresentation FloatBase::doRepresentation()
{
    return m_hasRepresentation ? m_representation : PureNumber;
}

double FloatBase::doFloatMin()
{
    const double raw = rawMin();
    return m_hasImposedMin ? std::max(raw, m_imposedMin) : raw;
}

double FloatBase::doFloatMax()
{
    const double raw = rawMax();
    return m_hasImposedMax ? std::min(raw, m_imposedMax) : raw;
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

void FloatBase::SetValue(double Value, bool Verify)
{
    NodeMap::Guard guard(m_map);
    NodeMap::WriteScope scope(m_map, this);
    requireWritable();
    if (Verify)
        verify(Value);
    putFloat(Value);
}

IFloat &FloatBase::operator=(double Value)
{
    SetValue(Value);
    return *this;
}

double FloatBase::GetValue(bool Verify, bool IgnoreCache)
{
    NodeMap::Guard guard(m_map);
    requireReadable();
    const double value = getFloat(IgnoreCache);
    if (Verify)
        verify(value);
    return value;
}

double FloatBase::GetMin()
{
    NodeMap::Guard guard(m_map);
    return floatMin();
}
double FloatBase::GetMax()
{
    NodeMap::Guard guard(m_map);
    return floatMax();
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

double_autovector_t FloatBase::GetListOfValidValues(bool bounded)
{
    NodeMap::Guard guard(m_map);
    double_autovector_t result;
    const double low = bounded ? floatMin() : -std::numeric_limits<double>::max();
    const double high = bounded ? floatMax() : std::numeric_limits<double>::max();
    for (double v : doValidValues())
        if (v >= low && v <= high)
            result.push_back(v);
    return result;
}

ERepresentation FloatBase::GetRepresentation()
{
    NodeMap::Guard guard(m_map);
    return representation();
}

gcstring FloatBase::GetUnit() const
{
    NodeMap::Guard guard(m_map);
    return const_cast<FloatBase *>(this)->unit();
}

void FloatBase::ImposeMin(double Value)
{
    NodeMap::Guard guard(m_map);
    m_imposedMin = Value;
    m_hasImposedMin = true;
    m_map.notifyChanged({ this }, {});
}

void FloatBase::ImposeMax(double Value)
{
    NodeMap::Guard guard(m_map);
    m_imposedMax = Value;
    m_hasImposedMax = true;
    m_map.notifyChanged({ this }, {});
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
    if (m_source.applyProperty(*this, p))
        return true;
    const std::string_view n = p.name;
    if (n == "Min") {
        m_min = propertyDouble(*this, p);
        m_hasMin = true;
    } else if (n == "Max") {
        m_max = propertyDouble(*this, p);
        m_hasMax = true;
    } else if (n == "Inc") {
        m_inc = propertyDouble(*this, p);
        m_hasInc = true;
    } else if (n == "pMin")
        m_pMin = propertyRef(p);
    else if (n == "pMax")
        m_pMax = propertyRef(p);
    else if (n == "pInc")
        m_pInc = propertyRef(p);
    else if (n == "ValidValueSet") {
        std::string_view rest = p.text;
        while (!rest.empty()) {
            const size_t sep = rest.find(';');
            const std::string_view item = trim(rest.substr(0, sep));
            if (!item.empty()) {
                auto v = parseDouble(item);
                if (!v)
                    throwBadProperty(*this, p, "a list of numbers separated by ';'");
                m_validValues.push_back(*v);
            }
            rest = sep == std::string_view::npos ? std::string_view() : rest.substr(sep + 1);
        }
    } else
        return FloatBase::applyProperty(p);
    return true;
}

void Float::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    FloatBase::collectRefs(reading, other);
    m_source.collectRefs(reading);
    reading.push_back(&m_pMin);
    reading.push_back(&m_pMax);
    reading.push_back(&m_pInc);
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

double Float::rawMin()
{
    if (m_pMin.node)
        return m_pMin.node->getFloat(false);
    if (m_hasMin)
        return m_min;
    if (m_source.pointer())
        return m_source.pointer()->floatMin();
    return -std::numeric_limits<double>::max();
}

double Float::rawMax()
{
    if (m_pMax.node)
        return m_pMax.node->getFloat(false);
    if (m_hasMax)
        return m_max;
    if (m_source.pointer())
        return m_source.pointer()->floatMax();
    return std::numeric_limits<double>::max();
}

bool Float::doHasInc()
{
    return m_pInc.node || m_hasInc;
}

double Float::doFloatInc()
{
    if (m_pInc.node)
        return m_pInc.node->getFloat(false);
    return m_hasInc ? m_inc : 0.0;
}

ERepresentation Float::doRepresentation()
{
    if (m_hasRepresentation)
        return m_representation;
    if (m_source.pointer())
        return m_source.pointer()->representation();
    return PureNumber;
}

std::string Float::doUnit()
{
    if (m_unit.empty() && m_source.pointer())
        return m_source.pointer()->unit();
    return m_unit;
}

} // namespace impl
} // namespace GenApi_3_0
