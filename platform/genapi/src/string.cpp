// String: a string with its value in the description or behind a pValue,
// and StringReg, a string in device memory.
#include "nodes.h"

#include "nodemap.h"
#include "text.h"

#include <algorithm>
#include <cstring>

namespace GenApi_3_0 {
namespace impl {

// ---------------------------------------------------------------------------
// String

String::String(NodeMap &map, std::string_view name, const char *typeName, bool isRegister)
    : ValueNode(map, name, typeName)
    , m_isRegister(isRegister)
    , m_core(*this)
{
}

bool String::applyProperty(const Property &p)
{
    if (m_isRegister) {
        if (m_core.applyProperty(p))
            return true;
    } else if (p.name == "Value") {
        m_value = std::string(p.text);
        return true;
    } else if (p.name == "pValue") {
        m_pValue = propertyRef(p);
        return true;
    }
    return ValueNode::applyProperty(p);
}

void String::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    ValueNode::collectRefs(reading, other);
    if (m_isRegister)
        m_core.collectRefs(reading);
    reading.push_back(&m_pValue);
}

void String::finishLoad()
{
    if (m_isRegister) {
        m_core.finishLoad();
        m_cachingMode = m_core.caching();
    }
}

EAccessMode String::doAccess()
{
    if (m_isRegister)
        return m_core.access();
    if (m_pValue.node)
        return m_pValue.node->access();
    return RW;
}

std::string String::doGetString(bool ignoreCache)
{
    if (m_isRegister) {
        const std::vector<uint8_t> &bytes = m_core.read(ignoreCache);
        const auto end = std::find(bytes.begin(), bytes.end(), uint8_t(0));
        return std::string(bytes.begin(), end);
    }
    if (m_pValue.node)
        return m_pValue.node->getString(ignoreCache);
    return m_value;
}

void String::doPutString(const std::string &value)
{
    if (m_isRegister) {
        const size_t len = static_cast<size_t>(m_core.length());
        if (value.size() > len)
            throwRange("text of " + std::to_string(value.size())
                       + " bytes does not fit the register's " + std::to_string(len) + " bytes");
        std::vector<uint8_t> bytes(len, 0);
        std::memcpy(bytes.data(), value.data(), value.size());
        m_core.write(bytes);
        return;
    }
    if (m_pValue.node) {
        m_pValue.node->putString(value);
        return;
    }
    m_value = value;
    m_map.recordWrite(this);
}

void String::SetValue(const gcstring &Value, bool Verify)
{
    NodeMap::Guard guard(m_map);
    NodeMap::WriteScope scope(m_map, this);
    requireWritable();
    if (Verify && static_cast<int64_t>(Value.size()) > GetMaxLength())
        throwRange("text of " + std::to_string(Value.size()) + " bytes is longer than the "
                   + std::to_string(GetMaxLength()) + " allowed");
    putString(Value.str());
}

IString &String::operator=(const gcstring &Value)
{
    SetValue(Value);
    return *this;
}

gcstring String::GetValue(bool, bool IgnoreCache)
{
    NodeMap::Guard guard(m_map);
    requireReadable();
    return getString(IgnoreCache);
}

int64_t String::GetMaxLength()
{
    NodeMap::Guard guard(m_map);
    if (m_isRegister)
        return m_core.length();
    if (auto *target = dynamic_cast<String *>(m_pValue.node))
        return target->GetMaxLength();
    return std::max<int64_t>(4096, static_cast<int64_t>(m_value.size()));
}

void String::fromText(const std::string &text, bool verifyValue)
{
    requireWritable();
    if (verifyValue && static_cast<int64_t>(text.size()) > GetMaxLength())
        throwRange("text of " + std::to_string(text.size()) + " bytes is longer than the "
                   + std::to_string(GetMaxLength()) + " allowed");
    putString(text);
}

} // namespace impl
} // namespace GenApi_3_0
