/// \file
/// The camera access API: discover interfaces and cameras, open a camera and
/// reach its parameters.
///
///   OrbCam::System *system = OrbCam_GetSystem();
///   OrbCam::InterfaceList *interfaces = system->GetInterfaces(OrbCam::AllInterfaces);
///   for (OrbCam::Interface *i = interfaces->First(); i; i = interfaces->Next()) {
///       bool changed = false;
///       i->UpdateDeviceList(&changed, 200);
///       OrbCam::DeviceInfoList *infos = i->GetDeviceInfoList();
///       ...
///       infos->Release();
///   }
///   OrbCam::Device *device = OrbCam_CreateDevice(info, OrbCam::AccessControl, 0);
///   OrbGenParam::Array *params = device->GetParams();
///   ...
///   OrbCam_ReleaseDevice(device);
///   OrbCam_ReleaseSystem(system);
///
/// Ownership: the System owns its interfaces, their parameter arrays and every
/// DeviceInfo it ever reported; these stay valid until the last reference to
/// the System is released, even when a camera disappears (a DeviceInfo of a
/// camera that is gone reports AccessNone). Device-info lists are the caller's
/// and are given back with Release(); the interface list belongs to the System
/// and must not be released. A Device is the caller's until OrbCam_ReleaseDevice.
///
/// Threads: every operation may be called from any thread; discovery may run
/// on one thread while another reads parameters. Event callbacks come from a
/// thread of the API, never from inside a caller's call.
///
/// Backends: by default the System holds the simulated camera system (see
/// OrbCamSim.h). A build with Aravis also reaches real GigE Vision and USB3
/// Vision cameras, beside the simulated ones or instead of them, as the host
/// chooses with OrbCam_SetBackends() before the System starts. Their cameras'
/// descriptions are read by our own GenICam interpreter; Aravis only finds
/// the cameras and carries their register reads and writes.
///
/// Real cameras answer over the network or USB, so some calls wait for them
/// (never on a lock another thread needs meanwhile): UpdateDeviceList for the
/// time it is given (each GigE Vision interface asks its own network, so
/// interfaces asked from several threads at once take that time once);
/// OrbCam_CreateDevice up to a few seconds (the camera's description is
/// read); ForceIP up to one second for the camera's answer. A feature read of
/// a GigE Vision camera that stopped answering waits the answer time
/// (OrbCam_SetAnswerTimeout, 400 ms by default) once; a write goes through
/// Aravis, which waits its own fixed time (about 2.5 s) and does not let it
/// be set. The camera then counts as not answering: every read and write
/// fails at once (OrbCamErrNoDevice through the parameter API) until it
/// answers again. A GUI thread should run discovery, opening and feature
/// access elsewhere. A GigE Vision camera that stops answering is reported
/// (event 1004) within about two seconds of its last answer, and its return
/// (event 1003) within about a second of its first; a USB3 Vision camera's
/// loss when Aravis notices it.
#ifndef ORBCAM_ORBCAM_H
#define ORBCAM_ORBCAM_H

#include <OrbCam/OrbCamErr.h>
#include <OrbCam/OrbGenParam.h>

#include <cstddef>
#include <cstdint>

