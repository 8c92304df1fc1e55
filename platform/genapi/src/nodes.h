// The node classes of the interpreter. Internal: hosts see only the GenApi
// interfaces.
//
// Every internal method assumes that the node map's lock is held; the
// GenApi interface methods take it. Nodes call each other only through the
// public non-virtual wrappers of Node (getInt, access, ...), which count the
// nesting depth so that a cycle of references in a description ends in an
// exception instead of a stack overflow.
#ifndef ORBGENAPI_NODES_H
#define ORBGENAPI_NODES_H

#include <GenApi/GenApi.h>

#include "formula.h"

#include <pugixml.hpp>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace GenApi_3_0 {
namespace impl {

using GenICam_3_0::GenericException;
using GenICam_3_0::TimeoutException;

class NodeMap;
class Node;

// Where a property stands in the description. Lines are counted only when a
// message needs one, and only while loading: every message that names a
// line is raised then.
struct SourcePos {
    uint32_t offset = 0; // 0: not from the description
};

// A named reference to another node, resolved after the whole description
// has been read. Its name, like all text a node keeps (names, tool tips,
// formulas), views the description the node map holds or the map's own
// store: a description of thousands of nodes costs no allocation per
// string.
struct Ref {
    std::string_view name;
    Node *node = nullptr;
    SourcePos pos;
    explicit operator bool() const { return node != nullptr; }
    bool isSet() const { return !name.empty(); }
};

class LineIndex;

// A run of nodes in one of the node map's edge arrays: the graph of a
// description is built once, in two arrays, not in a list per node.
class NodeSpan {
public:
    NodeSpan() = default;
    NodeSpan(Node *const *first, size_t count)
        : m_first(first)
        , m_count(static_cast<uint32_t>(count))
    {
    }
    Node *const *begin() const { return m_first; }
    Node *const *end() const { return m_first + m_count; }
    size_t size() const { return m_count; }
    bool empty() const { return m_count == 0; }

private:
    Node *const *m_first = nullptr;
    uint32_t m_count = 0;
};

inline gcstring toGc(std::string_view text)
{
    return gcstring(text.data(), text.size());
}

// One property element of a node, as the loader hands it over. Its text
// stays valid as long as the node map.
struct Property {
    std::string_view name;
    std::string_view text; // trimmed
    pugi::xml_node element;
    const LineIndex *lines;
    SourcePos pos() const;
    uint32_t line() const;
};

struct CallbackEntry;
class Enumeration;
class RegisterCore;

class Node : public virtual INode, public virtual ISelector {
public:
    // name must stay valid as long as the node map (see Ref).
    Node(NodeMap &map, std::string_view name, const char *typeName);
    ~Node() override;
    Node(const Node &) = delete;
    Node &operator=(const Node &) = delete;

    // --- loading ---
    // Properties every node reads the same way (ToolTip, Visibility,
    // pInvalidator, pIsAvailable ...); false for the others. The loader
    // offers each property here first and only then to applyProperty, so
    // the kinds never see these: they are most of a real description.
    bool applyCommonProperty(const Property &property);
    // Applies one property element of the node's kind; false when the
    // element is unknown here.
    virtual bool applyProperty(const Property &property);
    // Called once every node exists: resolve references, parse formulas.
    virtual void finishLoad();
    // Every reference of this node: value-relevant ones in reading, the
    // others (aliases, selectors, invalidators) in other.
    virtual void collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other);
    void resolve(Ref &ref, bool required);

    // --- internal value access, with cycle protection ---
    EAccessMode access();
    int64_t getInt(bool ignoreCache = false);
    double getFloat(bool ignoreCache = false);
    void putInt(int64_t value);
    void putFloat(double value);
    std::string getString(bool ignoreCache = false);
    void putString(const std::string &value);
    int64_t intMin();
    int64_t intMax();
    int64_t intInc();
    double floatMin();
    double floatMax();
    ERepresentation representation();
    std::string unit();

    // Register nodes hold a cache; everything else is computed on demand.
    virtual bool isRegister() const { return false; }
    // The register access of a register node, else null. Virtual rather
    // than found by dynamic_cast: loading asks it of every node.
    virtual RegisterCore *registerCore() { return nullptr; }
    virtual Enumeration *asEnumeration() { return nullptr; }
    // Cross-casts through virtual bases cost a walk of the type graph;
    // loading and GetFeatures ask these of thousands of nodes.
    virtual IValue *asValue() { return nullptr; }
    virtual class Port *asPort() { return nullptr; }
    virtual void invalidateCache() { }
    // For polling: re-reads the register; true when the bytes changed.
    virtual bool pollRegister() { return false; }
    // Appends the registers this node's value depends on (itself included).
    void collectTerminals(std::vector<Node *> &out);
    // Registers report whether their cache holds a valid value.
    virtual bool ownCacheValid() const { return true; }

    // --- notification ---
    void fireCallbacks(ECallbackType type);
    bool hasCallbacks() const { return !m_callbacks.empty(); }
    void dropAllCallbacks();

