// The entry points: the shared system, devices, and the simulation control.
#include "sim.h"

#include <OrbCam/OrbCamSim.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

using namespace OrbCamImpl;

namespace {

struct Global {
    std::mutex mutex;
    std::unique_ptr<SimSystem> system;
    int references = 0;
    std::string config = defaultConfigJson();
};

// Apart from the rest: models are loaded while the global lock is held.
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

Global &global()
{
    static Global g;
    return g;
}

} // namespace

SimSystem *OrbCamImpl::runningSystem()
{
    return global().system.get();
}

OrbCam::System *OrbCam_GetSystem(OrbCamErr *err)
{
    Global &g = global();
    std::lock_guard<std::mutex> lock(g.mutex);
    if (!g.system) {
        try {
            g.system = std::make_unique<SimSystem>(parseConfig(g.config));
        } catch (const std::exception &) {
            if (err)
                *err = OrbCamErrWrongConfiguration;
            return nullptr;
        }
    }
    ++g.references;
    if (err)
        *err = OrbCamOk;
    return g.system.get();
}

void OrbCam_ReleaseSystem(OrbCam::System *system)
{
    Global &g = global();
    std::unique_ptr<SimSystem> last;
    {
        std::lock_guard<std::mutex> lock(g.mutex);
        if (!system || system != g.system.get() || g.references == 0)
            return;
        if (--g.references == 0)
            last = std::move(g.system);
    }
    // Destroyed outside the lock: its event thread may be calling a client
    // that asks for the system.
}

OrbCam::Device *OrbCam_CreateDevice(OrbCam::DeviceInfo *info, uint32_t access, uint32_t flags,
                                    OrbCamErr *err)
{
    auto fail = [err](OrbCamErr code) -> OrbCam::Device * {
        if (err)
            *err = code;
        return nullptr;
    };
    if (!info || flags != 0 || (access != OrbCam::AccessMonitor && access != OrbCam::AccessControl))
        return fail(OrbCamErrInvalidArgument);
    Global &g = global();
    std::shared_ptr<SimCamera> camera;
    SimSystem *system = nullptr;
    {
        std::lock_guard<std::mutex> lock(g.mutex);
        system = g.system.get();
        auto *sim = dynamic_cast<SimCamera *>(info);
        if (!system || !sim || system->findCamera(sim->GetID()) != sim)
            return fail(OrbCamErrInvalidArgument);
        camera = static_cast<SimInterface *>(sim->GetInterface())->share(sim);
        if (!camera->reachable())
            return fail(OrbCamErrNoDevice);
        // Held for control by another application: monitoring only.
        const uint32_t status = camera->GetAccessStatus();
        if (status != OrbCam::AccessReadWrite
            && !(status == OrbCam::AccessReadOnly && access == OrbCam::AccessMonitor))
            return fail(OrbCamErrInvalidState);
        ++g.references; // an open device keeps the system alive
    }
    try {
        auto *device = new SimDevice(*system, camera, access);
        if (err)
            *err = OrbCamOk;
        return device;
    } catch (const GenICam::GenericException &) {
        OrbCam_ReleaseSystem(system);
        return fail(OrbCamErrFileRead);
    }
}

void OrbCam_ReleaseDevice(OrbCam::Device *device)
{
    auto *sim = dynamic_cast<SimDevice *>(device);
    if (!sim)
        return;
    OrbCam::System *system = &sim->system();
    delete sim;
    OrbCam_ReleaseSystem(system);
}

namespace OrbCamSim {

namespace {

template <class F> OrbCamErr withSystem(F &&f)
{
    Global &g = global();
    std::lock_guard<std::mutex> lock(g.mutex);
    if (!g.system)
        return OrbCamErrInvalidState;
    return f(*g.system);
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
        // Every model must load, so that a typo is found now, not at discovery.
        for (const InterfaceConfig &i : config.interfaces)
            for (const CameraConfig &c : i.cameras)
                loadModel(c.model);
    } catch (const std::exception &e) {
        if (why)
            *why = e.what();
        return OrbCamErrWrongConfiguration;
    }
    Global &g = global();
    std::lock_guard<std::mutex> lock(g.mutex);
    if (g.system) {
        if (why)
            *why = "the system is in use";
        return OrbCamErrInvalidState;
    }
    g.config = json;
    return OrbCamOk;
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
    return Configure(defaultConfigJson());
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

OrbCamErr ClearFailures(const std::string &deviceId)
{
    return withCamera(deviceId, [](SimSystem &, SimCamera &camera) {
        camera.clearFailures();
        return OrbCamOk;
    });
}

} // namespace OrbCamSim