namespace OrbCam {

/// Interface::GetType(); anything else is a custom transport.
enum InterfaceType : uint32_t {
    InterfaceUSB3Vision = 1,
    InterfaceGigEVision = 2,
    InterfaceCameraLink = 3,
    InterfaceCoaXPress = 4,
    InterfaceHDSDI = 5,
};

/// Type masks for System::GetInterfaces(): bit (type - 1) selects a type.
enum : uint32_t { AllInterfaces = 255 };

/// DeviceInfo::GetAccessStatus().
enum AccessStatus : uint32_t {
    AccessReadWrite = 1,
    AccessReadOnly = 2,
    AccessNone = 3,
    AccessIPSubnetMismatch = 1001,
};

/// OrbCam_CreateDevice() access: what the caller may do with the camera.
enum DeviceAccess : uint32_t {
    AccessMonitor = 1, // read only: every feature is at most readable
    AccessControl = 2, // full control: read and write
};

/// The camera systems a System can hold (OrbCam_SetBackends).
enum BackendKind : uint32_t {
    BackendSimulated = 1, // the simulated cameras (OrbCamSim.h)
    BackendAravis = 2, // real GigE Vision and USB3 Vision cameras, through Aravis
};

/// Device event numbers.
enum DeviceEvent : uint32_t {
    EventDeviceReturned = 1003, // the camera answers again
    EventDeviceLost = 1004, // the camera stopped answering
};

/// (data, size, context): data points at the event number as a uint32_t and
/// is valid only during the call.
typedef void (*EventCallback)(const void *data, size_t size, void *context);

class Interface;
class DeviceInfo;

class ORBCAM_API InterfaceList {
public:
    virtual size_t Size() const = 0;
    /// The first element, or nullptr when the list is empty; Next() walks on
    /// and returns nullptr after the last.
    virtual Interface *First() = 0;
    virtual Interface *Next() = 0;
    /// Gives a caller-owned list back; for the System's own list it does nothing.
    virtual void Release() = 0;

protected:
    virtual ~InterfaceList() = default;
};

class ORBCAM_API DeviceInfoList {
public:
    virtual size_t Size() const = 0;
    virtual DeviceInfo *First() = 0;
    virtual DeviceInfo *Next() = 0;
    /// Frees the list (not the device infos, which the System owns).
    virtual void Release() = 0;

protected:
    virtual ~DeviceInfoList() = default;
};

class ORBCAM_API System {
public:
    /// The interfaces whose type is selected by typeMask (bit type-1; custom
    /// transports answer to bit 7), in discovery order. Owned by the System;
    /// do not release. Each thread has a list (and a First/Next cursor) of its
    /// own, refreshed by that thread's next call, so threads walking the
    /// interfaces at once never disturb each other.
    virtual InterfaceList *GetInterfaces(uint32_t typeMask = AllInterfaces) = 0;

protected:
    virtual ~System() = default;
};

class ORBCAM_API Interface {
public:
    /// Unique, stable ASCII identifier.
    virtual const char *GetID() const = 0;
    virtual const char *GetDisplayName() const = 0; // UTF-8
    virtual const char *GetDescription() const = 0; // UTF-8
    virtual uint32_t GetType() const = 0;
    /// Looks for cameras for at most timeoutMs milliseconds; *changed (may be
    /// null) tells whether the set of cameras differs from the last call.
    virtual OrbCamErr UpdateDeviceList(bool *changed, uint32_t timeoutMs) = 0;
    /// The cameras found by the last UpdateDeviceList, in discovery order.
    /// The caller releases the list.
    virtual DeviceInfoList *GetDeviceInfoList() = 0;
    /// The interface's own features (DeviceSelector, GevInterfaceSubnetIPAddress,
    /// GevDeviceIPAddress of the selected camera, ...). Owned by the interface.
    virtual OrbGenParam::Array *GetParams(OrbCamErr *err = nullptr) = 0;
    /// Holds discovery (UpdateDeviceList, on any thread) off until Unlock, so
    /// that a caller can set DeviceSelector to a camera's GetIndex() and read
    /// the selected camera's features without the cameras being renumbered in
    /// between. Recursive; each Lock is paired with an Unlock on the same
    /// thread. Keep it short: discovery on other threads waits.
    virtual void Lock() = 0;
    virtual void Unlock() = 0;

protected:
    virtual ~Interface() = default;
};

class ORBCAM_API DeviceInfo {
public:
    virtual const char *GetID() const = 0; // unique, stable ASCII identifier
    virtual const char *GetDisplayName() const = 0;
    virtual const char *GetVendor() const = 0;
    virtual const char *GetModel() const = 0;
    virtual const char *GetSerialNumber() const = 0;
    virtual const char *GetVersion() const = 0;
    virtual const char *GetUserName() const = 0;
    virtual uint32_t GetAccessStatus() const = 0;
    virtual Interface *GetInterface() const = 0;
    /// The camera's place on its interface: the DeviceSelector value that
    /// selects it among the interface's features.
    virtual uint32_t GetIndex() const = 0;
    /// Gives a GigE Vision camera a new address, mask and gateway (32-bit,
    /// most significant byte first). OrbCamErrInvalidState for a camera on
    /// another kind of interface, OrbCamErrInvalidArgument for address 0 or
    /// a malformed mask, OrbCamErrNoDevice when the camera is gone.
    virtual OrbCamErr ForceIP(uint32_t address, uint32_t mask, uint32_t gateway) = 0;

protected:
    virtual ~DeviceInfo() = default;
};

class ORBCAM_API Device {
public:
    /// The camera's features. Owned by the device.
    virtual OrbGenParam::Array *GetParams(OrbCamErr *err = nullptr) = 0;
    virtual DeviceInfo *GetInfo() const = 0;
    /// False while the camera is lost.
    virtual bool IsConnected() const = 0;
    /// Calls callback(data, size, context) on every event of that number, on
    /// a thread of the API. The same (event, callback, context) twice is
    /// registered once.
    virtual OrbCamErr RegisterEventCallback(uint32_t event, EventCallback callback, void *context)
        = 0;
    /// After it returns the callback is not called again for that event.
    virtual OrbCamErr UnregisterEventCallback(uint32_t event, EventCallback callback, void *context)
        = 0;

protected:
    virtual ~Device() = default;
};

} // namespace OrbCam