    NodeMap &map() const { return m_map; }
    std::string_view name() const { return m_name; }
    const char *typeName() const { return m_typeName; }
    // The line of the node's element; 0 once loading is over.
    uint32_t line() const;
    void setPos(SourcePos pos) { m_pos = pos; }
    uint32_t id() const { return m_id; }
    void setId(uint32_t id) { m_id = id; }
    void setFeature() { m_isFeature = true; }
    void setNameSpace(ENameSpace nameSpace) { m_nameSpace = nameSpace; }

    NodeSpan dependents; // nodes to call back when this one changes
    NodeSpan readingRefs; // resolved reading references, for the graph

    // "Node 'Name'" for messages.
    std::string label() const;
    [[noreturn]] void throwAccess(const std::string &what) const;
    [[noreturn]] void throwRange(const std::string &what) const;
    [[noreturn]] void throwRuntime(const std::string &what) const;
    [[noreturn]] void throwNoValue(const char *kind) const;
    void requireReadable();
    void requireWritable();

    // --- INode ---
    EAccessMode GetAccessMode() const override;
    gcstring GetName(bool FullQualified = false) const override;
    ENameSpace GetNameSpace() const override;
    EVisibility GetVisibility() const override;
    void InvalidateNode() override;
    bool IsCachable() const override;
    EYesNo IsAccessModeCacheable() const override;
    ECachingMode GetCachingMode() const override;
    int64_t GetPollingTime() const override;
    gcstring GetToolTip() const override;
    gcstring GetDescription() const override;
    gcstring GetDisplayName() const override;
    gcstring GetDeviceName() const override;
    void GetChildren(NodeList_t &Children, ELinkType LinkType = ctReadingChildren) const override;
    void GetParents(NodeList_t &Parents, ELinkType LinkType = ctReadingChildren) const override;
    CallbackHandleType RegisterCallback(CNodeCallback *pCallback) override;
    bool DeregisterCallback(CallbackHandleType hCallback) override;
    INodeMap *GetNodeMap() const override;
    gcstring GetEventID() const override;
    bool IsStreamable() const override;
    void GetPropertyNames(gcstring_vector &PropertyNames) const override;
    bool GetProperty(const gcstring &PropertyName, gcstring &ValueStr,
                     gcstring &AttributeStr) override;
    void ImposeAccessMode(EAccessMode ImposedAccessMode) override;
    void ImposeVisibility(EVisibility ImposedVisibility) override;
    INode *GetAlias() const override;
    INode *GetCastAlias() const override;
    gcstring GetDocuURL() const override;
    bool IsDeprecated() const override;
    EInterfaceType GetPrincipalInterfaceType() const override = 0;
    bool IsFeature() const override;

    // --- ISelector ---
    bool IsSelector() const override;
    void GetSelectedFeatures(FeatureList_t &Features) const override;
    void GetSelectingFeatures(FeatureList_t &Features) const override;

protected:
    // The node's own access before pIs* and ImposedAccessMode.
    virtual EAccessMode doAccess() { return RO; }
    virtual int64_t doGetInt(bool ignoreCache);
    virtual double doGetFloat(bool ignoreCache);
    virtual void doPutInt(int64_t value);
    virtual void doPutFloat(double value);
    virtual std::string doGetString(bool ignoreCache);
    virtual void doPutString(const std::string &value);
    virtual int64_t doIntMin() { return INT64_MIN; }
    virtual int64_t doIntMax() { return INT64_MAX; }
    virtual int64_t doIntInc() { return 1; }
    virtual double doFloatMin() { return static_cast<double>(doIntMin()); }
    virtual double doFloatMax() { return static_cast<double>(doIntMax()); }
    virtual ERepresentation doRepresentation() { return PureNumber; }
    virtual std::string doUnit() { return std::string(); }
    // Whether a value read through this node may come from the cache.

    Node *self() const { return const_cast<Node *>(this); }

    // What a view and a poll ask of every row first (visibility, access,
    // callbacks) comes first: a poll of tens of thousands of nodes finds
    // them in as few cache lines as possible.
    NodeMap &m_map;
    EVisibility m_visibility = Beginner;
    EAccessMode m_imposedAccess = RW;
    ENameSpace m_nameSpace = Custom;
    ECachingMode m_cachingMode = NoCache;
    bool m_streamable = false;
    bool m_deprecated = false;
    bool m_isFeature = false;
    uint32_t m_id = 0;
    Ref m_isImplemented;
    Ref m_isAvailable;
    Ref m_isLocked;
    std::vector<std::shared_ptr<CallbackEntry>> m_callbacks;
    std::string_view m_name;
    const char *m_typeName;
    std::string_view m_toolTip;
    std::string_view m_description;
    std::string_view m_displayName;
    std::string_view m_eventID;
    std::string_view m_docuURL;
    Ref m_alias;
    Ref m_castAlias;
    SourcePos m_pos;

public:
    std::vector<Ref> selected;
    std::vector<Node *> selecting;
    std::vector<Ref> invalidators;
    int64_t pollingTime = -1;
    int64_t pollElapsed = 0;

