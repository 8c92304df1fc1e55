// The simulation's control functions (OrbCamSim.h): set-up, camera models,
// and the faults tests and the demo steer.
#include "sim.h"

#include <OrbCam/OrbCamSim.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

using namespace OrbCamImpl;

namespace {

// Apart from the API's lock: models are loaded while that lock is held.
std::mutex g_dirMutex;
// The models of a source build, unless they are gone (an installed library
// whose source tree was removed); ORBCAM_CAMERAS_DIR in the environment wins.
std::string defaultCamerasDir()
{
    if (const char *fromEnvironment = std::getenv("ORBCAM_CAMERAS_DIR");
        fromEnvironment && *fromEnvironment)
        return fromEnvironment;
    std::error_code ignored;
    if (std::filesystem::is_directory(ORBCAM_CAMERAS_DIR, ignored))
        return ORBCAM_CAMERAS_DIR;
    return ORBCAM_INSTALLED_CAMERAS_DIR;
}

// Empty until first asked for: the default is looked up then, not while
// every program that links the library is starting.
std::string g_camerasDir;

} // namespace

namespace OrbCamSim {

namespace {

template <class F> OrbCamErr withSystem(F &&f)
{
    return withApiLocked([&](Backend *running, std::string &) -> OrbCamErr {
        if (running)
            for (Backend *part : running->parts())
                if (auto *system = dynamic_cast<SimSystem *>(part))
                    return f(*system);
        return OrbCamErrInvalidState;
    });
}

template <class F> OrbCamErr withCamera(const std::string &id, F &&f)
{
    return withSystem([&](SimSystem &system) {
        SimCamera *camera = system.findCamera(id);
        return camera ? f(system, *camera) : OrbCamErrNoDevice;
    });
}

} // namespace

OrbCamErr Configure(const std::string &json, std::string *why)
{
    try {
        const SystemConfig config = parseConfig(json);
        // Every camera must come up, its start values applied, so that a
        // typo is found now, not at discovery.
        const SimSystem trial(config);
    } catch (const std::exception &e) {
        if (why)
            *why = e.what();
        return OrbCamErrWrongConfiguration;
    }
    return withApiLocked([&](Backend *running, std::string &setup) {
        if (running) {
            if (why)
                *why = "the system is in use";
            return OrbCamErrInvalidState;
        }
        setup = json;
        return OrbCamOk;
    });
}

OrbCamErr ConfigureFromFile(const std::string &path, std::string *why)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        if (why)
            *why = "cannot open " + path;
        return OrbCamErrFileNotFound;
    }
    std::ostringstream content;
    content << in.rdbuf();
    return Configure(content.str(), why);
}

OrbCamErr Reset()
{
    OrbCamImpl::discoveryTime() = 0;
    return Configure(defaultConfigJson());
}

void SetDiscoveryTime(uint32_t milliseconds)
{
    OrbCamImpl::discoveryTime() = milliseconds;
}

std::string CamerasDir()
{
    std::lock_guard<std::mutex> lock(g_dirMutex);
    if (g_camerasDir.empty())
        g_camerasDir = defaultCamerasDir();
    return g_camerasDir;
}

void SetCamerasDir(const std::string &path)
{
    std::lock_guard<std::mutex> lock(g_dirMutex);
    g_camerasDir = path;
}

OrbCamErr SetAccessStatus(const std::string &deviceId, uint32_t status)
{
    if (status != 0 && status != OrbCam::AccessReadOnly && status != OrbCam::AccessNone)
        return OrbCamErrInvalidArgument;
    return withCamera(deviceId, [status](SimSystem &, SimCamera &camera) {
        camera.forcedStatus = status;
        return OrbCamOk;
    });
}

OrbCamErr WithholdParams(const std::string &deviceId, bool withheld)
{
    return withCamera(deviceId, [withheld](SimSystem &, SimCamera &camera) {
        camera.paramsWithheld = withheld;
        return OrbCamOk;
    });
}

OrbCamErr AddCamera(const std::string &interfaceId, const std::string &model,
                    const std::string &serial, std::string *id)
{
    return withSystem([&](SimSystem &system) {
        SimInterface *i = system.findInterface(interfaceId);
        if (!i)
            return OrbCamErrInvalidArgument;
        CameraConfig config;
        config.model = model;
        config.serial = serial;
        // A network camera joins in the card's subnet at the next free host.
        if (i->GetType() == OrbCam::InterfaceGigEVision) {
            const uint32_t host = i->ip() + 10 + static_cast<uint32_t>(i->cameraCount());
            config.ip = (i->ip() & i->mask()) | (host & ~i->mask());
            config.mask = i->mask();
        }
        try {
            SimCamera *camera = i->addCamera(config);
            if (id)
                *id = camera->GetID();
        } catch (const std::exception &) {
            return OrbCamErrWrongConfiguration;
        }
        return OrbCamOk;
    });
}

OrbCamErr RemoveCamera(const std::string &deviceId)
{
    return withCamera(deviceId, [](SimSystem &system, SimCamera &camera) {
        const bool wasReachable = camera.reachable();
        camera.present = false;
        if (wasReachable)
            system.post(&camera, OrbCam::EventDeviceLost);
        return OrbCamOk;
    });
}

OrbCamErr MoveCamera(const std::string &deviceId, size_t position)
{
    return withCamera(deviceId, [position](SimSystem &, SimCamera &camera) {
        static_cast<SimInterface *>(camera.GetInterface())->moveCamera(&camera, position);
        return OrbCamOk;
    });
}

OrbCamErr LoseCamera(const std::string &deviceId)
{
    return withCamera(deviceId, [](SimSystem &system, SimCamera &camera) {
        if (!camera.present)
            return OrbCamErrNoDevice;
        if (!camera.lost.exchange(true))
            system.post(&camera, OrbCam::EventDeviceLost);
        return OrbCamOk;
    });
}

OrbCamErr RegainCamera(const std::string &deviceId)
{
    return withCamera(deviceId, [](SimSystem &system, SimCamera &camera) {
        if (!camera.present)
            return OrbCamErrNoDevice;
        if (camera.lost.exchange(false))
            system.post(&camera, OrbCam::EventDeviceReturned);
        return OrbCamOk;
    });
}

OrbCamErr FailFeature(const std::string &deviceId, const std::string &feature, uint32_t mode)
{
    if (mode == 0 || mode > FailReadWrite)
        return OrbCamErrInvalidArgument;
    return withCamera(deviceId, [&](SimSystem &, SimCamera &camera) {
        return camera.failFeature(feature, mode);
    });
}

OrbCamErr SetAnswerTime(const std::string &deviceId, uint32_t milliseconds)
{
    return withCamera(deviceId, [milliseconds](SimSystem &, SimCamera &camera) {
        camera.answerTime = milliseconds;
        return OrbCamOk;
    });
}

OrbCamErr TakeWrites(const std::string &deviceId, std::vector<Write> *writes)
{
    return withCamera(deviceId, [writes](SimSystem &, SimCamera &camera) {
        const std::vector<Range> taken = camera.takeWrites();
        if (writes) {
            writes->clear();
            for (const Range &r : taken)
                writes->push_back(Write { r.address, r.length });
        }
        return OrbCamOk;
    });
}

OrbCamErr ClearFailures(const std::string &deviceId)
{
    return withCamera(deviceId, [](SimSystem &, SimCamera &camera) {
        camera.clearFailures();
        return OrbCamOk;
    });
}

} // namespace OrbCamSim
