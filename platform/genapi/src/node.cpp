#include "nodes.h"

#include "nodemap.h"
#include "text.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace GenApi_3_0 {
namespace impl {

namespace {

std::string accessText(EAccessMode mode)
{
    return EAccessModeClass::ToString(mode).str();
}

} // namespace

// ---------------------------------------------------------------------------
// Loading helpers

[[noreturn]] void throwBadProperty(const Node &node, const Property &property, const char *expected)
{
    throw PROPERTY_EXCEPTION("line %u: node '%s': <%.*s> '%.*s' is not %s", property.line,
                             node.name().c_str(), int(property.name.size()), property.name.data(),
                             int(property.text.size()), property.text.data(), expected);
}

int64_t propertyInt(const Node &node, const Property &property)
{
    if (auto value = parseInt(property.text))
        return *value;
    // Some vendors write integral properties as decimals ("1.0").
    if (auto value = parseDouble(property.text)) {
        if (std::trunc(*value) == *value && std::fabs(*value) < 9.2e18)
            return static_cast<int64_t>(*value);
    }
    throwBadProperty(node, property, "an integer");
}

double propertyDouble(const Node &node, const Property &property)
{
    if (auto value = parseDouble(property.text))
        return *value;
    throwBadProperty(node, property, "a number");
}

void keepDefault(const Node &node, const Property &property, const char *expected,
                 const char *fallback)
{
    NodeMap &map = node.map();
    if (map.strictLoading)
        throwBadProperty(node, property, expected);
    map.loadWarnings.push_back("line " + std::to_string(property.line) + ": node '" + node.name()
                               + "': <" + std::string(property.name) + "> '"
                               + std::string(property.text) + "' is not " + expected
                               + "; the default " + fallback + " is used");
}

bool propertyYesNo(const Node &node, const Property &property)
{
    if (auto value = parseBool(property.text))
        return *value;
    keepDefault(node, property, "Yes or No", "No");
    return false;
}

EAccessMode propertyAccessMode(const Node &node, const Property &property, EAccessMode fallback)
{
    EAccessMode mode;
    if (EAccessModeClass::FromString(gcstring(std::string(property.text)), &mode))
        return mode;
    keepDefault(node, property, "an access mode (RO, WO, RW, NA or NI)",
                EAccessModeClass::ToString(fallback).c_str());
    return fallback;
}

Ref propertyRef(const Property &property)
{
    Ref ref;
    ref.name = std::string(property.text);
    ref.line = property.line;
    return ref;
}

template <class T> T propertyValue(const Node &node, const Property &property);
template <> int64_t propertyValue<int64_t>(const Node &node, const Property &property)
{
    return propertyInt(node, property);
}
template <> double propertyValue<double>(const Node &node, const Property &property)
{
    return propertyDouble(node, property);
}

template <class T> T readNode(Node *node, bool ignoreCache);
template <> int64_t readNode<int64_t>(Node *node, bool ignoreCache)
{
    return node->getInt(ignoreCache);
}
template <> double readNode<double>(Node *node, bool ignoreCache)
{
    return node->getFloat(ignoreCache);
}
void writeNode(Node *node, int64_t value)
{
    node->putInt(value);
}
void writeNode(Node *node, double value)
{
    node->putFloat(value);
}

// ---------------------------------------------------------------------------
// Node

Node::Node(NodeMap &map, std::string name, const char *typeName)
    : m_map(map)
    , m_name(std::move(name))
    , m_typeName(typeName)
{
}

Node::~Node()
{
    dropAllCallbacks();
}

std::string Node::label() const
{
    return "Node '" + m_name + "'";
}

void Node::throwAccess(const std::string &what) const
{
    throw ACCESS_EXCEPTION("%s", (label() + ": " + what).c_str());
}
void Node::throwRange(const std::string &what) const
{
    throw OUT_OF_RANGE_EXCEPTION("%s", (label() + ": " + what).c_str());
}
void Node::throwRuntime(const std::string &what) const
{
    throw RUNTIME_EXCEPTION("%s", (label() + ": " + what).c_str());
}
void Node::throwNoValue(const char *kind) const
{
    throw DYNAMICCAST_EXCEPTION(
        "%s", (label() + " (" + m_typeName + ") has no " + kind + " value").c_str());
}

bool Node::applyProperty(const Property &p)
{
    const std::string_view n = p.name;
    if (n == "ToolTip")
        m_toolTip = std::string(p.text);
    else if (n == "Description")
        m_description = std::string(p.text);
    else if (n == "DisplayName")
        m_displayName = std::string(p.text);
    else if (n == "Visibility") {
        EVisibility v;
        if (EVisibilityClass::FromString(gcstring(std::string(p.text)), &v))
            m_visibility = v;
        else
            keepDefault(*this, p, "a visibility (Beginner, Expert, Guru or Invisible)", "Beginner");
    } else if (n == "EventID")
        m_eventID = std::string(p.text);
    else if (n == "ImposedAccessMode")
        m_imposedAccess = propertyAccessMode(*this, p, RW);
    else if (n == "pIsImplemented")
        m_isImplemented = propertyRef(p);
    else if (n == "pIsAvailable")
        m_isAvailable = propertyRef(p);
    else if (n == "pIsLocked")
        m_isLocked = propertyRef(p);
    else if (n == "pAlias")
        m_alias = propertyRef(p);
    else if (n == "pCastAlias")
        m_castAlias = propertyRef(p);
    else if (n == "pInvalidator")
        invalidators.push_back(propertyRef(p));
    else if (n == "pSelected")
        selected.push_back(propertyRef(p));
    else if (n == "PollingTime")
        pollingTime = propertyInt(*this, p);
    else if (n == "Streamable")
        m_streamable = propertyYesNo(*this, p);
    else if (n == "DocuURL")
        m_docuURL = std::string(p.text);
    else if (n == "IsDeprecated")
        m_deprecated = propertyYesNo(*this, p);
    else if (n == "Extension" || n == "pError" || n == "Cachable" || n == "IsFeature")
        ; // known, with no effect on this node
    else
        return false;
    return true;
}

void Node::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    reading.push_back(&m_isImplemented);
    reading.push_back(&m_isAvailable);
    reading.push_back(&m_isLocked);
    other.push_back(&m_alias);
    other.push_back(&m_castAlias);
    for (Ref &r : invalidators)
        other.push_back(&r);
    for (Ref &r : selected)
        other.push_back(&r);
}