    friend class NodeMap;
};

// Base of every node that carries a value (everything but Port).
class ValueNode : public Node, public virtual IValue {
public:
    using Node::Node;
    IValue *asValue() override { return this; }
    INode *GetNode() override { return this; }
    gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
    void FromString(const gcstring &ValueStr, bool Verify = true) override;
    bool IsValueCacheValid() const override;

protected:
    virtual std::string toText(bool verify, bool ignoreCache) = 0;
    virtual void fromText(const std::string &text, bool verify) = 0;
};

// A value that lives in the node (Value), behind another node (pValue) or
// is chosen by a selector (pIndex with ValueIndexed entries).
template <class T> class ValueSource {
public:
    bool applyProperty(Node &owner, const Property &property);
    void collectRefs(std::vector<Ref *> &reading);
    bool isSet() const { return m_pValue.isSet() || m_hasValue || m_pIndex.isSet(); }
    bool hasPointer() const { return m_pValue.isSet(); }
    Node *pointer() const { return m_pValue.node; }
    T read(Node &owner, bool ignoreCache);
    void write(Node &owner, T value);
    EAccessMode access(Node &owner);
    void setStored(T value)
    {
        m_value = value;
        m_hasValue = true;
    }

private:
    struct Indexed {
        int64_t index = 0;
        bool hasConstant = false;
        T constant {};
        Ref ref;
    };
    // The entry the selector picks, or nullptr for the default.
    Indexed *pick(Node &owner);

    Ref m_pValue;
    std::vector<Ref> m_copies;
    bool m_hasValue = false;
    T m_value {};
    Ref m_pIndex;
    std::vector<Indexed> m_indexed;
    bool m_hasDefault = false;
    T m_default {};
    Ref m_pDefault;
};

class Category final : public ValueNode, public ICategory {
public:
    Category(NodeMap &map, std::string_view name)
        : ValueNode(map, name, "Category")
    {
    }
    bool applyProperty(const Property &property) override;
    void finishLoad() override;
    void collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other) override;
    void GetFeatures(FeatureList_t &Features) const override;
    EInterfaceType GetPrincipalInterfaceType() const override { return intfICategory; }
    std::vector<Ref> features;

protected:
    std::string toText(bool, bool) override { return std::string(); }
    void fromText(const std::string &, bool) override;
};

template <class T> struct NumberTraits;
template <> struct NumberTraits<int64_t> {
    using Interface = IInteger;
    using List = int64_autovector_t;
    static constexpr EInterfaceType type = intfIInteger;
    static constexpr int64_t lowest = INT64_MIN;
    static constexpr int64_t highest = INT64_MAX;
};
template <> struct NumberTraits<double> {
    using Interface = IFloat;
    using List = double_autovector_t;
    static constexpr EInterfaceType type = intfIFloat;
    static constexpr double lowest = -1.7976931348623157e308;
    static constexpr double highest = 1.7976931348623157e308;
};

// What every integer node and every float node shares (Integer, IntReg,
// IntSwissKnife, IntConverter; Float, FloatReg, SwissKnife, Converter): the
// checked SetValue and GetValue, the limits and ImposeMin/ImposeMax, the
// list of valid values, the unit and the representation. T is int64_t or
// double; IntegerBase and FloatBase add what differs.
template <class T> class NumberBase : public ValueNode, public NumberTraits<T>::Interface {
public:
    using Interface = typename NumberTraits<T>::Interface;
    using ValueNode::ValueNode;
    bool applyProperty(const Property &property) override;
    void SetValue(T Value, bool Verify = true) override;
    Interface &operator=(T Value) override;
    T GetValue(bool Verify = false, bool IgnoreCache = false) override;
    T operator()() override { return GetValue(); }
    T operator*() override { return GetValue(); }
    T GetMin() override;
    T GetMax() override;
    typename NumberTraits<T>::List GetListOfValidValues(bool bounded = true) override;
    ERepresentation GetRepresentation() override;
    gcstring GetUnit() const override;
    void ImposeMin(T Value) override;
    void ImposeMax(T Value) override;
    EInterfaceType GetPrincipalInterfaceType() const override { return NumberTraits<T>::type; }

protected:
    // Throws OutOfRangeException for a value the node does not take.
    virtual void verify(T value) = 0;
    // The value and the limits (after ImposeMin/ImposeMax) in T.
    T readValue(bool ignoreCache);
    void writeValue(T value);
    T limitMin();
    T limitMax();
    // The limits before ImposeMin/ImposeMax.
    virtual T rawMin() { return NumberTraits<T>::lowest; }
    virtual T rawMax() { return NumberTraits<T>::highest; }
    T imposedMin()
    {
        const T raw = rawMin();
        return m_hasImposedMin ? std::max(raw, m_imposedMin) : raw;
    }
    T imposedMax()
    {
        const T raw = rawMax();
        return m_hasImposedMax ? std::min(raw, m_imposedMax) : raw;
    }
    virtual std::vector<T> doValidValues() { return {}; }
    ERepresentation doRepresentation() override;
    std::string doUnit() override { return std::string(m_unit); }
    // An Integer or Float whose value comes from another node takes that
    // node's representation and unit unless it has its own.
    ERepresentation representationOr(Node *pointer);
    std::string unitOr(Node *pointer);

    std::string_view m_unit;
    bool m_hasRepresentation = false;
    ERepresentation m_representation = PureNumber;
    bool m_hasImposedMin = false;
    bool m_hasImposedMax = false;
    T m_imposedMin = 0;
    T m_imposedMax = 0;
};

