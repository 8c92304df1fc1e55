#include "nodes.h"

#include "nodemap.h"
#include "text.h"

#include <algorithm>
#include <array>
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
    throw PROPERTY_EXCEPTION("line %u: node '%s': <%.*s> '%.*s' is not %s", property.line(),
                             std::string(node.name()).c_str(), int(property.name.size()),
                             property.name.data(), int(property.text.size()), property.text.data(),
                             expected);
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
    map.loadWarnings.push_back("line " + std::to_string(property.line()) + ": node '"
                               + std::string(node.name()) + "': <" + std::string(property.name)
                               + "> '" + std::string(property.text) + "' is not " + expected
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
    if (parseEnum(property.text, mode))
        return mode;
    keepDefault(node, property, "an access mode (RO, WO, RW, NA or NI)",
                EAccessModeClass::ToString(fallback).c_str());
    return fallback;
}

Ref propertyRef(const Property &property)
{
    Ref ref;
    ref.name = property.text;
    ref.pos = property.pos();
    return ref;
}

// ---------------------------------------------------------------------------
// Node

Node::Node(NodeMap &map, std::string_view name, const char *typeName)
    : m_map(map)
    , m_name(name)
    , m_typeName(typeName)
{
}

Node::~Node()
{
    dropAllCallbacks();
}

std::string Node::label() const
{
    return "Node '" + std::string(m_name) + "'";
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

bool Node::applyCommonProperty(const Property &p)
{
    const std::string_view n = p.name;
    // The most frequent first: real descriptions are mostly invalidators.
    if (n == "pInvalidator")
        invalidators.push_back(propertyRef(p));
    else if (n == "ToolTip")
        m_toolTip = p.text;
    else if (n == "Description")
        m_description = p.text;
    else if (n == "DisplayName")
        m_displayName = p.text;
    else if (n == "Visibility") {
        EVisibility v;
        if (parseEnum(p.text, v))
            m_visibility = v;
        else
            keepDefault(*this, p, "a visibility (Beginner, Expert, Guru or Invisible)", "Beginner");
    } else if (n == "EventID")
        m_eventID = p.text;
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
    else if (n == "pSelected")
        selected.push_back(propertyRef(p));
    else if (n == "PollingTime")
        pollingTime = propertyInt(*this, p);
    else if (n == "Streamable")
        m_streamable = propertyYesNo(*this, p);
    else if (n == "DocuURL")
        m_docuURL = p.text;
    else if (n == "IsDeprecated")
        m_deprecated = propertyYesNo(*this, p);
    else if (n == "Extension" || n == "pError" || n == "IsFeature")
        ; // known, with no effect on this node
    else
        return false;
    return true;
}

bool Node::applyProperty(const Property &p)
{
    // Registers read it; to the others it means nothing.
    return p.name == "Cachable";
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
                                 ref.pos.offset ? m_map.lineAt(ref.pos) : line(),
                                 std::string(m_name).c_str(), std::string(ref.name).c_str());
}

void Node::finishLoad() { }

uint32_t Node::line() const
{
    return m_map.lineAt(m_pos);
}

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
    const size_t count = static_cast<size_t>(std::count_if(
        m_callbacks.begin(), m_callbacks.end(), [type](const auto &e) { return e->type == type; }));
    if (count == 0)
        return;
    // A callback may deregister itself or others, so the calls go to a copy
    // of the list; a node rarely has more than a few, and a poll calls back
    // every changed node: the copy lives on the stack when it fits.
    constexpr size_t OnStack = 4;
    std::array<std::shared_ptr<CallbackEntry>, OnStack> few;
    std::vector<std::shared_ptr<CallbackEntry>> many;
    std::shared_ptr<CallbackEntry> *snapshot = few.data();
    if (count > OnStack) {
        many.resize(count);
        snapshot = many.data();
    }
    std::copy_if(m_callbacks.begin(), m_callbacks.end(), snapshot,
                 [type](const auto &e) { return e->type == type; });
    for (size_t i = 0; i < count; ++i) {
        if (type == cbPostInsideLock)
            snapshot[i]->invoke(type);
        else
            m_map.queueOutside(snapshot[i]);
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
        return toGc(m_name);
    return (m_nameSpace == Standard ? "Std::" : "Cust::") + std::string(m_name);
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
    return toGc(m_toolTip);
}
gcstring Node::GetDescription() const
{
    return toGc(m_description.empty() ? m_toolTip : m_description);
}
gcstring Node::GetDisplayName() const
{
    return toGc(m_displayName.empty() ? m_name : m_displayName);
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
    return toGc(m_eventID);
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
    // The links that decide the access mode, where the node has them.
    if (m_isImplemented.isSet())
        PropertyNames.push_back("pIsImplemented");
    if (m_isAvailable.isSet())
        PropertyNames.push_back("pIsAvailable");
    if (m_isLocked.isSet())
        PropertyNames.push_back("pIsLocked");
}

bool Node::GetProperty(const gcstring &PropertyName, gcstring &ValueStr, gcstring &AttributeStr)
{
    AttributeStr = "";
    const std::string &n = PropertyName.str();
    if (n == "Name")
        ValueStr = toGc(m_name);
    else if (n == "NameSpace")
        ValueStr = m_nameSpace == Standard ? "Standard" : "Custom";
    else if (n == "ToolTip")
        ValueStr = toGc(m_toolTip);
    else if (n == "Description")
        ValueStr = toGc(m_description);
    else if (n == "DisplayName")
        ValueStr = toGc(m_displayName);
    else if (n == "Visibility")
        ValueStr = EVisibilityClass::ToString(m_visibility);
    else if (n == "ImposedAccessMode")
        ValueStr = EAccessModeClass::ToString(m_imposedAccess);
    else if (n == "PollingTime")
        ValueStr = std::to_string(pollingTime);
    else if (n == "Streamable")
        ValueStr = m_streamable ? "Yes" : "No";
    else if (n == "pIsImplemented" && m_isImplemented.isSet())
        ValueStr = toGc(m_isImplemented.name);
    else if (n == "pIsAvailable" && m_isAvailable.isSet())
        ValueStr = toGc(m_isAvailable.name);
    else if (n == "pIsLocked" && m_isLocked.isSet())
        ValueStr = toGc(m_isLocked.name);
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
    return toGc(m_docuURL);
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
        if (IValue *value = r.node ? r.node->asValue() : nullptr)
            Features.push_back(value);
}

void Node::GetSelectingFeatures(FeatureList_t &Features) const
{
    Features.clear();
    for (Node *n : selecting)
        if (IValue *value = n->asValue())
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
        owner.throwRuntime("the selector '" + std::string(m_pIndex.name)
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
        if (IValue *value = r.node ? r.node->asValue() : nullptr)
            Features.push_back(value);
}

void Category::fromText(const std::string &, bool)
{
    throwAccess("a category has no value to set");
}

} // namespace impl
} // namespace GenApi_3_0