void Node::resolve(Ref &ref, bool required)
{
    if (!ref.isSet())
        return;
    ref.node = m_map.find(ref.name);
    if (!ref.node && required)
        throw PROPERTY_EXCEPTION("line %u: node '%s' refers to node '%s', which is not defined",
                                 ref.line ? ref.line : m_line, m_name.c_str(), ref.name.c_str());
}

void Node::finishLoad() { }

EAccessMode Node::access()
{
    NodeMap::EvalGuard guard(m_map, *this);
    auto flag = [](Ref &ref) -> int {
        // -1: no such property; 0/1: its value. A node that cannot be read
        // counts as false: what cannot be established is not offered.
        if (!ref.node)
            return -1;
        if (!IsReadable(ref.node->access()))
            return 0;
        return ref.node->getInt(false) != 0 ? 1 : 0;
    };
    if (flag(m_isImplemented) == 0)
        return NI;
    if (flag(m_isAvailable) == 0)
        return NA;
    EAccessMode mode = Combine(doAccess(), m_imposedAccess);
    if ((mode == RW || mode == WO) && flag(m_isLocked) == 1)
        mode = mode == RW ? RO : NA;
    return mode;
}

void Node::requireReadable()
{
    const EAccessMode mode = access();
    if (!IsReadable(mode))
        throw ACCESS_EXCEPTION("%s is not readable (access mode %s)", label().c_str(),
                               accessText(mode).c_str());
}

void Node::requireWritable()
{
    const EAccessMode mode = access();
    if (!IsWritable(mode))
        throw ACCESS_EXCEPTION("%s is not writable (access mode %s)", label().c_str(),
                               accessText(mode).c_str());
}