// Shared implementation of IInteger; subclasses provide the value.
class IntegerBase : public NumberBase<int64_t> {
public:
    using NumberBase::NumberBase;
    EIncMode GetIncMode() override;
    int64_t GetInc() override;

protected:
    void verify(int64_t value) override;
    std::string toText(bool verify, bool ignoreCache) override;
    void fromText(const std::string &text, bool verify) override;
    double doGetFloat(bool ignoreCache) override
    {
        return static_cast<double>(doGetInt(ignoreCache));
    }
    void doPutFloat(double value) override;
    std::string doGetString(bool ignoreCache) override;
    int64_t doIntMin() override { return imposedMin(); }
    int64_t doIntMax() override { return imposedMax(); }
    virtual EIncMode doIncMode() { return fixedIncrement; }
};

// The Min, Max and Inc (or pMin, pMax and pInc) and the ValidValueSet of an
// Integer or a Float.
template <class T> struct NumberLimits {
    bool applyProperty(Node &owner, const Property &property);
    void collectRefs(std::vector<Ref *> &reading);
    // Without Min or pMin: the limit of the node the value comes from (the
    // pointer, when there is one), else the type's whole range.
    T min(Node *pointer);
    T max(Node *pointer);

    bool hasMin = false, hasMax = false, hasInc = false;
    T minValue = 0, maxValue = 0, incValue = 0;
    Ref pMin, pMax, pInc;
    std::vector<T> validValues;
};

class Integer final : public IntegerBase {
public:
    Integer(NodeMap &map, std::string_view name)
        : IntegerBase(map, name, "Integer")
    {
    }
    bool applyProperty(const Property &property) override;
    void collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other) override;
    void finishLoad() override;

protected:
    EAccessMode doAccess() override;
    int64_t doGetInt(bool ignoreCache) override;
    void doPutInt(int64_t value) override;
    int64_t rawMin() override { return m_limits.min(m_source.pointer()); }
    int64_t rawMax() override { return m_limits.max(m_source.pointer()); }
    int64_t doIntInc() override;
    EIncMode doIncMode() override;
    std::vector<int64_t> doValidValues() override { return m_limits.validValues; }
    ERepresentation doRepresentation() override { return representationOr(m_source.pointer()); }
    std::string doUnit() override { return unitOr(m_source.pointer()); }

private:
    ValueSource<int64_t> m_source;
    NumberLimits<int64_t> m_limits;
};

// Register access shared by IntReg, MaskedIntReg, FloatReg, StringReg and
// Register: address computation, port access and the value cache.
class RegisterCore {
public:
    explicit RegisterCore(Node &owner)
        : m_owner(owner)
    {
    }
    bool applyProperty(const Property &property);
    void collectRefs(std::vector<Ref *> &reading);
    void finishLoad();
    // An address contribution written inline (an IntSwissKnife child).
    void addAddressNode(Node *node);

    int64_t address();
    int64_t length();
    EAccessMode access();
    // Reads length() bytes; from the cache when allowed and valid. The
    // bytes stay valid until the register is read or written again.
    const std::vector<uint8_t> &read(bool ignoreCache);
    void write(const std::vector<uint8_t> &bytes);
    void invalidate() { m_cacheValid = false; }
    bool cacheValid() const { return m_cacheValid && m_caching != NoCache; }
    bool poll();
    ECachingMode caching() const { return m_caching; }
    EEndianess endianess() const { return m_endianess; }
    bool readableByMode() const { return m_accessMode == RO || m_accessMode == RW; }
    EAccessMode declaredAccess() const { return m_accessMode; }
    // The key that registers sharing one address have in common.
    bool staticLocation(const Node *&port, int64_t &address, int64_t &length) const;

private:
    IPort *port();

