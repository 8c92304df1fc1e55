/// \file
/// Control of the simulated camera system, for tests and the demo.
///
/// The simulation starts with a default set-up: a GigE Vision interface (a
/// network card 192.168.1.10/24) with two cameras, one inside the card's
/// subnet and one outside it (access status AccessIPSubnetMismatch), a USB3
/// Vision interface with one camera, and a CoaXPress interface with none.
/// Configure() replaces it with a set-up described in JSON:
///
///   { "interfaces": [
///       { "id": "GEV0", "type": "GigEVision", "displayName": "...",
///         "ip": "192.168.1.10", "mask": "255.255.255.0", "mac": "00:0C:29:00:00:01",
///         "cameras": [ { "model": "orbsim-c2000", "serial": "C2-0001",
///                        "ip": "192.168.1.20", "userName": "Line 1" } ] },
///       { "id": "U3V0", "type": "USB3Vision", "cameras": [ { "model": "orbsim-m1300" } ] } ] }
///
/// Camera models are GenICam descriptions in the cameras folder (see
/// OrbCamSim_CamerasDir()), each with a JSON side file of start values and
/// behaviour. "model" may also be the path of any description (".xml" or
/// ".zip", the path holding a '/'): a camera of that description over
/// zero-filled memory. A camera's "values" names a side file to use instead
/// of the model's own (for a path model, the only one it has). A side
/// file's "defaults" are [feature, value] pairs applied in order; a
/// read-only integer among them is set by writing the bits of its register
/// that carry it, a read-only floating-point register directly.
///
/// All functions are thread-safe and return OrbCamErr; cameras are named by
/// their DeviceInfo identifier. Configure() brings every camera up once to
/// check it: a model, side file or start value that fails is reported there.
#ifndef ORBCAM_ORBCAMSIM_H
#define ORBCAM_ORBCAMSIM_H

#include <OrbCam/OrbCamErr.h>

#include <cstdint>
#include <string>
#include <vector>

namespace OrbCamSim {

/// Replaces the simulated set-up. Only while no System is in use
/// (OrbCamErrInvalidState otherwise); OrbCamErrWrongConfiguration for malformed
/// JSON or an unknown model, with the reason in *why when given.
ORBCAM_API OrbCamErr Configure(const std::string &json, std::string *why = nullptr);
ORBCAM_API OrbCamErr ConfigureFromFile(const std::string &path, std::string *why = nullptr);
/// Back to the default set-up (only while no System is in use).
ORBCAM_API OrbCamErr Reset();

/// The folder that holds the camera models; settable for installed layouts.
ORBCAM_API std::string CamerasDir();
ORBCAM_API void SetCamerasDir(const std::string &path);

/// A new camera on an interface of the running system; seen by the next
/// UpdateDeviceList. *id receives its identifier.
ORBCAM_API OrbCamErr AddCamera(const std::string &interfaceId, const std::string &model,
                               const std::string &serial, std::string *id = nullptr);
/// The camera disappears from its interface (its DeviceInfo stays valid and
/// reports AccessNone; an open Device loses it, event 1004).
ORBCAM_API OrbCamErr RemoveCamera(const std::string &deviceId);
/// Moves the camera to `position` (0 first) in its interface's order, as a
/// network switch answering in another order does; the next
/// UpdateDeviceList finds the cameras in the new order. A position past the
/// end moves it to the end.
ORBCAM_API OrbCamErr MoveCamera(const std::string &deviceId, size_t position);
/// The camera stops answering (event 1004 to open devices) and comes back
/// (event 1003). While lost every access fails with OrbCamErrNoDevice (and in
/// GenApi with an AccessException naming the camera).
ORBCAM_API OrbCamErr LoseCamera(const std::string &deviceId);
ORBCAM_API OrbCamErr RegainCamera(const std::string &deviceId);

/// The access status the camera reports while listed, as if another
/// application held it: OrbCam::AccessReadOnly (opened for control elsewhere:
/// it can be opened for monitoring only) or OrbCam::AccessNone (it cannot be
/// opened). 0 returns to the status the simulation computes (ReadWrite, or
/// IP subnet mismatch). OrbCamErrInvalidArgument for any other status.
ORBCAM_API OrbCamErr SetAccessStatus(const std::string &deviceId, uint32_t status);

/// While withheld, the camera's devices answer GetParams with no array and
/// OrbCamErrFileRead, as if its description could not be read.
ORBCAM_API OrbCamErr WithholdParams(const std::string &deviceId, bool withheld);

enum FailMode : uint32_t { FailRead = 1, FailWrite = 2, FailReadWrite = 3 };
/// Makes every register behind a feature fail until cleared.
ORBCAM_API OrbCamErr FailFeature(const std::string &deviceId, const std::string &feature,
                                 uint32_t mode = FailReadWrite);
ORBCAM_API OrbCamErr ClearFailures(const std::string &deviceId);

/// One register write that reached a camera: its address and length.
struct Write {
    int64_t address;
    int64_t length;
};
/// The register writes that reached the camera through any of its devices
/// since the last call, in order, and forgets them: what a window wrote,
/// for tests that check it wrote nothing else. The simulation's own changes
/// (the trigger counter, a command clearing itself, a forced IP) are not
/// listed; of writes nobody took, the newest few thousand are kept.
/// OrbCamErrNoDevice for an unknown camera.
ORBCAM_API OrbCamErr TakeWrites(const std::string &deviceId, std::vector<Write> *writes);

/// How long every register read and write of the camera takes, as over a
/// network (0, the default, answers at once); a Reset() camera answers at
/// once. OrbCamErrNoDevice for an unknown camera.
ORBCAM_API OrbCamErr SetAnswerTime(const std::string &deviceId, uint32_t milliseconds);

/// How long each simulated interface's UpdateDeviceList takes, as a real
/// network's discovery does (never longer than its caller allows); 0, the
/// default, answers at once. Reset() sets it back to 0. Thread-safe.
ORBCAM_API void SetDiscoveryTime(uint32_t milliseconds);

/// The simulation clock (milliseconds) that drives temperature drift and
/// frame timing. By default it follows the real clock; once set it stands
/// still except for AdvanceClock, so that tests are deterministic.
ORBCAM_API void SetClock(int64_t milliseconds);
ORBCAM_API void AdvanceClock(int64_t milliseconds);
ORBCAM_API int64_t Clock();

} // namespace OrbCamSim

#endif