int64_t Node::getInt(bool ignoreCache)
{
    NodeMap::EvalGuard guard(m_map, *this);
    return doGetInt(ignoreCache);
}
double Node::getFloat(bool ignoreCache)
{
    NodeMap::EvalGuard guard(m_map, *this);
    return doGetFloat(ignoreCache);
}
void Node::putInt(int64_t value)
{
    NodeMap::EvalGuard guard(m_map, *this);
    doPutInt(value);
}
void Node::putFloat(double value)
{
    NodeMap::EvalGuard guard(m_map, *this);
    doPutFloat(value);
}
std::string Node::getString(bool ignoreCache)
{
    NodeMap::EvalGuard guard(m_map, *this);
    return doGetString(ignoreCache);
}
void Node::putString(const std::string &value)
{
    NodeMap::EvalGuard guard(m_map, *this);
    doPutString(value);
}
int64_t Node::intMin()
{
    NodeMap::EvalGuard guard(m_map, *this);
    return doIntMin();
}
int64_t Node::intMax()
{
    NodeMap::EvalGuard guard(m_map, *this);
    return doIntMax();
}
int64_t Node::intInc()
{
    NodeMap::EvalGuard guard(m_map, *this);
    return doIntInc();
}
double Node::floatMin()
{
    NodeMap::EvalGuard guard(m_map, *this);
    return doFloatMin();
}
double Node::floatMax()
{
    NodeMap::EvalGuard guard(m_map, *this);
    return doFloatMax();
}
ERepresentation Node::representation()
{
    NodeMap::EvalGuard guard(m_map, *this);
    return doRepresentation();
}
std::string Node::unit()
{
    NodeMap::EvalGuard guard(m_map, *this);
    return doUnit();
}

int64_t Node::doGetInt(bool)
{
    throwNoValue("integer");
}
double Node::doGetFloat(bool ignoreCache)
{
    return static_cast<double>(doGetInt(ignoreCache));
}
void Node::doPutInt(int64_t)
{
    throwNoValue("writable integer");
}
void Node::doPutFloat(double value)
{
    doPutInt(saturatingRound(value));
}
std::string Node::doGetString(bool)
{
    throwNoValue("string");
}
void Node::doPutString(const std::string &)
{
    throwNoValue("writable string");
}

void Node::collectTerminals(std::vector<Node *> &out)
{
    // Breadth-first over the reading graph; descriptions share subgraphs
    // heavily, so every node is visited once.
    std::vector<Node *> queue { this };
    std::vector<Node *> seen { this };
    for (size_t i = 0; i < queue.size(); ++i) {
        Node *n = queue[i];
        if (n->isRegister())
            out.push_back(n);
        for (Node *child : n->readingRefs) {
            if (std::find(seen.begin(), seen.end(), child) == seen.end()) {
                seen.push_back(child);
                queue.push_back(child);
            }
        }
    }
}

void Node::fireCallbacks(ECallbackType type)
{
    if (m_callbacks.empty())
        return;
    const auto snapshot = m_callbacks; // a callback may deregister itself
    for (const auto &entry : snapshot) {
        if (entry->type != type)
            continue;
        if (type == cbPostInsideLock)
            entry->invoke(type);
        else
            m_map.queueOutside(entry);
    }
}

void Node::dropAllCallbacks()
{
    for (const auto &entry : m_callbacks) {
        unregisterHandle(entry->handle);
        std::lock_guard<std::recursive_mutex> lock(entry->mutex);
        entry->alive = false;
    }
    m_callbacks.clear();
}

EAccessMode Node::GetAccessMode() const
{
    NodeMap::Guard guard(m_map);
    return self()->access();
}

gcstring Node::GetName(bool FullQualified) const
{
    if (!FullQualified)
        return m_name;
    return (m_nameSpace == Standard ? "Std::" : "Cust::") + m_name;
}
ENameSpace Node::GetNameSpace() const
{
    return m_nameSpace;
}
EVisibility Node::GetVisibility() const
{
    return m_visibility;
}

void Node::InvalidateNode()
{
    NodeMap::Guard guard(m_map);
    std::vector<Node *> terminals;
    collectTerminals(terminals);
    terminals.push_back(this);
    m_map.notifyChanged(terminals, {});
}

