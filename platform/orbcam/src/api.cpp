// The entry points: the shared system and its devices. They reach the
// system through the Backend seam only (backend.h).
#include "backend.h"

#include <OrbCam/OrbCam.h>

#include <GenApi/GenApi.h>

#include <mutex>

using namespace OrbCamImpl;

namespace {

struct Global {
    std::mutex mutex;
    std::unique_ptr<Backend> system;
    int references = 0;
    std::string setup; // empty: the default set-up
    uint32_t backends = OrbCam::BackendSimulated;
};

Global &global()
{
    static Global g;
    return g;
}

} // namespace

OrbCamImpl::AnswerTimeout &OrbCamImpl::answerTimeout()
{
    static AnswerTimeout timeout;
    return timeout;
}

OrbCamErr OrbCamImpl::withApiLocked(const LockedApiCall &f)
{
    Global &g = global();
    std::lock_guard<std::mutex> lock(g.mutex);
    return f(g.system.get(), g.setup);
}

OrbCam::System *OrbCam_GetSystem(OrbCamErr *err)
{
    Global &g = global();
    std::lock_guard<std::mutex> lock(g.mutex);
    if (!g.system) {
        std::vector<std::unique_ptr<Backend>> parts;
        try {
            if (g.backends & OrbCam::BackendSimulated)
                parts.push_back(createSimBackend(g.setup));
        } catch (const std::exception &) {
            if (err)
                *err = OrbCamErrWrongConfiguration;
            return nullptr;
        }
        try {
            if (g.backends & OrbCam::BackendAravis)
                parts.push_back(createAravisBackend());
        } catch (const std::exception &) {
            if (err)
                *err = OrbCamErrUnknown;
            return nullptr;
        }
        g.system = combineBackends(std::move(parts));
    }
    ++g.references;
    if (err)
        *err = OrbCamOk;
    return g.system.get();
}

uint32_t OrbCam_AvailableBackends()
{
    return OrbCam::BackendSimulated | (aravisBuiltIn() ? uint32_t(OrbCam::BackendAravis) : 0u);
}

OrbCamErr OrbCam_SetBackends(uint32_t backends)
{
    if (backends == 0 || (backends & ~OrbCam_AvailableBackends()) != 0)
        return OrbCamErrInvalidArgument;
    Global &g = global();
    std::lock_guard<std::mutex> lock(g.mutex);
    if (g.system)
        return OrbCamErrInvalidState;
    g.backends = backends;
    return OrbCamOk;
}

uint32_t OrbCam_GetBackends()
{
    Global &g = global();
    std::lock_guard<std::mutex> lock(g.mutex);
    return g.backends;
}

OrbCamErr OrbCam_SetAnswerTimeout(uint32_t timeoutMs, uint32_t misses)
{
    if (timeoutMs < 10 || timeoutMs > 10000 || misses < 1 || misses > 100)
        return OrbCamErrInvalidArgument;
    OrbCamImpl::answerTimeout().ms = timeoutMs;
    OrbCamImpl::answerTimeout().misses = misses;
    return OrbCamOk;
}

void OrbCam_GetAnswerTimeout(uint32_t *timeoutMs, uint32_t *misses)
{
    if (timeoutMs)
        *timeoutMs = OrbCamImpl::answerTimeout().ms;
    if (misses)
        *misses = OrbCamImpl::answerTimeout().misses;
}

void OrbCam_ReleaseSystem(OrbCam::System *system)
{
    Global &g = global();
    std::unique_ptr<Backend> last;
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
    Backend *system = nullptr;
    std::unique_ptr<PendingOpen> pending;
    {
        std::lock_guard<std::mutex> lock(g.mutex);
        system = g.system.get();
        if (!system)
            return fail(OrbCamErrInvalidArgument);
        OrbCamErr why = OrbCamOk;
        pending = system->prepareOpen(info, access, why);
        if (!pending)
            return fail(why);
        ++g.references; // an open device keeps the system alive
    }
    // Reading the camera's description takes a while: not under the lock.
    try {
        OrbCam::Device *device = pending->open();
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
    if (!device)
        return;
    Backend *system = nullptr;
    {
        Global &g = global();
        std::lock_guard<std::mutex> lock(g.mutex);
        system = g.system.get(); // kept alive by the device's reference
    }
    if (system && system->closeDevice(device))
        OrbCam_ReleaseSystem(system);
}