    // Access first, as in Node.
    Node &m_owner;
    EAccessMode m_accessMode = RO;
    ECachingMode m_caching = WriteThrough;
    EEndianess m_endianess = LittleEndian;
    Ref m_pPort;
    int64_t m_constAddress = 0;
    bool m_hasConstAddress = false;
    std::vector<Ref> m_pAddress;
    struct Index {
        Ref index;
        std::optional<int64_t> offset; // the Offset attribute
        Ref pOffset; // or the pOffset attribute
    };
    std::vector<Index> m_indices;
    int64_t m_length = 0;
    bool m_hasLength = false;
    Ref m_pLength;
    std::vector<uint8_t> m_cache;
    bool m_cacheValid = false;
    std::vector<uint8_t> m_lastRead; // what the device said last
    std::vector<uint8_t> m_readBuffer;
    bool m_hasLastRead = false;
    std::vector<uint8_t> m_lastPolled; // what the previous poll saw
    bool m_hasPolled = false;
    bool m_lastPollFailed = false;
};

// IntReg, MaskedIntReg (also the entries of a StructReg), IntKey and
// AdvFeatureLock.
class IntReg final : public IntegerBase, public IRegister {
public:
    IntReg(NodeMap &map, std::string_view name, const char *typeName, bool masked);
    bool applyProperty(const Property &property) override;
    void collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other) override;
    void finishLoad() override;
    void Set(const uint8_t *pBuffer, int64_t Length, bool Verify = true) override;
    void Get(uint8_t *pBuffer, int64_t Length, bool Verify = false,
             bool IgnoreCache = false) override;
    int64_t GetLength() override;
    int64_t GetAddress() override;
    bool isRegister() const override { return true; }
    void invalidateCache() override { m_core.invalidate(); }
    bool pollRegister() override { return m_core.poll(); }
    bool ownCacheValid() const override { return m_core.cacheValid(); }
    RegisterCore &core() { return m_core; }
    RegisterCore *registerCore() override { return &m_core; }

protected:
    EAccessMode doAccess() override { return m_core.access(); }
    int64_t doGetInt(bool ignoreCache) override;
    void doPutInt(int64_t value) override;
    int64_t rawMin() override;
    int64_t rawMax() override;

private:
    // Bit position of the field's least significant bit and its width.
    void field(int64_t registerBits, int &shift, int &width) const;
    int valueBits();

    RegisterCore m_core;
    bool m_masked;
    bool m_signed = false;
    int m_lsb = -1, m_msb = -1;
};

// Shared implementation of IFloat.
class FloatBase : public NumberBase<double> {
public:
    using NumberBase::NumberBase;
    bool applyProperty(const Property &property) override;
    bool HasInc() override;
    EIncMode GetIncMode() override;
    double GetInc() override;
    EDisplayNotation GetDisplayNotation() const override { return m_notation; }
    int64_t GetDisplayPrecision() const override { return m_precision; }
    INode *GetIntAlias() override { return nullptr; }

protected:
    void verify(double value) override;
    std::string toText(bool verify, bool ignoreCache) override;
    void fromText(const std::string &text, bool verify) override;
    int64_t doGetInt(bool ignoreCache) override;
    void doPutInt(int64_t value) override { doPutFloat(static_cast<double>(value)); }
    std::string doGetString(bool ignoreCache) override;
    double doFloatMin() override { return imposedMin(); }
    double doFloatMax() override { return imposedMax(); }
    int64_t doIntMin() override;
    int64_t doIntMax() override;
    virtual bool doHasInc() { return false; }
    virtual double doFloatInc() { return 0; }

    EDisplayNotation m_notation = fnAutomatic;
    int64_t m_precision = 6;
};

class Float final : public FloatBase {
public:
    Float(NodeMap &map, std::string_view name)
        : FloatBase(map, name, "Float")
    {
    }
    bool applyProperty(const Property &property) override;
    void collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other) override;

protected:
    EAccessMode doAccess() override;
    double doGetFloat(bool ignoreCache) override;
    void doPutFloat(double value) override;
    double rawMin() override { return m_limits.min(m_source.pointer()); }
    double rawMax() override { return m_limits.max(m_source.pointer()); }
    bool doHasInc() override;
    double doFloatInc() override;
    std::vector<double> doValidValues() override { return m_limits.validValues; }
    ERepresentation doRepresentation() override { return representationOr(m_source.pointer()); }
    std::string doUnit() override { return unitOr(m_source.pointer()); }

private:
    ValueSource<double> m_source;
    NumberLimits<double> m_limits;
};

class FloatReg final : public FloatBase, public IRegister {
public:
    FloatReg(NodeMap &map, std::string_view name)
        : FloatBase(map, name, "FloatReg")
        , m_core(*this)
    {
    }
    bool applyProperty(const Property &property) override;
    void collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other) override;
    void finishLoad() override;
    void Set(const uint8_t *pBuffer, int64_t Length, bool Verify = true) override;
    void Get(uint8_t *pBuffer, int64_t Length, bool Verify = false,
             bool IgnoreCache = false) override;
    int64_t GetLength() override;
    int64_t GetAddress() override;
    bool isRegister() const override { return true; }
    void invalidateCache() override { m_core.invalidate(); }
    bool pollRegister() override { return m_core.poll(); }
    bool ownCacheValid() const override { return m_core.cacheValid(); }
    RegisterCore &core() { return m_core; }
    RegisterCore *registerCore() override { return &m_core; }

