/// \file
/// The parameter model of the camera access API: named camera features over a
/// GenICam node map.
///
/// Ownership: an Array belongs to the object that handed it out (a Device or
/// an Interface) and lives as long as it; the parameters it hands out belong
/// to the Array and keep their address for its whole life, so asking twice for
/// the same name gives the same pointer.
///
/// Threads: every operation may be called from any thread. A listener
/// (ParamEventSink) is called on the thread that caused the change, after the
/// node map's lock has been released, once per change of the feature
/// (including changes of features it depends on). A GUI must hand the call
/// over to its own thread.
///
/// Errors: getters take an optional out-pointer for an OrbCamErr and return 0
/// (or an empty value) on failure; setters return the OrbCamErr. Nothing
/// throws.
#ifndef ORBCAM_ORBGENPARAM_H
#define ORBCAM_ORBGENPARAM_H

#include <OrbCam/OrbCamErr.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace GenApi_3_0 {
struct INode;
struct INodeMap;
} // namespace GenApi_3_0

namespace OrbGenParam {

class Param;

/// Receives change notifications of the parameters it is registered with.
class ORBCAM_API ParamEventSink {
protected:
    /// First in the table, before OnParameterUpdate: listeners built against
    /// this layout (a destructor, a deleting destructor, then the call) find
    /// the call where they expect it.
    virtual ~ParamEventSink() = default;

public:
    virtual void OnParameterUpdate(Param *param) = 0;
};

class ORBCAM_API Param {
public:
    /// The feature's name (UTF-8), as in the description.
    virtual const char *GetName() const = 0;
    virtual bool IsAvailable() const = 0;
    virtual bool IsReadable() const = 0;
    virtual bool IsWritable() const = 0;
    /// Registering a sink twice has no effect. The sink must stay alive
    /// until it is unregistered; after UnregisterEventSink returns it is
    /// never called again (a call in progress on another thread is awaited).
    virtual OrbCamErr RegisterEventSink(ParamEventSink *sink) = 0;
    virtual OrbCamErr UnregisterEventSink(ParamEventSink *sink) = 0;
    /// The GenICam node behind the parameter.
    virtual GenApi_3_0::INode *GetNode() const = 0;

protected:
    virtual ~Param() = default;
};

class ORBCAM_API Int : public Param {
public:
    virtual int64_t GetValue(OrbCamErr *err = nullptr) const = 0;
    virtual int64_t GetMin(OrbCamErr *err = nullptr) const = 0;
    virtual int64_t GetMax(OrbCamErr *err = nullptr) const = 0;
    virtual int64_t GetInc(OrbCamErr *err = nullptr) const = 0;
    /// Checks the range and the increment.
    virtual OrbCamErr SetValue(int64_t value) = 0;
};

class ORBCAM_API Float : public Param {
public:
    virtual double GetValue(OrbCamErr *err = nullptr) const = 0;
    virtual double GetMin(OrbCamErr *err = nullptr) const = 0;
    virtual double GetMax(OrbCamErr *err = nullptr) const = 0;
    /// 0 when the feature has no increment.
    virtual double GetInc(OrbCamErr *err = nullptr) const = 0;
    virtual OrbCamErr SetValue(double value) = 0;
};

/// One entry of an enumeration; owned by its Enum.
class ORBCAM_API EnumEntry {
public:
    virtual int64_t GetValue() const = 0;
    virtual const char *GetName() const = 0;
    virtual bool IsAvailable() const = 0;

protected:
    virtual ~EnumEntry() = default;
};

class ORBCAM_API Enum : public Param {
public:
    /// Every entry, available or not, in description order.
    virtual size_t GetEntryCount() const = 0;
    /// nullptr when index is out of range.
    virtual EnumEntry *GetEntry(size_t index) const = 0;
    virtual int64_t GetValue(OrbCamErr *err = nullptr) const = 0;
    /// The current entry's name; an empty string on failure. The text stays
    /// valid as long as the Enum.
    virtual const char *GetValueName(OrbCamErr *err = nullptr) const = 0;
    virtual OrbCamErr SetValue(int64_t value) = 0;
    virtual OrbCamErr SetValueByName(const char *name) = 0;
};

class ORBCAM_API Boolean : public Param {
public:
    virtual bool GetValue(OrbCamErr *err = nullptr) const = 0;
    virtual OrbCamErr SetValue(bool value) = 0;
};

class ORBCAM_API Command : public Param {
public:
    virtual OrbCamErr Execute() = 0;
    /// True once the device has finished the command.
    virtual bool IsDone(OrbCamErr *err = nullptr) const = 0;
};

class ORBCAM_API String : public Param {
public:
    /// The value as UTF-8.
    virtual std::string GetValue(OrbCamErr *err = nullptr) const = 0;
    virtual OrbCamErr SetValue(const char *utf8) = 0;
};

/// The parameters of a device or an interface.
class ORBCAM_API Array {
public:
    /// The GenICam node map behind the array. index selects among several
    /// maps where an array has more (0, the default, is the main one);
    /// nullptr for an index that does not exist. Not owned by the caller.
    virtual GenApi_3_0::INodeMap *GetNodeMap(int index = 0) = 0;
    /// The parameter of that name, or nullptr when there is none or it is of
    /// another kind. GetParam accepts every kind.
    virtual Param *GetParam(const char *name) = 0;
    virtual Int *GetInt(const char *name) = 0;
    virtual Float *GetFloat(const char *name) = 0;
    virtual Enum *GetEnum(const char *name) = 0;
    virtual Boolean *GetBoolean(const char *name) = 0;
    virtual Command *GetCommand(const char *name) = 0;
    virtual String *GetString(const char *name) = 0;

protected:
    virtual ~Array() = default;
};

} // namespace OrbGenParam

#endif
