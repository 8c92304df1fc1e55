// The seam between the camera access API's entry points (api.cpp) and the
// camera systems behind them. A backend is an OrbCam::System that also
// opens and closes devices on its own DeviceInfos; the entry points know
// nothing else of it, so that the simulated system and real-camera backends
// plug in alike. Internal.
#ifndef ORBCAM_BACKEND_H
#define ORBCAM_BACKEND_H

#include <OrbCam/OrbCam.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace OrbCamImpl {

// A camera that passed the checks for opening, pinned until open() runs.
class PendingOpen {
public:
    virtual ~PendingOpen() = default;
    // Builds the device; may take long (the camera's description is read),
    // so it runs without the API's lock. Throws a GenICam exception when
    // the description cannot be read.
    virtual OrbCam::Device *open() = 0;
};

class Backend : public OrbCam::System {
public:
    // With the API's lock held: whether `info` is one of this backend's
    // cameras and can be opened with `access` (AccessMonitor or
    // AccessControl). Null with err set otherwise: OrbCamErrInvalidArgument
    // for a DeviceInfo of someone else's, OrbCamErrNoDevice for a camera
    // that is gone, OrbCamErrInvalidState for one that cannot be reached or
    // is held for control elsewhere.
    virtual std::unique_ptr<PendingOpen> prepareOpen(OrbCam::DeviceInfo *info, uint32_t access,
                                                     OrbCamErr &err)
        = 0;
    // Destroys a device that this backend opened and returns true; false,
    // and nothing done, for any other pointer.
    virtual bool closeDevice(OrbCam::Device *device) = 0;
    // The backends this one is made of (itself, unless it combines others).
    virtual std::vector<Backend *> parts() { return { this }; }
};

// How long a real camera's answer is waited for, and how many liveness
// checks in a row it may miss (OrbCam_SetAnswerTimeout). Any thread.
struct AnswerTimeout {
    std::atomic<uint32_t> ms { 400 };
    std::atomic<uint32_t> misses { 2 };
};
AnswerTimeout &answerTimeout();

// Several backends side by side, their interfaces listed in order.
std::unique_ptr<Backend> combineBackends(std::vector<std::unique_ptr<Backend>> parts);

// The real-camera backend, when this build has it (null otherwise). Starts
// without discovering anything: the first UpdateDeviceList does. Throws
// std::exception when it cannot start.
std::unique_ptr<Backend> createAravisBackend();
bool aravisBuiltIn();

// The simulated camera system from its JSON set-up (the default set-up when
// empty). Throws std::exception for a malformed set-up.
std::unique_ptr<Backend> createSimBackend(const std::string &setup);

// Runs `f` with the API's lock held, on the running backend (null when no
// system is in use; see parts()) and on the set-up text the next system
// starts from. For the simulation's control functions.
using LockedApiCall = std::function<OrbCamErr(Backend *running, std::string &setup)>;
OrbCamErr withApiLocked(const LockedApiCall &f);

} // namespace OrbCamImpl

#endif