bool Node::IsCachable() const
{
    return m_cachingMode != NoCache;
}
EYesNo Node::IsAccessModeCacheable() const
{
    return No;
}
ECachingMode Node::GetCachingMode() const
{
    return m_cachingMode;
}
int64_t Node::GetPollingTime() const
{
    return pollingTime;
}
gcstring Node::GetToolTip() const
{
    return m_toolTip;
}
gcstring Node::GetDescription() const
{
    return m_description.empty() ? m_toolTip : m_description;
}
gcstring Node::GetDisplayName() const
{
    return m_displayName.empty() ? m_name : m_displayName;
}
gcstring Node::GetDeviceName() const
{
    return m_map.GetDeviceName();
}

void Node::GetChildren(NodeList_t &Children, ELinkType LinkType) const
{
    NodeMap::Guard guard(m_map);
    Children.clear();
    if (LinkType == ctTerminalNodes) {
        std::vector<Node *> terminals;
        self()->collectTerminals(terminals);
        Children.assign(terminals.begin(), terminals.end());
        return;
    }
    if (LinkType == ctInvalidatingChildren) {
        for (const Ref &r : invalidators)
            if (r.node)
                Children.push_back(r.node);
        return;
    }
    Children.assign(readingRefs.begin(), readingRefs.end());
}

void Node::GetParents(NodeList_t &Parents, ELinkType) const
{
    NodeMap::Guard guard(m_map);
    Parents.clear();
    for (Node *n : dependents)
        if (std::find(n->readingRefs.begin(), n->readingRefs.end(), this) != n->readingRefs.end())
            Parents.push_back(n);
}

CallbackHandleType Node::RegisterCallback(CNodeCallback *pCallback)
{
    if (!pCallback)
        throw INVALID_ARGUMENT_EXCEPTION("%s: RegisterCallback: the callback is NULL",
                                         label().c_str());
    NodeMap::Guard guard(m_map);
    auto entry = std::make_shared<CallbackEntry>();
    entry->callback = pCallback;
    entry->type = pCallback->GetCallbackType();
    entry->handle = registerHandle(this);
    m_callbacks.push_back(entry);
    return entry->handle;
}

bool Node::DeregisterCallback(CallbackHandleType hCallback)
{
    std::shared_ptr<CallbackEntry> entry;
    {
        NodeMap::Guard guard(m_map);
        auto it = std::find_if(m_callbacks.begin(), m_callbacks.end(),
                               [&](const auto &e) { return e->handle == hCallback; });
        if (it == m_callbacks.end())
            return false;
        entry = *it;
        m_callbacks.erase(it);
        unregisterHandle(hCallback);
    }
    // Taken after the node map's lock is released: waits for a call in
    // progress on another thread without risking a lock-order deadlock.
    std::lock_guard<std::recursive_mutex> lock(entry->mutex);
    entry->alive = false;
    return true;
}

INodeMap *Node::GetNodeMap() const
{
    return &m_map;
}
gcstring Node::GetEventID() const
{
    return m_eventID;
}
bool Node::IsStreamable() const
{
    return m_streamable;
}

void Node::GetPropertyNames(gcstring_vector &PropertyNames) const
{
    PropertyNames.clear();
    for (const char *name : { "Name", "NameSpace", "ToolTip", "Description", "DisplayName",
                              "Visibility", "ImposedAccessMode", "PollingTime", "Streamable" })
        PropertyNames.push_back(name);
}

bool Node::GetProperty(const gcstring &PropertyName, gcstring &ValueStr, gcstring &AttributeStr)
{
    AttributeStr = "";
    const std::string &n = PropertyName.str();
    if (n == "Name")
        ValueStr = m_name;
    else if (n == "NameSpace")
        ValueStr = m_nameSpace == Standard ? "Standard" : "Custom";
    else if (n == "ToolTip")
        ValueStr = m_toolTip;
    else if (n == "Description")
        ValueStr = m_description;
    else if (n == "DisplayName")
        ValueStr = m_displayName;
    else if (n == "Visibility")
        ValueStr = EVisibilityClass::ToString(m_visibility);
    else if (n == "ImposedAccessMode")
        ValueStr = EAccessModeClass::ToString(m_imposedAccess);
    else if (n == "PollingTime")
        ValueStr = std::to_string(pollingTime);
    else if (n == "Streamable")
        ValueStr = m_streamable ? "Yes" : "No";
    else
        return false;
    return true;
}

