/// \file
/// Enumerations, list types and small value types of the GenApi interface.
#ifndef GENAPI_TYPES_H
#define GENAPI_TYPES_H

#include <GenICam.h>

#include <cstdint>
#include <vector>

namespace GenApi_3_0 {

using GenICam_3_0::gcstring;
using GenICam_3_0::gcstring_vector;

/// How a node may be accessed at this moment.
enum EAccessMode {
    NI, // not implemented: the feature does not exist on this device
    NA, // not available: exists, but cannot be accessed in the current state
    WO, // write only
    RO, // read only
    RW, // read and write
    _UndefinedAccesMode,
    _CycleDetectAccesMode
};

/// Who a feature is meant for; the GUI hides features above the chosen level.
enum EVisibility { Beginner = 0, Expert = 1, Guru = 2, Invisible = 3, _UndefinedVisibility = 99 };

/// How register values are cached.
enum ECachingMode {
    NoCache, // every read goes to the device
    WriteThrough, // a write updates the cache
    WriteAround, // a write invalidates the cache; the next read goes to the device
    _UndefinedCachingMode
};

/// How a number is best presented to a user.
enum ERepresentation {
    Linear,
    Logarithmic,
    Boolean,
    PureNumber,
    HexNumber,
    IPV4Address,
    MACAddress,
    _UndefinedRepresentation
};

enum EEndianess { BigEndian, LittleEndian, _UndefinedEndian };
enum ENameSpace { Custom, Standard, _UndefinedNameSpace };
enum EStandardNameSpace { None, GEV, IIDC, CL, USB, _UndefinedStandardNameSpace };
enum EYesNo { No = 0, Yes = 1, _UndefinedYesNo = 2 };
enum ESlope { Increasing, Decreasing, Varying, Automatic, _UndefinedESlope };
enum EDisplayNotation { fnAutomatic, fnFixed, fnScientific, _UndefinedEDisplayNotation };
enum ESign { Signed, Unsigned, _UndefinedSign };
enum EInputDirection { idFrom, idTo, idNone };

/// When a node callback is called relative to the node map's lock.
enum ECallbackType {
    cbPostInsideLock = 1, // while the node map is still locked
    cbPostOutsideLock = 2 // after the node map's lock has been released
};

/// How the valid values of a number are spaced.
enum EIncMode { noIncrement, fixedIncrement, listIncrement };

/// The principal interface of a node.
enum EInterfaceType {
    intfIValue,
    intfIBase,
    intfIInteger,
    intfIBoolean,
    intfICommand,
    intfIFloat,
    intfIString,
    intfIRegister,
    intfICategory,
    intfIEnumeration,
    intfIEnumEntry,
    intfIPort
};

/// Which links GetChildren()/GetParents() follow.
enum ELinkType {
    ctParentNodes,
    ctReadingChildren,
    ctWritingChildren,
    ctInvalidatingChildren,
    ctDependingNodes,
    ctTerminalNodes,
    ctValueChildren
};

/// An opaque handle for a registered node callback; 0 is never a valid handle.
typedef intptr_t CallbackHandleType;

interface INode;
interface IValue;

typedef std::vector<INode *> NodeList_t;
typedef std::vector<IValue *> FeatureList_t;
typedef gcstring_vector StringList_t;

/// A list of 64-bit integers, as returned by GetListOfValidValues().
class GENAPI_DECL int64_autovector_t {
public:
    int64_autovector_t() = default;
    explicit int64_autovector_t(size_t count)
        : m_items(count)
    {
    }
    int64_autovector_t(const int64_t *values, size_t count)
        : m_items(values, values + count)
    {
    }
    size_t size() const { return m_items.size(); }
    bool empty() const { return m_items.empty(); }
    int64_t &operator[](size_t index) { return m_items[index]; }
    const int64_t &operator[](size_t index) const { return m_items[index]; }
    void push_back(int64_t value) { m_items.push_back(value); }
    std::vector<int64_t>::const_iterator begin() const { return m_items.begin(); }
    std::vector<int64_t>::const_iterator end() const { return m_items.end(); }

private:
    std::vector<int64_t> m_items;
};

/// A list of doubles, as returned by GetListOfValidValues().
class GENAPI_DECL double_autovector_t {
public:
    double_autovector_t() = default;
    explicit double_autovector_t(size_t count)
        : m_items(count)
    {
    }
    double_autovector_t(const double *values, size_t count)
        : m_items(values, values + count)
    {
    }
    size_t size() const { return m_items.size(); }
    bool empty() const { return m_items.empty(); }
    double &operator[](size_t index) { return m_items[index]; }
    const double &operator[](size_t index) const { return m_items[index]; }
    void push_back(double value) { m_items.push_back(value); }
    std::vector<double>::const_iterator begin() const { return m_items.begin(); }
    std::vector<double>::const_iterator end() const { return m_items.end(); }

private:
    std::vector<double> m_items;
};

/// Text forms of the enumerations, as they are written in descriptions.
struct GENAPI_DECL EAccessModeClass {
    static gcstring ToString(EAccessMode value);
    static bool FromString(const gcstring &text, EAccessMode *value);
};
struct GENAPI_DECL EVisibilityClass {
    static gcstring ToString(EVisibility value);
    static bool FromString(const gcstring &text, EVisibility *value);
};
struct GENAPI_DECL ECachingModeClass {
    static gcstring ToString(ECachingMode value);
    static bool FromString(const gcstring &text, ECachingMode *value);
};
struct GENAPI_DECL ERepresentationClass {
    static gcstring ToString(ERepresentation value);
    static bool FromString(const gcstring &text, ERepresentation *value);
};
struct GENAPI_DECL EDisplayNotationClass {
    static gcstring ToString(EDisplayNotation value);
    static bool FromString(const gcstring &text, EDisplayNotation *value);
};
struct GENAPI_DECL EInterfaceTypeClass {
    /// "IInteger", "IFloat" and so on.
    static gcstring ToString(EInterfaceType value);
};

} // namespace GenApi_3_0

namespace GenApi = GenApi_3_0;

#endif
