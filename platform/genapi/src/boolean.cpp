// Boolean and Command.
#include "nodes.h"

#include "nodemap.h"
#include "text.h"

#include <algorithm>

namespace GenApi_3_0 {
namespace impl {

// ---------------------------------------------------------------------------
// Boolean

bool Boolean::applyProperty(const Property &p)
{
    const std::string_view n = p.name;
    if (n == "OnValue")
        m_on = propertyInt(*this, p);
    else if (n == "OffValue")
        m_off = propertyInt(*this, p);
    else if (n == "Value") {
        // Stored as 1/0 here and mapped onto On/OffValue once both are known.
        auto value = parseBool(p.text);
        if (!value)
            throwBadProperty(*this, p, "true or false");
        m_source.setStored(*value ? 1 : 0);
        m_storedIsBool = true;
    } else if (m_source.applyProperty(*this, p))
        return true;
    else
        return ValueNode::applyProperty(p);
    return true;
}

void Boolean::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    ValueNode::collectRefs(reading, other);
    m_source.collectRefs(reading);
}

EAccessMode Boolean::doAccess()
{
    return m_source.access(*this);
}

bool Boolean::read(bool ignoreCache)
{
    const int64_t raw = m_source.read(*this, ignoreCache);
    if (m_storedIsBool && !m_source.hasPointer())
        return raw != 0;
    if (raw == m_on)
        return true;
    if (raw == m_off)
        return false;
    throwRuntime("value " + std::to_string(raw) + " is neither the OnValue " + std::to_string(m_on)
                 + " nor the OffValue " + std::to_string(m_off));
}

int64_t Boolean::doGetInt(bool ignoreCache)
{
    return read(ignoreCache) ? 1 : 0;
}

void Boolean::doPutInt(int64_t value)
{
    if (m_storedIsBool && !m_source.hasPointer())
        m_source.write(*this, value != 0 ? 1 : 0);
    else
        m_source.write(*this, value != 0 ? m_on : m_off);
}

void Boolean::SetValue(bool Value, bool)
{
    NodeMap::Guard guard(m_map);
    NodeMap::WriteScope scope(m_map, this);
    requireWritable();
    putInt(Value ? 1 : 0);
}

bool Boolean::GetValue(bool, bool IgnoreCache) const
{
    NodeMap::Guard guard(m_map);
    auto *self = const_cast<Boolean *>(this);
    self->requireReadable();
    return self->getInt(IgnoreCache) != 0;
}

std::string Boolean::toText(bool, bool ignoreCache)
{
    requireReadable();
    return getInt(ignoreCache) != 0 ? "1" : "0";
}

void Boolean::fromText(const std::string &text, bool)
{
    const std::optional<bool> value = parseBool(text);
    if (!value)
        throw INVALID_ARGUMENT_EXCEPTION("%s: '%s' is not a boolean (true, false, 1 or 0)",
                                         label().c_str(), text.c_str());
    requireWritable();
    putInt(*value ? 1 : 0);
}

// ---------------------------------------------------------------------------
// Command

bool Command::applyProperty(const Property &p)
{
    if (p.name == "CommandValue") {
        m_commandValue = propertyInt(*this, p);
        return true;
    }
    if (p.name == "pCommandValue") {
        m_pCommandValue = propertyRef(p);
        return true;
    }
    if (m_source.applyProperty(*this, p))
        return true;
    return ValueNode::applyProperty(p);
}

void Command::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    ValueNode::collectRefs(reading, other);
    m_source.collectRefs(reading);
    reading.push_back(&m_pCommandValue);
}

EAccessMode Command::doAccess()
{
    return m_source.access(*this);
}

int64_t Command::commandValue()
{
    return m_pCommandValue.node ? m_pCommandValue.node->getInt(false) : m_commandValue;
}

void Command::Execute(bool)
{
    NodeMap::Guard guard(m_map);
    NodeMap::WriteScope scope(m_map, this);
    requireWritable();
    m_source.write(*this, commandValue());
}

bool Command::IsDone(bool)
{
    NodeMap::Guard guard(m_map);
    if (!m_source.hasPointer() || !IsReadable(m_source.pointer()->access()))
        return true;
    const int64_t now = m_source.read(*this, true);
    return now != commandValue();
}

std::string Command::toText(bool, bool)
{
    return std::string();
}

void Command::fromText(const std::string &text, bool verifyValue)
{
    const std::optional<bool> value = parseBool(text);
    if (!equalsIgnoreCase(trim(text), "execute") && !(value && *value))
        throw INVALID_ARGUMENT_EXCEPTION("%s: '%s' does not execute a command (use 1 or Execute)",
                                         label().c_str(), text.c_str());
    (void)verifyValue;
    requireWritable();
    m_source.write(*this, commandValue());
}

} // namespace impl
} // namespace GenApi_3_0