void Node::ImposeAccessMode(EAccessMode ImposedAccessMode)
{
    NodeMap::Guard guard(m_map);
    m_imposedAccess = ImposedAccessMode;
    m_map.notifyChanged({ this }, {});
}

void Node::ImposeVisibility(EVisibility ImposedVisibility)
{
    m_visibility = ImposedVisibility;
}
INode *Node::GetAlias() const
{
    return m_alias.node;
}
INode *Node::GetCastAlias() const
{
    return m_castAlias.node;
}
gcstring Node::GetDocuURL() const
{
    return m_docuURL;
}
bool Node::IsDeprecated() const
{
    return m_deprecated;
}
bool Node::IsFeature() const
{
    return m_isFeature;
}

bool Node::IsSelector() const
{
    return !selected.empty();
}

void Node::GetSelectedFeatures(FeatureList_t &Features) const
{
    Features.clear();
    for (const Ref &r : selected)
        if (auto *value = dynamic_cast<IValue *>(r.node))
            Features.push_back(value);
}

void Node::GetSelectingFeatures(FeatureList_t &Features) const
{
    Features.clear();
    for (Node *n : selecting)
        if (auto *value = dynamic_cast<IValue *>(n))
            Features.push_back(value);
}

// ---------------------------------------------------------------------------
// ValueNode

gcstring ValueNode::ToString(bool Verify, bool IgnoreCache)
{
    NodeMap::Guard guard(m_map);
    return toText(Verify, IgnoreCache);
}

void ValueNode::FromString(const gcstring &ValueStr, bool Verify)
{
    NodeMap::Guard guard(m_map);
    NodeMap::WriteScope scope(m_map, this);
    fromText(ValueStr.str(), Verify);
}

bool ValueNode::IsValueCacheValid() const
{
    NodeMap::Guard guard(m_map);
    std::vector<Node *> terminals;
    self()->collectTerminals(terminals);
    return std::all_of(terminals.begin(), terminals.end(),
                       [](Node *n) { return n->ownCacheValid(); });
}

// ---------------------------------------------------------------------------
// ValueSource

template <class T> bool ValueSource<T>::applyProperty(Node &owner, const Property &p)
{
    const std::string_view n = p.name;
    if (n == "pValue")
        m_pValue = propertyRef(p);
    else if (n == "pValueCopy")
        m_copies.push_back(propertyRef(p));
    else if (n == "Value") {
        m_value = propertyValue<T>(owner, p);
        m_hasValue = true;
    } else if (n == "pIndex")
        m_pIndex = propertyRef(p);
    else if (n == "ValueIndexed" || n == "pValueIndexed") {
        Indexed entry;
        const pugi::xml_attribute index = p.element.attribute("Index");
        auto parsed = parseInt(index.value());
        if (!parsed)
            throwBadProperty(owner, p, "an entry with a numeric Index attribute");
        entry.index = *parsed;
        if (n == "ValueIndexed") {
            entry.hasConstant = true;
            entry.constant = propertyValue<T>(owner, p);
        } else {
            entry.ref = propertyRef(p);
        }
        m_indexed.push_back(std::move(entry));
    } else if (n == "ValueDefault") {
        m_default = propertyValue<T>(owner, p);
        m_hasDefault = true;
    } else if (n == "pValueDefault")
        m_pDefault = propertyRef(p);
    else
        return false;
    return true;
}

template <class T> void ValueSource<T>::collectRefs(std::vector<Ref *> &reading)
{
    reading.push_back(&m_pValue);
    for (Ref &r : m_copies)
        reading.push_back(&r);
    reading.push_back(&m_pIndex);
    for (Indexed &e : m_indexed)
        reading.push_back(&e.ref);
    reading.push_back(&m_pDefault);
}