protected:
    double rawMin() override;
    double rawMax() override;
    EAccessMode doAccess() override { return m_core.access(); }
    double doGetFloat(bool ignoreCache) override;
    void doPutFloat(double value) override;

private:
    RegisterCore m_core;
};

// The variables, constants and expressions of a SwissKnife or Converter.
class FormulaScope final : public FormulaVariables {
public:
    bool applyProperty(const Property &property);
    void collectRefs(std::vector<Ref *> &reading);
    // Parses the formulas once the variable names are known; special names
    // (FROM, TO) come first in the index space.
    Formula parse(Node &owner, std::string_view text, SourcePos pos,
                  const std::vector<std::string> &specials);
    int64_t evaluateInt(Node &owner, const Formula &formula, int64_t special);
    double evaluateFloat(Node &owner, const Formula &formula, double special);

    int64_t intVariable(int index) override;
    double floatVariable(int index) override;

private:
    struct Variable {
        std::string_view name;
        Ref ref;
        bool isConstant = false;
        double constant = 0;
        std::string_view expressionText;
        Formula expression;
        bool isExpression = false;
    };
    std::vector<Variable> m_variables;
    size_t m_specialCount = 0;
    double m_special = 0;
    int64_t m_specialInt = 0;
    int m_expressionDepth = 0;
    Node *m_owner = nullptr;
};

// IntSwissKnife (isInt) and SwissKnife.
class IntSwissKnife final : public IntegerBase {
public:
    IntSwissKnife(NodeMap &map, std::string_view name)
        : IntegerBase(map, name, "IntSwissKnife")
    {
    }
    bool applyProperty(const Property &property) override;
    void collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other) override;
    void finishLoad() override;

protected:
    int64_t doGetInt(bool ignoreCache) override;

private:
    FormulaScope m_scope;
    std::string_view m_text;
    SourcePos m_formulaPos;
    Formula m_formula;
};

class SwissKnife final : public FloatBase {
public:
    SwissKnife(NodeMap &map, std::string_view name)
        : FloatBase(map, name, "SwissKnife")
    {
    }
    bool applyProperty(const Property &property) override;
    void collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other) override;
    void finishLoad() override;

protected:
    double doGetFloat(bool ignoreCache) override;

private:
    FormulaScope m_scope;
    std::string_view m_text;
    SourcePos m_formulaPos;
    Formula m_formula;
};

// Converter and IntConverter: FormulaFrom turns the pValue's raw value (TO)
// into this node's value, FormulaTo turns a value (FROM) into the raw value.
struct ConverterCore {
    bool applyProperty(Node &owner, const Property &property);
    void collectRefs(std::vector<Ref *> &reading);
    void finishLoad(Node &owner);
    double toValue(Node &owner, double raw);
    double toRaw(Node &owner, double value);
    // The limits of the converted value, from the raw node's limits.
    void limits(Node &owner, double &low, double &high, bool integer);
    double intLimit(Node &owner, int64_t raw);

    FormulaScope scope;
    Ref pValue;
    std::string_view toText, fromText;
    SourcePos toPos, fromPos;
    Formula to, from;
    ESlope slope = Automatic;
};

class IntConverter final : public IntegerBase {
public:
    IntConverter(NodeMap &map, std::string_view name)
        : IntegerBase(map, name, "IntConverter")
    {
    }
    bool applyProperty(const Property &property) override;
    void collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other) override;
    void finishLoad() override { m_core.finishLoad(*this); }

protected:
    EAccessMode doAccess() override;
    int64_t doGetInt(bool ignoreCache) override;
    void doPutInt(int64_t value) override;
    int64_t rawMin() override;
    int64_t rawMax() override;

private:
    ConverterCore m_core;
};

class Converter final : public FloatBase {
public:
    Converter(NodeMap &map, std::string_view name)
        : FloatBase(map, name, "Converter")
    {
    }
    bool applyProperty(const Property &property) override;
    void collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other) override;
    void finishLoad() override { m_core.finishLoad(*this); }

protected:
    EAccessMode doAccess() override;
    double doGetFloat(bool ignoreCache) override;
    void doPutFloat(double value) override;
    double rawMin() override;
    double rawMax() override;

private:
    ConverterCore m_core;
};

class Boolean final : public ValueNode, public IBoolean {
public:
    Boolean(NodeMap &map, std::string_view name)
        : ValueNode(map, name, "Boolean")
    {
    }
    bool applyProperty(const Property &property) override;
    void collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other) override;
    void SetValue(bool Value, bool Verify = true) override;
    void operator=(bool Value) override { SetValue(Value); }
    bool GetValue(bool Verify = false, bool IgnoreCache = false) const override;
    bool operator()() const override { return GetValue(); }
    EInterfaceType GetPrincipalInterfaceType() const override { return intfIBoolean; }