/// The system (shared: every call returns the same one and counts a
/// reference). nullptr with *err set when the system cannot start:
/// OrbCamErrWrongConfiguration for a malformed simulation set-up,
/// OrbCamErrUnknown when the real-camera backend cannot start.
ORBCAM_API OrbCam::System *OrbCam_GetSystem(OrbCamErr *err = nullptr);
/// Gives one reference back; the last one frees the system.
ORBCAM_API void OrbCam_ReleaseSystem(OrbCam::System *system);

/// How the real-camera backend waits for a GigE Vision camera: timeoutMs for
/// the answer to one of its requests (a feature read, a check that an open
/// camera still answers; each request is sent three times within the time),
/// and how many of those checks, one every half second, may go unanswered
/// in a row before the camera counts as lost (event 1004). Defaults 400 ms
/// and 2: a camera that stops answering is reported within about two
/// seconds. Applies at once, to open cameras too. OrbCamErrInvalidArgument
/// for a time outside 10 to 10000 ms or a count outside 1 to 100.
/// Thread-safe.
ORBCAM_API OrbCamErr OrbCam_SetAnswerTimeout(uint32_t timeoutMs, uint32_t misses);
/// The values OrbCam_SetAnswerTimeout set (either pointer may be null).
ORBCAM_API void OrbCam_GetAnswerTimeout(uint32_t *timeoutMs, uint32_t *misses);

/// The backends this build has: BackendSimulated, and BackendAravis when the
/// library was built with Aravis.
ORBCAM_API uint32_t OrbCam_AvailableBackends();
/// Chooses the backends the next System holds (a mask of BackendKind; their
/// interfaces are listed simulated first). Only while no System is in use:
/// OrbCamErrInvalidState otherwise; OrbCamErrInvalidArgument for 0, an
/// unknown bit or a backend this build lacks. The default is
/// BackendSimulated. Thread-safe.
ORBCAM_API OrbCamErr OrbCam_SetBackends(uint32_t backends);
/// The backends the next (or the running) System holds.
ORBCAM_API uint32_t OrbCam_GetBackends();

/// Opens the camera described by info. access is an OrbCam::DeviceAccess;
/// flags must be 0. nullptr with *err set when the camera is gone
/// (OrbCamErrNoDevice), cannot be reached (OrbCamErrInvalidState: access
/// status AccessNone or AccessIPSubnetMismatch) or an argument is wrong.
ORBCAM_API OrbCam::Device *OrbCam_CreateDevice(OrbCam::DeviceInfo *info, uint32_t access,
                                               uint32_t flags, OrbCamErr *err = nullptr);
ORBCAM_API void OrbCam_ReleaseDevice(OrbCam::Device *device);

#endif