template <class T> typename ValueSource<T>::Indexed *ValueSource<T>::pick(Node &)
{
    const int64_t index = m_pIndex.node->getInt(false);
    for (Indexed &e : m_indexed)
        if (e.index == index)
            return &e;
    return nullptr;
}

template <class T> T ValueSource<T>::read(Node &owner, bool ignoreCache)
{
    if (m_pIndex.node) {
        if (Indexed *e = pick(owner))
            return e->ref.node ? readNode<T>(e->ref.node, ignoreCache) : e->constant;
        if (m_pDefault.node)
            return readNode<T>(m_pDefault.node, ignoreCache);
        if (m_hasDefault)
            return m_default;
        owner.throwRuntime("the selector '" + m_pIndex.name
                           + "' picks no ValueIndexed entry and there is no default");
    }
    if (m_pValue.node)
        return readNode<T>(m_pValue.node, ignoreCache);
    if (m_hasValue)
        return m_value;
    owner.throwRuntime("has neither a Value nor a pValue");
}

template <class T> void ValueSource<T>::write(Node &owner, T value)
{
    if (m_pIndex.node) {
        if (Indexed *e = pick(owner)) {
            if (e->ref.node)
                writeNode(e->ref.node, value);
            else
                e->constant = value;
        } else if (m_pDefault.node) {
            writeNode(m_pDefault.node, value);
        } else {
            m_default = value;
            m_hasDefault = true;
        }
        owner.map().recordWrite(&owner);
        return;
    }
    if (m_pValue.node) {
        writeNode(m_pValue.node, value);
        for (Ref &copy : m_copies)
            if (copy.node)
                writeNode(copy.node, value);
        return;
    }
    if (!m_hasValue && !m_pValue.isSet())
        owner.throwRuntime("has neither a Value nor a pValue");
    m_value = value;
    m_hasValue = true;
    owner.map().recordWrite(&owner);
}

template <class T> EAccessMode ValueSource<T>::access(Node &owner)
{
    if (m_pIndex.node) {
        Indexed *e = pick(owner);
        Node *target = e ? e->ref.node : m_pDefault.node;
        return target ? target->access() : RW;
    }
    if (m_pValue.node)
        return m_pValue.node->access();
    return m_hasValue ? RW : NA;
}

template class ValueSource<int64_t>;
template class ValueSource<double>;

// ---------------------------------------------------------------------------
// Category

bool Category::applyProperty(const Property &p)
{
    if (p.name == "pFeature") {
        features.push_back(propertyRef(p));
        return true;
    }
    return ValueNode::applyProperty(p);
}

void Category::collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other)
{
    Node::collectRefs(reading, other);
    for (Ref &r : features)
        other.push_back(&r);
}

void Category::finishLoad()
{
    setFeature();
    for (Ref &r : features)
        if (r.node)
            r.node->setFeature();
}

void Category::GetFeatures(FeatureList_t &Features) const
{
    Features.clear();
    for (const Ref &r : features)
        if (auto *value = dynamic_cast<IValue *>(r.node))
            Features.push_back(value);
}

void Category::fromText(const std::string &, bool)
{
    throwAccess("a category has no value to set");
}

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

// ---------------------------------------------------------------------------
// Port

bool Port::applyProperty(const Property &p)
{
    const std::string_view n = p.name;
    if (n == "ChunkID" || n == "SwapEndianess" || n == "CacheChunkData")
        return true;
    return Node::applyProperty(p);
}

EAccessMode Port::doAccess()
{
    return m_port ? m_port->GetAccessMode() : NA;
}

void Port::Read(void *pBuffer, int64_t Address, int64_t Length)
{
    NodeMap::Guard guard(m_map);
    if (!m_port)
        throwAccess("no port is connected");
    m_port->Read(pBuffer, Address, Length);
}

void Port::Write(const void *pBuffer, int64_t Address, int64_t Length)
{
    NodeMap::Guard guard(m_map);
    if (!m_port)
        throwAccess("no port is connected");
    m_port->Write(pBuffer, Address, Length);
}

} // namespace impl
} // namespace GenApi_3_0
