/// \file
/// The abstract interfaces of the GenApi node model.
///
/// Nodes are created and owned by their node map (see CNodeMapRef); pointers
/// handed out stay valid until the node map is destroyed. Every member may be
/// called from any thread: each call locks the node map's recursive lock.
/// Failures are thrown as GenICam::GenericException subclasses whose
/// description names the node.
#ifndef GENAPI_INTERFACES_H
#define GENAPI_INTERFACES_H

#include <GenApi/Types.h>

namespace GenApi_3_0 {

class CNodeCallback;
class CLock;
interface INodeMap;

/// Root of every interface: the current access mode.
interface GENAPI_DECL_ABSTRACT IBase {
    /// NI, NA, WO, RO or RW, from the register's access, ImposedAccessMode and
    /// the pIsImplemented/pIsAvailable/pIsLocked nodes. May throw when one of
    /// those nodes cannot be read.
    virtual EAccessMode GetAccessMode() const = 0;
    virtual ~IBase() = default;
};

/// Metadata, dependencies and callbacks of a node.
interface GENAPI_DECL_ABSTRACT INode : virtual public IBase {
    virtual gcstring GetName(bool FullQualified = false) const = 0;
    virtual ENameSpace GetNameSpace() const = 0;
    virtual EVisibility GetVisibility() const = 0;
    /// Drops cached register values below this node and calls back every
    /// node that depends on it.
    virtual void InvalidateNode() = 0;
    virtual bool IsCachable() const = 0;
    virtual EYesNo IsAccessModeCacheable() const = 0;
    virtual ECachingMode GetCachingMode() const = 0;
    /// Milliseconds between polls, or -1 when the node is not polled.
    virtual int64_t GetPollingTime() const = 0;
    virtual gcstring GetToolTip() const = 0;
    virtual gcstring GetDescription() const = 0;
    /// The DisplayName, or the name when the description gives none.
    virtual gcstring GetDisplayName() const = 0;
    virtual gcstring GetDeviceName() const = 0;
    virtual void GetChildren(NodeList_t &Children,
                             ELinkType LinkType = ctReadingChildren) const = 0;
    virtual void GetParents(NodeList_t &Parents, ELinkType LinkType = ctReadingChildren) const = 0;
    /// Takes ownership of pCallback; returns the handle for DeregisterCallback.
    virtual CallbackHandleType RegisterCallback(CNodeCallback *pCallback) = 0;
    /// Returns false when the handle does not belong to this node.
    virtual bool DeregisterCallback(CallbackHandleType hCallback) = 0;
    virtual INodeMap *GetNodeMap() const = 0;
    virtual gcstring GetEventID() const = 0;
    virtual bool IsStreamable() const = 0;
    /// The properties GetProperty answers: Name, NameSpace, ToolTip,
    /// Description, DisplayName, Visibility, ImposedAccessMode, PollingTime,
    /// Streamable, and pIsImplemented, pIsAvailable and pIsLocked where the
    /// node has them (their value: the name of the node they refer to).
    virtual void GetPropertyNames(gcstring_vector &PropertyNames) const = 0;
    /// False for a property the node does not have.
    virtual bool GetProperty(const gcstring &PropertyName, gcstring &ValueStr,
                             gcstring &AttributeStr)
        = 0;
    virtual void ImposeAccessMode(EAccessMode ImposedAccessMode) = 0;
    virtual void ImposeVisibility(EVisibility ImposedVisibility) = 0;
    virtual INode *GetAlias() const = 0;
    virtual INode *GetCastAlias() const = 0;
    virtual gcstring GetDocuURL() const = 0;
    virtual bool IsDeprecated() const = 0;
    virtual EInterfaceType GetPrincipalInterfaceType() const = 0;
    /// True for nodes a user sees as features (those reachable from a category
    /// or with a display-worthy interface).
    virtual bool IsFeature() const = 0;
};

/// Common to every value-bearing node.
interface GENAPI_DECL_ABSTRACT IValue : virtual public IBase {
    virtual INode *GetNode() = 0;
    virtual gcstring ToString(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual void FromString(const gcstring &ValueStr, bool Verify = true) = 0;
    virtual bool IsValueCacheValid() const = 0;
};

/// A branch of the feature tree.
interface GENAPI_DECL_ABSTRACT ICategory : virtual public IValue {
    virtual void GetFeatures(FeatureList_t &Features) const = 0;
};

interface GENAPI_DECL_ABSTRACT IInteger : virtual public IValue {
    /// Throws AccessException when not writable, OutOfRangeException when the
    /// value is outside [GetMin(), GetMax()] or off the increment (Verify).
    virtual void SetValue(int64_t Value, bool Verify = true) = 0;
    virtual IInteger &operator=(int64_t Value) = 0;
    virtual int64_t GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual int64_t operator()() = 0;
    virtual int64_t operator*() = 0;
    virtual int64_t GetMin() = 0;
    virtual int64_t GetMax() = 0;
    virtual EIncMode GetIncMode() = 0;
    virtual int64_t GetInc() = 0;
    virtual int64_autovector_t GetListOfValidValues(bool bounded = true) = 0;
    virtual ERepresentation GetRepresentation() = 0;
    virtual gcstring GetUnit() const = 0;
    virtual void ImposeMin(int64_t Value) = 0;
    virtual void ImposeMax(int64_t Value) = 0;
};

interface GENAPI_DECL_ABSTRACT IFloat : virtual public IValue {
    virtual void SetValue(double Value, bool Verify = true) = 0;
    virtual IFloat &operator=(double Value) = 0;
    virtual double GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual double operator()() = 0;
    virtual double operator*() = 0;
    virtual double GetMin() = 0;
    virtual double GetMax() = 0;
    virtual bool HasInc() = 0;
    virtual EIncMode GetIncMode() = 0;
    virtual double GetInc() = 0;
    virtual double_autovector_t GetListOfValidValues(bool bounded = true) = 0;
    virtual ERepresentation GetRepresentation() = 0;
    virtual gcstring GetUnit() const = 0;
    virtual EDisplayNotation GetDisplayNotation() const = 0;
    virtual int64_t GetDisplayPrecision() const = 0;
    virtual INode *GetIntAlias() = 0;
    virtual void ImposeMin(double Value) = 0;
    virtual void ImposeMax(double Value) = 0;
};

interface GENAPI_DECL_ABSTRACT IBoolean : virtual public IValue {
    virtual void SetValue(bool Value, bool Verify = true) = 0;
    virtual void operator=(bool Value) = 0;
    virtual bool GetValue(bool Verify = false, bool IgnoreCache = false) const = 0;
    virtual bool operator()() const = 0;
};

interface GENAPI_DECL_ABSTRACT ICommand : virtual public IValue {
    /// Writes the command value to the command's register.
    virtual void Execute(bool Verify = true) = 0;
    virtual void operator()() = 0;
    /// True once the device has cleared the command value again (or when the
    /// command's register cannot be read back).
    virtual bool IsDone(bool Verify = true) = 0;
};

interface GENAPI_DECL_ABSTRACT IString : virtual public IValue {
    virtual void SetValue(const gcstring &Value, bool Verify = true) = 0;
    virtual IString &operator=(const gcstring &Value) = 0;
    virtual gcstring GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual gcstring operator()() = 0;
    virtual gcstring operator*() = 0;
    virtual int64_t GetMaxLength() = 0;
};

interface IEnumEntry;

interface GENAPI_DECL_ABSTRACT IEnumeration : virtual public IValue {
    /// Symbolic names of the entries that are currently available.
    virtual void GetSymbolics(StringList_t &Symbolics) = 0;
    /// Every entry node, available or not.
    virtual void GetEntries(NodeList_t &Entries) = 0;
    virtual IEnumeration &operator=(const gcstring &ValueStr) = 0;
    virtual void SetIntValue(int64_t Value, bool Verify = true) = 0;
    virtual int64_t GetIntValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual IEnumEntry *GetCurrentEntry(bool Verify = false, bool IgnoreCache = false) = 0;
    /// nullptr when no entry has that symbolic name or value.
    virtual IEnumEntry *GetEntryByName(const gcstring &Symbolic) = 0;
    virtual IEnumEntry *GetEntry(const int64_t IntValue) = 0;
};

interface GENAPI_DECL_ABSTRACT IEnumEntry : virtual public IValue {
    virtual int64_t GetValue() = 0;
    virtual gcstring GetSymbolic() const = 0;
    virtual double GetNumericValue() = 0;
    virtual bool IsSelfClearing() = 0;
};

interface GENAPI_DECL_ABSTRACT ISelector : virtual public IBase {
    virtual bool IsSelector() const = 0;
    /// The features this node selects (its pSelected list).
    virtual void GetSelectedFeatures(FeatureList_t &Features) const = 0;
    /// The features that select this node.
    virtual void GetSelectingFeatures(FeatureList_t &Features) const = 0;
};

interface GENAPI_DECL_ABSTRACT IRegister : virtual public IValue {
    virtual void Set(const uint8_t *pBuffer, int64_t Length, bool Verify = true) = 0;
    virtual void Get(uint8_t *pBuffer, int64_t Length, bool Verify = false,
                     bool IgnoreCache = false)
        = 0;
    virtual int64_t GetLength() = 0;
    virtual int64_t GetAddress() = 0;
};

/// Register access to a device. A host implements Read, Write and
/// GetAccessMode; failures are reported by throwing GenericException
/// subclasses (AccessException, TimeoutException, ...).
interface GENAPI_DECL_ABSTRACT IPort : virtual public IBase {
    virtual void Read(void *pBuffer, int64_t Address, int64_t Length) = 0;
    virtual void Write(const void *pBuffer, int64_t Address, int64_t Length) = 0;
};

/// A loaded description: the set of nodes and their common lock.
interface GENAPI_DECL_ABSTRACT INodeMap {
    virtual void GetNodes(NodeList_t &Nodes) const = 0;
    /// nullptr when there is no node of that name.
    virtual INode *GetNode(const gcstring &Name) const = 0;
    virtual void InvalidateNodes() const = 0;
    /// Connects a port to the Port node of that name; false when there is none.
    virtual bool Connect(IPort *pPort, const gcstring &PortName) const = 0;
    /// Connects to the port node named "Device".
    virtual bool Connect(IPort *pPort) const = 0;
    virtual gcstring GetDeviceName() = 0;
    /// Advances the polling clocks by ElapsedTime milliseconds; nodes whose
    /// polling time has passed are re-read and, when changed, called back.
    virtual void Poll(int64_t ElapsedTime) = 0;
    virtual CLock &GetLock() const = 0;
    virtual uint64_t GetNumNodes() const = 0;
    /// True when the expression parses as a SwissKnife formula.
    virtual bool ParseSwissKnife(const gcstring &Expression) const = 0;
    virtual ~INodeMap() = default;
};

} // namespace GenApi_3_0

#endif