protected:
    EAccessMode doAccess() override;
    int64_t doGetInt(bool ignoreCache) override;
    void doPutInt(int64_t value) override;
    std::string toText(bool verify, bool ignoreCache) override;
    void fromText(const std::string &text, bool verify) override;

private:
    bool read(bool ignoreCache);
    ValueSource<int64_t> m_source;
    int64_t m_on = 1, m_off = 0;
    bool m_storedIsBool = false; // <Value>true</Value>: kept as 1/0
};

class Command final : public ValueNode, public ICommand {
public:
    Command(NodeMap &map, std::string_view name)
        : ValueNode(map, name, "Command")
    {
    }
    bool applyProperty(const Property &property) override;
    void collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other) override;
    void Execute(bool Verify = true) override;
    void operator()() override { Execute(); }
    bool IsDone(bool Verify = true) override;
    EInterfaceType GetPrincipalInterfaceType() const override { return intfICommand; }

protected:
    EAccessMode doAccess() override;
    std::string toText(bool verify, bool ignoreCache) override;
    void fromText(const std::string &text, bool verify) override;

private:
    int64_t commandValue();
    ValueSource<int64_t> m_source;
    int64_t m_commandValue = 1;
    Ref m_pCommandValue;
};

class EnumEntry;

class Enumeration final : public ValueNode, public IEnumeration {
public:
    Enumeration *asEnumeration() override { return this; }
    Enumeration(NodeMap &map, std::string_view name)
        : ValueNode(map, name, "Enumeration")
    {
    }
    bool applyProperty(const Property &property) override;
    void collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other) override;
    void GetSymbolics(StringList_t &Symbolics) override;
    void GetEntries(NodeList_t &Entries) override;
    IEnumeration &operator=(const gcstring &ValueStr) override;
    void SetIntValue(int64_t Value, bool Verify = true) override;
    int64_t GetIntValue(bool Verify = false, bool IgnoreCache = false) override;
    IEnumEntry *GetCurrentEntry(bool Verify = false, bool IgnoreCache = false) override;
    IEnumEntry *GetEntryByName(const gcstring &Symbolic) override;
    IEnumEntry *GetEntry(const int64_t IntValue) override;
    EInterfaceType GetPrincipalInterfaceType() const override { return intfIEnumeration; }

    std::vector<EnumEntry *> entries;

protected:
    EAccessMode doAccess() override;
    int64_t doGetInt(bool ignoreCache) override;
    void doPutInt(int64_t value) override;
    std::string doGetString(bool ignoreCache) override;
    std::string toText(bool verify, bool ignoreCache) override;
    void fromText(const std::string &text, bool verify) override;

private:
    EnumEntry *entryForValue(int64_t value);
    EnumEntry *entryForName(std::string_view name);
    void setEntry(EnumEntry *entry, bool verify);
    ValueSource<int64_t> m_source;
};

class EnumEntry final : public ValueNode, public IEnumEntry {
public:
    EnumEntry(NodeMap &map, std::string_view name, std::string_view symbolic, Enumeration *parent)
        : ValueNode(map, name, "EnumEntry")
        , m_symbolic(symbolic)
        , m_parent(parent)
    {
    }
    bool applyProperty(const Property &property) override;
    int64_t GetValue() override { return m_value; }
    gcstring GetSymbolic() const override { return m_symbolic; }
    double GetNumericValue() override { return m_hasNumeric ? m_numeric : double(m_value); }
    bool IsSelfClearing() override { return m_selfClearing; }
    EInterfaceType GetPrincipalInterfaceType() const override { return intfIEnumEntry; }
    const std::string &symbolic() const { return m_symbolic; }
    int64_t value() const { return m_value; }
    Enumeration *parent() const { return m_parent; }

protected:
    int64_t doGetInt(bool) override { return m_value; }
    std::string toText(bool, bool) override { return m_symbolic; }
    void fromText(const std::string &, bool) override;

private:
    std::string m_symbolic;
    Enumeration *m_parent;
    int64_t m_value = 0;
    double m_numeric = 0;
    bool m_hasNumeric = false;
    bool m_selfClearing = false;
};

// String (a value in the node or behind pValue), StringReg, and the
// register-backed text nodes.
class String : public ValueNode, public IString {
public:
    String(NodeMap &map, std::string_view name, const char *typeName, bool isRegister);
    bool applyProperty(const Property &property) override;
    void collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other) override;
    void finishLoad() override;
    void SetValue(const gcstring &Value, bool Verify = true) override;
    IString &operator=(const gcstring &Value) override;
    gcstring GetValue(bool Verify = false, bool IgnoreCache = false) override;
    gcstring operator()() override { return GetValue(); }
    gcstring operator*() override { return GetValue(); }
    int64_t GetMaxLength() override;
    EInterfaceType GetPrincipalInterfaceType() const override { return intfIString; }
    bool isRegister() const override { return m_isRegister; }
    void invalidateCache() override { m_core.invalidate(); }
    bool pollRegister() override { return m_isRegister && m_core.poll(); }
    bool ownCacheValid() const override { return !m_isRegister || m_core.cacheValid(); }
    RegisterCore &core() { return m_core; }
    RegisterCore *registerCore() override { return m_isRegister ? &m_core : nullptr; }

