// Enumeration and its entries.
#include "nodes.h"

#include "nodemap.h"
#include "text.h"

#include <algorithm>

namespace GenApi_3_0 {
namespace impl {

// ---------------------------------------------------------------------------
// Enumeration

bool Enumeration::applyProperty(const Property &p)
{
    if (m_source.applyProperty(*this, p))
        return true;
    return ValueNode::applyProperty(p);
}

void Enumeration::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    ValueNode::collectRefs(reading, other);
    m_source.collectRefs(reading);
}

EAccessMode Enumeration::doAccess()
{
    return m_source.access(*this);
}
int64_t Enumeration::doGetInt(bool ignoreCache)
{
    return m_source.read(*this, ignoreCache);
}

void Enumeration::doPutInt(int64_t value)
{
    if (!entryForValue(value))
        throwRange("value " + std::to_string(value) + " is not the value of any entry");
    m_source.write(*this, value);
}

EnumEntry *Enumeration::entryForValue(int64_t value)
{
    EnumEntry *first = nullptr;
    for (EnumEntry *e : entries) {
        if (e->value() != value)
            continue;
        if (!first) {
            first = e;
            continue;
        }
        // Several entries share the value: prefer the one that exists.
        if (first->access() == NI && e->access() != NI)
            return e;
    }
    return first;
}

EnumEntry *Enumeration::entryForName(std::string_view name)
{
    for (EnumEntry *e : entries)
        if (e->symbolic() == name)
            return e;
    return nullptr;
}

void Enumeration::setEntry(EnumEntry *entry, bool verifyValue)
{
    if (verifyValue && !IsAvailable(entry->access()))
        throwAccess("entry '" + entry->symbolic() + "' is not available");
    m_source.write(*this, entry->value());
}

void Enumeration::GetSymbolics(StringList_t &Symbolics)
{
    NodeMap::Guard guard(m_map);
    Symbolics.clear();
    for (EnumEntry *e : entries)
        if (IsAvailable(e->access()))
            Symbolics.push_back(e->symbolic());
}

void Enumeration::GetEntries(NodeList_t &Entries)
{
    Entries.assign(entries.begin(), entries.end());
}

IEnumeration &Enumeration::operator=(const gcstring &ValueStr)
{
    FromString(ValueStr);
    return *this;
}

void Enumeration::SetIntValue(int64_t Value, bool Verify)
{
    NodeMap::Guard guard(m_map);
    NodeMap::WriteScope scope(m_map, this);
    requireWritable();
    EnumEntry *entry = entryForValue(Value);
    if (!entry)
        throwRange("value " + std::to_string(Value) + " is not the value of any entry");
    setEntry(entry, Verify);
}

int64_t Enumeration::GetIntValue(bool Verify, bool IgnoreCache)
{
    NodeMap::Guard guard(m_map);
    requireReadable();
    const int64_t value = getInt(IgnoreCache);
    if (Verify && !entryForValue(value))
        throwRange("the current value " + std::to_string(value) + " matches no entry");
    return value;
}

IEnumEntry *Enumeration::GetCurrentEntry(bool, bool IgnoreCache)
{
    NodeMap::Guard guard(m_map);
    requireReadable();
    return entryForValue(getInt(IgnoreCache));
}

IEnumEntry *Enumeration::GetEntryByName(const gcstring &Symbolic)
{
    NodeMap::Guard guard(m_map);
    return entryForName(Symbolic.str());
}

IEnumEntry *Enumeration::GetEntry(const int64_t IntValue)
{
    NodeMap::Guard guard(m_map);
    return entryForValue(IntValue);
}

std::string Enumeration::doGetString(bool ignoreCache)
{
    const int64_t value = doGetInt(ignoreCache);
    if (EnumEntry *entry = entryForValue(value))
        return entry->symbolic();
    throwRuntime("the current value " + std::to_string(value) + " matches no entry");
}

std::string Enumeration::toText(bool, bool ignoreCache)
{
    requireReadable();
    return getString(ignoreCache);
}

void Enumeration::fromText(const std::string &text, bool verifyValue)
{
    const std::string_view name = trim(text);
    EnumEntry *entry = entryForName(name);
    if (!entry) {
        if (auto number = parseInt(name))
            entry = entryForValue(*number);
    }
    if (!entry) {
        std::string valid;
        for (EnumEntry *e : entries) {
            if (!IsAvailable(e->access()))
                continue;
            valid += valid.empty() ? "" : ", ";
            valid += e->symbolic();
        }
        throw INVALID_ARGUMENT_EXCEPTION("%s: '%s' is not an entry (available: %s)",
                                         label().c_str(), text.c_str(), valid.c_str());
    }
    requireWritable();
    setEntry(entry, verifyValue);
}

// ---------------------------------------------------------------------------
// EnumEntry

bool EnumEntry::applyProperty(const Property &p)
{
    const std::string_view n = p.name;
    if (n == "Value")
        m_value = propertyInt(*this, p);
    else if (n == "NumericValue") {
        m_numeric = propertyDouble(*this, p);
        m_hasNumeric = true;
    } else if (n == "Symbolic")
        m_symbolic = std::string(p.text);
    else if (n == "IsSelfClearing")
        m_selfClearing = propertyYesNo(*this, p);
    else
        return ValueNode::applyProperty(p);
    return true;
}

void EnumEntry::fromText(const std::string &, bool)
{
    throwAccess("an entry cannot be written");
}

} // namespace impl
} // namespace GenApi_3_0