protected:
    EAccessMode doAccess() override;
    std::string doGetString(bool ignoreCache) override;
    void doPutString(const std::string &value) override;
    std::string toText(bool, bool ignoreCache) override { return doGetString(ignoreCache); }
    void fromText(const std::string &text, bool verify) override;

private:
    bool m_isRegister;
    RegisterCore m_core;
    std::string m_value;
    Ref m_pValue;
};

// StringReg and the register-backed text nodes (ConfRom, TextDesc).
class StringReg final : public String, public IRegister {
public:
    StringReg(NodeMap &map, std::string_view name, const char *typeName)
        : String(map, name, typeName, true)
    {
    }
    void Set(const uint8_t *pBuffer, int64_t Length, bool Verify = true) override;
    void Get(uint8_t *pBuffer, int64_t Length, bool Verify = false,
             bool IgnoreCache = false) override;
    int64_t GetLength() override;
    int64_t GetAddress() override;
};

// Register and the register-like SmartFeature: raw bytes.
class Register final : public ValueNode, public IRegister {
public:
    Register(NodeMap &map, std::string_view name, const char *typeName)
        : ValueNode(map, name, typeName)
        , m_core(*this)
    {
    }
    bool applyProperty(const Property &property) override;
    void collectRefs(std::vector<Ref *> &reading, std::vector<Ref *> &other) override;
    void finishLoad() override;
    void Set(const uint8_t *pBuffer, int64_t Length, bool Verify = true) override;
    void Get(uint8_t *pBuffer, int64_t Length, bool Verify = false,
             bool IgnoreCache = false) override;
    int64_t GetLength() override;
    int64_t GetAddress() override;
    EInterfaceType GetPrincipalInterfaceType() const override { return intfIRegister; }
    bool isRegister() const override { return true; }
    void invalidateCache() override { m_core.invalidate(); }
    bool pollRegister() override { return m_core.poll(); }
    bool ownCacheValid() const override { return m_core.cacheValid(); }
    RegisterCore &core() { return m_core; }
    RegisterCore *registerCore() override { return &m_core; }

protected:
    EAccessMode doAccess() override { return m_core.access(); }
    std::string toText(bool verify, bool ignoreCache) override;
    void fromText(const std::string &text, bool verify) override;

private:
    RegisterCore m_core;
};

class Port final : public Node, public IPort {
public:
    Port(NodeMap &map, std::string_view name)
        : Node(map, name, "Port")
    {
    }
    Port *asPort() override { return this; }
    bool applyProperty(const Property &property) override;
    void Read(void *pBuffer, int64_t Address, int64_t Length) override;
    void Write(const void *pBuffer, int64_t Address, int64_t Length) override;
    EInterfaceType GetPrincipalInterfaceType() const override { return intfIPort; }
    void connect(IPort *port) { m_port = port; }
    IPort *connected() const { return m_port; }

protected:
    EAccessMode doAccess() override;

private:
    IPort *m_port = nullptr;
};

// IRegister over a register node's core, shared by every register type.
void registerSet(Node &node, RegisterCore &core, const uint8_t *buffer, int64_t length);
void registerGet(Node &node, RegisterCore &core, uint8_t *buffer, int64_t length, bool ignoreCache);
int64_t registerLength(Node &node, RegisterCore &core);
int64_t registerAddress(Node &node, RegisterCore &core);

// Property parsing, shared by the node classes. Each throws
// PropertyException naming the line, the node and the malformed text.
[[noreturn]] void throwBadProperty(const Node &node, const Property &property,
                                   const char *expected);
int64_t propertyInt(const Node &node, const Property &property);
double propertyDouble(const Node &node, const Property &property);
// Yes/No and enumerated properties may be recoverable violations (see
// loader.h): reported and replaced by their default unless loading is strict.
void keepDefault(const Node &node, const Property &property, const char *expected,
                 const char *fallback);
bool propertyYesNo(const Node &node, const Property &property);
EAccessMode propertyAccessMode(const Node &node, const Property &property, EAccessMode fallback);

// The typed forms of the helpers above, for code that integer and float
// nodes share.
template <class T> T propertyValue(const Node &node, const Property &property)
{
    if constexpr (std::is_same_v<T, int64_t>)
        return propertyInt(node, property);
    else
        return propertyDouble(node, property);
}
template <class T> T readNode(Node *node, bool ignoreCache)
{
    if constexpr (std::is_same_v<T, int64_t>)
        return node->getInt(ignoreCache);
    else
        return node->getFloat(ignoreCache);
}
inline void writeNode(Node *node, int64_t value)
{
    node->putInt(value);
}
inline void writeNode(Node *node, double value)
{
    node->putFloat(value);
}
Ref propertyRef(const Property &property);

} // namespace impl
} // namespace GenApi_3_0

#endif
